#pragma once

#include "FileIssue.h"
#include "LibraryDocument.h"
#include "SearchPath.h"

#include <QDateTime>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser::Host {

// The library files on the path, parsed on demand. Each reading of a file
// gets a number; a file that has changed on disk since (date or size) is read
// again under a new one. A document once given out is never changed.
//
// Only the most recently used documents are kept, up to a bound on the size
// of their files: a generation walks one library after another, and a large
// library's parsed form is many megabytes. Small libraries all stay, so that
// references between them don't parse them again and again. A document let
// go is parsed again from its unchanged file under the same reading. A
// document still in memory when its file changes is kept for good, so that
// what was read from it stays as it was.
class LibraryCatalog {
public:
    // The bound on the file bytes of the documents kept; the last one used
    // is kept whatever its size.
    static constexpr qint64 keptBytes = qint64(32) << 20;

    struct Loaded {
        std::shared_ptr<const LibraryDocument> document;
        std::uint64_t reading = 0;
    };

    explicit LibraryCatalog(const SearchPath& path) : m_path(path) {}

    // The library's document and its reading, or a null document with the
    // issue: no file on the path, an unreadable file, or one that fails the
    // schema check.
    Loaded load(const std::string& library, FileIssue& issue);

private:
    struct Entry {
        QString file;
        QDateTime modified;
        qint64 size = -1;
        std::uint64_t reading = 0;
        bool readable = false;
        std::weak_ptr<const LibraryDocument> document;
        FileIssue issue;
    };

    void keep(const std::shared_ptr<const LibraryDocument>& document);

    const SearchPath& m_path;
    std::unordered_map<std::string, Entry> m_entries;
    std::uint64_t m_readings = 0;
    // The most recently used documents, the newest last.
    std::deque<std::shared_ptr<const LibraryDocument>> m_recent;
    qint64 m_recentBytes = 0;
    std::vector<std::shared_ptr<const LibraryDocument>> m_superseded;
};

} // namespace LibraryBrowser::Host
