#pragma once

#include "FileIssue.h"
#include "LibraryDocument.h"
#include "SearchPath.h"

#include <QDateTime>

#include <memory>
#include <string>
#include <unordered_map>

namespace LibraryBrowser::Host {

// The library files on the path, parsed on first use and kept; a file that
// has changed on disk since (date or size) is read again. A document once
// given out is never changed, so what was read from it stays valid.
class LibraryCatalog {
public:
    explicit LibraryCatalog(const SearchPath& path) : m_path(path) {}

    // The library's document, or null with the issue: no file on the path,
    // an unreadable file, or one that fails the schema check.
    std::shared_ptr<const LibraryDocument> load(const std::string& library, FileIssue& issue);
    // The library's file on the path, or empty.
    QString fileOf(const std::string& library) const { return m_path.findLibraryFile(library); }

private:
    struct Entry {
        QString file;
        QDateTime modified;
        qint64 size = -1;
        std::shared_ptr<const LibraryDocument> document;
        FileIssue issue;
    };

    const SearchPath& m_path;
    std::unordered_map<std::string, Entry> m_entries;
};

} // namespace LibraryBrowser::Host
