#include "SearchPath.h"

#include "PathCacheFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace LibraryBrowser::Host {

SearchPath::SearchPath(QString root, QStringList given, PathCacheFile& cache)
    : m_root(std::move(root)), m_given(std::move(given)), m_cache(cache), m_walk(cache)
{
    m_walk.fromBytes(cache.section(PathCacheFile::Walk));
    refresh();
}

void SearchPath::refresh()
{
    // One walk finds the path's directories and the library files in them.
    const RootWalk::Found found = m_walk.walk(m_root);
    m_top = RootWalk::absoluteRoot(m_root);
    if (!m_top.endsWith(QLatin1Char('/')))
        m_top += QLatin1Char('/');
    if (m_walk.changed())
        m_cache.store(PathCacheFile::Walk, m_walk.toBytes());
    const QStringList& below = found.below;
    m_found.clear();
    m_listedIn.clear();
    m_unlisted.clear();
    m_directories.clear();
    m_directories.reserve(m_given.size() + below.size());
    m_listedIn.reserve(found.libraries.size());
    const auto add = [&](const QString& directory) {
        const int index = int(m_directories.size());
        m_directories << directory;
        for (const QString& name : found.libraries.value(directory))
            m_listedIn[name] << index;
        return index;
    };
    // The walk gives each directory once, sorted: only the given ones can
    // come twice.
    QSet<QString> given;
    for (const QString& directory : m_given) {
        if (given.contains(directory))
            continue;
        given.insert(directory);
        const int index = add(directory);
        if (!std::binary_search(below.cbegin(), below.cend(), directory))
            m_unlisted << index;
    }
    for (const QString& directory : below)
        if (!given.contains(directory))
            add(directory);
}

QString SearchPath::findLibraryFile(const std::string& library) const
{
    struct stat status;
    return findLibraryFile(library, status);
}

QString SearchPath::findLibraryFile(const std::string& library, struct stat& status) const
{
    // Nothing is there for a name the system would cut short.
    const auto exists = [&status](const QString& file) {
        const QByteArray encoded = QFile::encodeName(file);
        return !encoded.isEmpty() && !encoded.contains('\0') && ::stat(encoded.constData(), &status) == 0;
    };
    const auto found = m_found.find(library);
    if (found != m_found.end()) {
        if (exists(found->second))
            return found->second;
        m_found.erase(found);
    }
    const QString name = libraryFileName(library);
    // A name that reaches into a subdirectory, or a hidden one, was not
    // listed by the walk.
    const bool listable = !name.contains(QLatin1Char('/')) && !name.startsWith(QLatin1Char('.'));
    const auto existing = [&](int index) {
        const QString candidate = m_directories[index] + QLatin1Char('/') + name;
        return exists(candidate) ? candidate : QString();
    };
    QString file;
    if (listable) {
        // The directories not listed, and the listed ones that hold the
        // name, in the order of the path.
        const QList<int> holding = m_listedIn.value(name);
        auto unlisted = m_unlisted.cbegin();
        auto listed = holding.cbegin();
        while (file.isEmpty() && (unlisted != m_unlisted.cend() || listed != holding.cend())) {
            const bool takeUnlisted =
                listed == holding.cend() || (unlisted != m_unlisted.cend() && *unlisted < *listed);
            file = existing(takeUnlisted ? *unlisted++ : *listed++);
        }
    }
    // A file added since the walk is found all the same.
    for (int index = 0; file.isEmpty() && index < int(m_directories.size()); ++index)
        file = existing(index);
    if (!file.isEmpty())
        m_found.emplace(library, file);
    return file;
}

QString SearchPath::libraryFileName(const std::string& library)
{
    return QString::fromStdString(library) + QLatin1String(librarySuffix);
}

std::string SearchPath::fileSpec(const QString& file) const
{
    // What the walk found below the root is named by what follows the root
    // in its path, without working that out segment by segment.
    if (file.size() > m_top.size() && file.startsWith(m_top) && QDir::cleanPath(file) == file)
        return QStringView(file).mid(m_top.size()).toUtf8().toStdString();
    return fileSpec(m_root, file);
}

std::string SearchPath::fileSpec(const QString& root, const QString& file)
{
    const QString absolute = QDir::cleanPath(QFileInfo(file).absoluteFilePath());
    const QString relative = QDir(root).relativeFilePath(absolute);
    if (relative.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(relative))
        return absolute.toStdString();
    return relative.toStdString();
}

} // namespace LibraryBrowser::Host
