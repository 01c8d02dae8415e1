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
    QStringList below;
    QDirIterator it(m_root, {QLatin1String(TdBlocksParser::fileName)}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        below << QFileInfo(it.next()).absolutePath();
    below.sort();
    m_found.clear();
    m_directories.clear();
    for (const QString& directory : m_given + below)
        if (!m_directories.contains(directory))
            m_directories << directory;
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
    for (const QString& directory : m_directories) {
        const QString candidate = directory + QLatin1Char('/') + name;
        if (QFileInfo::exists(candidate)) {
            m_found.emplace(library, candidate);
            return candidate;
        }
    }
    return QString();
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
