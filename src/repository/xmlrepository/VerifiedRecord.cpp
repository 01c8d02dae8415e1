#include "repository/xmlrepository/VerifiedRecord.h"

#include "repository/xmlrepository/RepositoryFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <charconv>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LibraryBrowser {

namespace {

// Lines superseded before the file is written anew: half of it, and some for
// a small record.
constexpr std::size_t SlackLines = 64;

void appendLine(std::string& text, std::string_view key, const VerifiedStamp& stamp)
{
    char number[24];
    text.append(number, std::to_chars(number, number + sizeof number, stamp.size).ptr);
    text += '\t';
    text.append(number, std::to_chars(number, number + sizeof number, stamp.modified).ptr);
    text += '\t';
    text += key;
    text += '\n';
}

// The directory that holds the archive's product directory: the store.
std::string storeOf(std::string_view key)
{
    const std::size_t product = key.rfind('/');
    const std::size_t store = product == std::string_view::npos || product == 0 ? std::string_view::npos
                                                                                  : key.rfind('/', product - 1);
    return store == std::string_view::npos ? std::string() : std::string(key.substr(0, store));
}

} // namespace

VerifiedRecord::VerifiedRecord(std::string file) : m_file(std::move(file)) {}

VerifiedStamp VerifiedRecord::find(const std::string& key)
{
    load();
    const auto known = m_stamps.find(key);
    return known == m_stamps.end() ? VerifiedStamp{} : known->second;
}

void VerifiedRecord::set(const std::string& key, const VerifiedStamp& stamp)
{
    load();
    if (const auto known = m_stamps.find(key); known != m_stamps.end())
        known->second = stamp;
    else
        m_stamps.emplace(m_ownKeys.emplace_back(key), stamp);
    m_pending.emplace_back(key, stamp);
}

void VerifiedRecord::erase(const std::string& key)
{
    load();
    if (m_stamps.erase(key))
        m_pending.emplace_back(key, VerifiedStamp{});
}

void VerifiedRecord::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    // Read whole and scanned in place: a store that has met a thousand
    // products holds thousands of lines, and every generation reads them.
    if (!readFileBytes(m_file, m_text))
        return;
    // Lines are about 150 bytes: the table is made once at its size.
    m_stamps.reserve(std::size_t(m_text.size()) / 128);
    const char* at = m_text.constData();
    const char* const end = at + m_text.size();
    while (at < end) {
        const char* lineEnd = static_cast<const char*>(std::memchr(at, '\n', std::size_t(end - at)));
        if (!lineEnd)
            lineEnd = end;
        VerifiedStamp stamp;
        const auto size = std::from_chars(at, lineEnd, stamp.size);
        const auto modified = size.ec == std::errc() && size.ptr < lineEnd && *size.ptr == '\t'
                                  ? std::from_chars(size.ptr + 1, lineEnd, stamp.modified)
                                  : std::from_chars_result{lineEnd, std::errc::invalid_argument};
        if (modified.ec == std::errc() && modified.ptr < lineEnd && *modified.ptr == '\t') {
            const char* path = modified.ptr + 1;
            const char* pathEnd = lineEnd;
            if (pathEnd > path && pathEnd[-1] == '\r')
                --pathEnd;
            if (pathEnd > path && !std::memchr(path, '\t', std::size_t(pathEnd - path))) {
                const std::string_view key(path, std::size_t(pathEnd - path));
                if (stamp.size < 0)
                    m_stamps.erase(key);
                else
                    m_stamps.insert_or_assign(key, stamp);
                ++m_lines;
            }
        }
        at = lineEnd + 1;
    }
}

void VerifiedRecord::save()
{
    if (m_pending.empty())
        return;
    if (m_lines + m_pending.size() > 2 * m_stamps.size() + SlackLines)
        rewrite();
    else
        append();
    m_pending.clear();
}

void VerifiedRecord::append()
{
    // After a line break of its own: a line a killed process cut short ends
    // there, and the first line added stays whole.
    std::string text = "\n";
    for (const auto& [key, stamp] : m_pending)
        appendLine(text, key, stamp);
    const int file = ::open(m_file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (file < 0) {
        rewrite();
        return;
    }
    // One write, so that lines of processes adding at once don't mix. A
    // record that can't be written only costs those archives a read again.
    if (::write(file, text.data(), text.size()) == ssize_t(text.size()))
        m_lines += m_pending.size();
    ::close(file);
}

void VerifiedRecord::rewrite()
{
    // Archives of a store that is gone are asked for no more.
    std::unordered_map<std::string, bool> storeThere;
    for (auto it = m_stamps.begin(); it != m_stamps.end();) {
        const std::string store = storeOf(it->first);
        auto there = storeThere.find(store);
        if (there == storeThere.end()) {
            struct stat status {};
            there = storeThere.emplace(store, store.empty() || ::stat(store.c_str(), &status) == 0 || errno != ENOENT)
                        .first;
        }
        it = there->second ? std::next(it) : m_stamps.erase(it);
    }
    QDir().mkpath(QFileInfo(QString::fromStdString(m_file)).absolutePath());
    QSaveFile out(QString::fromStdString(m_file));
    if (!out.open(QIODevice::WriteOnly))
        return;
    std::string text;
    text.reserve(m_stamps.size() * 160);
    for (const auto& [key, stamp] : m_stamps)
        appendLine(text, key, stamp);
    out.write(text.data(), qint64(text.size()));
    if (out.commit())
        m_lines = m_stamps.size();
}

} // namespace LibraryBrowser
