#include "RootWalk.h"

#include "ByteReader.h"
#include "ByteWriter.h"
#include "PathCacheFile.h"
#include "SearchPath.h"
#include "TdBlocksParser.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>
#include <sys/stat.h>

namespace LibraryBrowser::Host {

namespace {
bool matches(const QString& name)
{
    return name.compare(QLatin1String(TdBlocksParser::fileName), Qt::CaseInsensitive) == 0
        || name.endsWith(QLatin1String(SearchPath::librarySuffix), Qt::CaseInsensitive);
}
} // namespace

void RootWalk::list(const QByteArray& path, Directory& directory)
{
    DIR* stream = ::opendir(path.constData());
    if (!stream)
        return;
    while (const dirent* entry = ::readdir(stream)) {
        // Hidden entries, "." and ".." among them, are left out.
        if (entry->d_name[0] == '.')
            continue;
        unsigned char type = entry->d_type;
        if (type == DT_UNKNOWN) {
            struct stat status;
            if (::lstat((path + '/' + entry->d_name).constData(), &status) != 0)
                continue;
            type = S_ISDIR(status.st_mode)   ? DT_DIR
                 : S_ISREG(status.st_mode) ? DT_REG
                 : S_ISLNK(status.st_mode) ? DT_LNK
                                           : DT_UNKNOWN;
        }
        const QString name = QFile::decodeName(entry->d_name);
        if (type == DT_DIR)
            directory.subdirectories << name;
        else if ((type == DT_REG || type == DT_LNK) && matches(name))
            (type == DT_REG ? directory.files : directory.links) << name;
    }
    ::closedir(stream);
}

RootWalk::Found RootWalk::walk(const QString& root)
{
    const std::int64_t startedAt = PathCacheFile::now();
    const QString top = QDir::cleanPath(QFileInfo(root).absoluteFilePath());
    const QString prefix = top.endsWith(QLatin1Char('/')) ? top : top + QLatin1Char('/');
    const QString tdblocks = QLatin1String(TdBlocksParser::fileName);

    int trustedBefore = 0;
    for (const Directory& known : std::as_const(m_directories))
        trustedBefore += known.trusted ? 1 : 0;
    int kept = 0;
    bool learnt = false;
    m_listed = 0;

    Found found;
    QHash<QString, Directory> walked;
    // Directories below the root are looked at from it: a shorter way for
    // the system to go than from "/" each time.
    const QByteArray encodedTop = QFile::encodeName(top);
    const int rootDirectory = ::open(encodedTop.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    QStringList pending;
    if (rootDirectory >= 0)
        pending << QString();
    while (!pending.isEmpty()) {
        const QString relative = pending.takeLast();
        const bool isRoot = relative.isEmpty();
        const QString path = isRoot ? top : prefix + relative;
        const QByteArray encodedRelative = QFile::encodeName(relative);
        Directory directory;
        // The root may be a link; a directory below it is only reached as
        // what its parent listed.
        if (!(isRoot ? directory.stamp.read(encodedTop, true)
                     : directory.stamp.read(encodedRelative, false, rootDirectory) && directory.stamp.directory))
            continue;
        const auto known = m_directories.constFind(relative);
        if (known != m_directories.cend() && known->trusted && known->stamp == directory.stamp) {
            directory = *known;
            ++kept;
        } else {
            ++m_listed;
            list(QFile::encodeName(path), directory);
            directory.trusted = m_trust.trusted(directory.stamp.latest(), startedAt);
            learnt = learnt || directory.trusted;
        }
        const auto take = [&](const QString& name) {
            if (name == tdblocks)
                found.below << path;
            else
                found.libraries[path].insert(name);
        };
        for (const QString& name : std::as_const(directory.files))
            take(name);
        for (const QString& name : std::as_const(directory.links)) {
            FileStamp target;
            const QByteArray link = isRoot ? QFile::encodeName(name) : encodedRelative + '/' + QFile::encodeName(name);
            if (target.read(link, true, rootDirectory) && !target.directory)
                take(name);
        }
        for (const QString& name : std::as_const(directory.subdirectories))
            pending << (isRoot ? name : relative + QLatin1Char('/') + name);
        walked.insert(relative, std::move(directory));
    }
    if (rootDirectory >= 0)
        ::close(rootDirectory);
    m_directories = std::move(walked);
    m_changed = learnt || kept != trustedBefore;
    found.below.sort();
    return found;
}

QByteArray RootWalk::toBytes() const
{
    ByteWriter out;
    int trusted = 0;
    for (const Directory& directory : m_directories)
        trusted += directory.trusted ? 1 : 0;
    out.number(std::uint64_t(trusted));
    for (auto it = m_directories.cbegin(); it != m_directories.cend(); ++it) {
        if (!it->trusted)
            continue;
        out.text(it.key());
        it->stamp.write(out);
        out.texts(it->subdirectories);
        out.texts(it->files);
        out.texts(it->links);
    }
    return out.bytes();
}

void RootWalk::fromBytes(const QByteArray& bytes)
{
    m_directories.clear();
    ByteReader in(bytes);
    std::size_t count = 0;
    if (!in.count(count))
        return;
    QHash<QString, Directory> read;
    read.reserve(qsizetype(count));
    for (std::size_t i = 0; i < count; ++i) {
        QString relative;
        Directory directory;
        directory.trusted = true;
        if (!in.text(relative) || !directory.stamp.read(in) || !in.texts(directory.subdirectories)
            || !in.texts(directory.files) || !in.texts(directory.links))
            return;
        read.insert(relative, std::move(directory));
    }
    if (in.atEnd())
        m_directories = std::move(read);
}

} // namespace LibraryBrowser::Host
