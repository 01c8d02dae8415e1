#include "repository/xmlrepository/RepositoryPaths.h"

#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/RepositoryReport.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <algorithm>

namespace LibraryBrowser {

std::string blankLineFeeds(const std::string& text)
{
    std::string result = text;
    for (char& c : result)
        if (c == '\n')
            c = ' ';
    return result;
}

namespace {

bool isRefusedControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 && c != '\t' && c != '\n';
}

} // namespace

bool holdsControlCharacter(const std::string& name)
{
    return std::any_of(name.begin(), name.end(), isRefusedControl);
}

std::string showControlCharacters(const std::string& name)
{
    static const char digits[] = "0123456789abcdef";
    std::string shown;
    for (const char c : name) {
        if (isRefusedControl(c))
            shown.append("\\x").append(1, digits[(c >> 4) & 0xf]).append(1, digits[c & 0xf]);
        else
            shown.append(1, c);
    }
    return shown;
}

std::string storePathProblem(const std::string& given)
{
    const std::string path = forwardSlashes(given);
    if (path.empty())
        return "it is empty";
    if (path.front() == '/' || (path.size() > 1 && path[1] == ':'))
        return "it is not a relative path";
    for (const char c : path)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            return "it holds a control character";
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string segment = path.substr(start, end - start);
        if (segment.empty())
            return "it holds an empty segment";
        if (segment == "." || segment == "..")
            return "it holds a \"" + segment + "\" segment";
        start = end + 1;
    }
    return std::string();
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
    // An ASCII name, as names mostly are, byte by byte: a check of the store
    // names the damage note of each of its products.
    if (std::all_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        static const char digits[] = "0123456789abcdef";
        std::string result;
        result.reserve(name.size() * 2);
        for (char c : name) {
            if (c == '\\')
                c = '/';
            if (c == '_') {
                result += "__";
            } else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) {
                result += c;
            } else {
                result += '_';
                result += digits[c >> 4];
                result += digits[c & 15];
            }
        }
        return result;
    }
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
    // Decided by the first character where it can be: a check of a store
    // asks for every file of every product, and a QFileInfo per question
    // cost more than the rest of the check. A resource path is QFileInfo's.
    const bool absolute = !path.empty()
                          && (path.front() == '/'
                              || (path.front() == ':' && !QFileInfo(QString::fromStdString(path)).isRelative()));
    return absolute ? path : root + "/" + path;
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
