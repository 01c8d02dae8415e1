#include "SearchPath.h"

#include "TdBlocksParser.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace LibraryBrowser::Host {

SearchPath::SearchPath(QString root, QStringList given) : m_root(std::move(root)), m_given(std::move(given))
{
    refresh();
}

void SearchPath::refresh()
{
    // One walk finds the path's directories and the library files in them.
    const QString tdblocks = QLatin1String(TdBlocksParser::fileName);
    QStringList below;
    QHash<QString, QSet<QString>> libraries;
    QDirIterator it(m_root, {tdblocks, QLatin1Char('*') + QLatin1String(librarySuffix)}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo file(it.next());
        if (file.fileName() == tdblocks)
            below << file.absolutePath();
        else
            libraries[file.absolutePath()].insert(file.fileName());
    }
    below.sort();
    m_found.clear();
    m_listed.clear();
    m_directories.clear();
    for (const QString& directory : m_given + below)
        if (!m_directories.contains(directory))
            m_directories << directory;
    for (const QString& directory : below)
        m_listed.insert(directory, libraries.value(directory));
}

QString SearchPath::findLibraryFile(const std::string& library) const
{
    const auto found = m_found.find(library);
    if (found != m_found.end()) {
        if (QFileInfo::exists(found->second))
            return found->second;
        m_found.erase(found);
    }
    const QString name = libraryFileName(library);
    // A name that reaches into a subdirectory, or a hidden one, was not
    // listed by the walk.
    const bool listable = !name.contains(QLatin1Char('/')) && !name.startsWith(QLatin1Char('.'));
    const auto firstWith = [&](bool useListing) {
        for (const QString& directory : m_directories) {
            const auto listing = m_listed.constFind(directory);
            if (useListing && listing != m_listed.cend() && !listing->contains(name))
                continue;
            const QString candidate = directory + QLatin1Char('/') + name;
            if (QFileInfo::exists(candidate))
                return candidate;
        }
        return QString();
    };
    QString file = listable ? firstWith(true) : QString();
    // A file added since the walk is found all the same.
    if (file.isEmpty())
        file = firstWith(false);
    if (!file.isEmpty())
        m_found.emplace(library, file);
    return file;
}

QString SearchPath::libraryFileName(const std::string& library)
{
    return QString::fromStdString(library) + QLatin1String(librarySuffix);
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
