#include "repository/xmlrepository/RepositoryPaths.h"

#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/RepositoryReport.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

namespace LibraryBrowser {

std::string blankLineFeeds(const std::string& text)
{
    std::string result = text;
    for (char& c : result)
        if (c == '\n')
            c = ' ';
    return result;
}

std::string forwardSlashes(const std::string& path)
{
    std::string result = path;
    for (char& c : result)
        if (c == '\\')
            c = '/';
    return result;
}

std::string sanitizeName(const std::string& name)
{
    QString text = QString::fromStdString(name);
    text.replace(QLatin1String("_"), QLatin1String("__"));
    text.replace(QLatin1Char('\\'), QLatin1Char('/'));

    QString result;
    result.reserve(text.size() * 2);
    for (const QChar c : text) {
        // Letters beyond Latin-1 are kept as they are: their one-byte form
        // would be a NUL, which no file system takes in a name.
        if (c.isLetterOrNumber() || c == QLatin1Char('_')) {
            result.append(c);
            continue;
        }
        const int code = static_cast<signed char>(c.toLatin1());
        QString digits = QString::number(code, 16);
        if (digits.size() == 1)
            digits.prepend(QLatin1Char('0'));
        result.append(QLatin1Char('_')).append(digits);
    }
    return result.toStdString();
}

std::vector<std::string> splitBlockPath(const std::string& path)
{
    std::vector<std::string> segments;
    if (path.empty())
        return segments;
    std::string segment;
    std::size_t i = 0;
    while (i < path.size()) {
        if (path[i] != '/') {
            segment += path[i++];
            continue;
        }
        const std::size_t runStart = i;
        while (i < path.size() && path[i] == '/')
            ++i;
        const std::size_t run = i - runStart;
        if (run % 2 == 0) {
            segment.append(run, '/');
        } else {
            segments.push_back(segment);
            segment.clear();
        }
    }
    segments.push_back(segment);
    return segments;
}

std::string sanitizePath(const std::string& path)
{
    std::string result;
    bool first = true;
    for (const std::string& segment : splitBlockPath(path)) {
        if (!first)
            result += '/';
        result += sanitizeName(segment);
        first = false;
    }
    return result;
}

std::string absolutePath(const std::string& root, const std::string& path)
{
    if (QFileInfo(QString::fromStdString(path)).isRelative())
        return root + "/" + path;
    return path;
}

std::string relativePath(const std::string& root, const std::string& path)
{
    QString text = QString::fromStdString(path);
    if (QFileInfo(text).isRelative())
        return path;
    text.remove(QString::fromStdString(root), Qt::CaseSensitive);
    return text.mid(1).toStdString();
}

std::string shippedRepositoryDirectory()
{
    return Platform::environment().root() + "/toolbox/tandril/tandril/private/td_library_browser_repos";
}

std::string writableRepositoryDirectory(RepositoryReport& report)
{
    const std::string path = Platform::environment().preferencesDirectory() + "/td_library_browser_repos";
    const QString directory = QString::fromStdString(path);
    if (!QFileInfo::exists(directory) && !QDir().mkpath(directory))
        report.logWarning("Unable to create preference directory");
    return path;
}

} // namespace LibraryBrowser
