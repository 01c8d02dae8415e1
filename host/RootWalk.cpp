#include "RootWalk.h"

#include "ByteReader.h"
#include "ByteWriter.h"
#include "OpenDirectory.h"
#include "PathCacheFile.h"
#include "SearchPath.h"
#include "TdBlocksParser.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LibraryBrowser::Host {

namespace {
// A directory of this many subdirectories or more is opened, so that each
// is looked up by its name from it rather than from the root: the open
// costs about what four look-ups a few levels deep save.
constexpr qsizetype openedFrom = 8;

// An open directory, shared by the look-ups of its subdirectories.
struct Held {
    explicit Held(int descriptor) : descriptor(descriptor) {}
    ~Held() { ::close(descriptor); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    const int descriptor;
};

struct Pending {
    QString relative;
    QString name;
    // The parent when it was opened; else names are looked up from the root.
    std::shared_ptr<const Held> parent;
};

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

QString RootWalk::absoluteRoot(const QString& root)
{
    return QDir::cleanPath(QFileInfo(root).absoluteFilePath());
}

RootWalk::Found RootWalk::walk(const QString& root)
{
    const std::int64_t startedAt = PathCacheFile::now();
    const QString top = absoluteRoot(root);
    const QString prefix = top.endsWith(QLatin1Char('/')) ? top : top + QLatin1Char('/');
    const QString tdblocks = QLatin1String(TdBlocksParser::fileName);

    int trustedBefore = 0;
    for (const Directory& known : std::as_const(m_directories))
        trustedBefore += known.trusted ? 1 : 0;
    int kept = 0;
    bool learnt = false;
    m_listed = 0;

    Found found;
    ++m_walks;
    // Directories below the root are looked at from it: a shorter way for
    // the system to go than from "/" each time.
    const QByteArray encodedTop = QFile::encodeName(top);
    const OpenDirectory rootDirectory(top);
    QList<Pending> pending;
    if (rootDirectory.descriptor() >= 0)
        pending.push_back({});
    while (!pending.isEmpty()) {
        const Pending next = pending.takeLast();
        const QString& relative = next.relative;
        const bool isRoot = relative.isEmpty();
        const QByteArray encodedRelative = QFile::encodeName(relative);
        const int from = next.parent ? next.parent->descriptor : rootDirectory.descriptor();
        const QByteArray lookup = next.parent ? QFile::encodeName(next.name) : encodedRelative;
        FileStamp stamp;
        // The root may be a link; a directory below it is only reached as
        // what its parent listed.
        if (!(isRoot ? stamp.read(encodedTop, true) : stamp.read(lookup, false, from) && stamp.directory))
            continue;
        const QString path = isRoot ? top : prefix + relative;
        // Known directories are taken where they are kept, not copied.
        auto known = m_directories.find(relative);
        if (known != m_directories.end() && known->trusted && known->stamp == stamp) {
            ++kept;
        } else {
            ++m_listed;
            Directory listed;
            listed.stamp = stamp;
            list(QFile::encodeName(path), listed);
            listed.trusted = m_trust.trusted(stamp.latest(), startedAt);
            learnt = learnt || listed.trusted;
            known = m_directories.emplace(relative, std::move(listed));
        }
        const Directory& directory = *known;
        known->walk = m_walks;
        QStringList libraries;
        const auto take = [&](const QString& name) {
            if (name == tdblocks)
                found.below << path;
            else
                libraries << name;
        };
        for (const QString& name : directory.files)
            take(name);
        for (const QString& name : directory.links) {
            FileStamp target;
            const QByteArray link = isRoot ? QFile::encodeName(name) : encodedRelative + '/' + QFile::encodeName(name);
            if (target.read(link, true, rootDirectory.descriptor()) && !target.directory)
                take(name);
        }
        if (!libraries.isEmpty())
            found.libraries.emplace(path, std::move(libraries));
        std::shared_ptr<const Held> opened;
        if (!isRoot && directory.subdirectories.size() >= openedFrom) {
            const int descriptor = ::openat(from, lookup.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (descriptor >= 0)
                opened = std::make_shared<const Held>(descriptor);
        }
        for (const QString& name : directory.subdirectories)
            pending.push_back({isRoot ? name : relative + QLatin1Char('/') + name, name, opened});
    }
    // What this walk did not reach is gone.
    m_directories.removeIf([this](const auto& known) { return known.value().walk != m_walks; });
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
        read.emplace(relative, std::move(directory));
    }
    if (in.atEnd())
        m_directories = std::move(read);
}

} // namespace LibraryBrowser::Host
