#pragma once

#include "platform/ZipEntryIndex.h"
#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <QByteArray>

#include <cstdint>
#include <memory>
#include <string>

namespace LibraryBrowser {

// Entries of one archive of a store, read from a private copy of it. The
// copy is made at the first read and serves every later read until close(),
// so a reader sees one state of the archive while a writer is free to
// replace the original. What is cached is the copy and an index of where its
// entries lie, not an open file: each read opens the copy, reads one entry and
// closes it, so a search over any number of products holds no file open.
class XMLRepositoryArchiveCache {
public:
    // Where another process may change the store, what holds the copy to
    // the record it is read for: the store's directory (for its lock), its
    // top-level manifest and the stamp of the manifest the record came from.
    struct Origin {
        std::string storeDirectory;
        std::string topLevelPath;
        FileStamp topLevelStamp;
    };

    XMLRepositoryArchiveCache(std::string archivePath, RepositoryReportPtr report, Origin origin = Origin());
    ~XMLRepositoryArchiveCache();
    XMLRepositoryArchiveCache(const XMLRepositoryArchiveCache&) = delete;
    XMLRepositoryArchiveCache& operator=(const XMLRepositoryArchiveCache&) = delete;

    // The entry's bytes; empty, with the reason in the report, if the copy
    // can't be made, the archive can't be opened or lacks the entry. An
    // archive missing from the store gives empty bytes without a word; this
    // is checked at every read. The copy is made under the store's lock, and
    // only while the top-level manifest is still the one of the origin:
    // otherwise, and when the archive vanished with a new top level, the
    // bytes are empty and changedUnderIt() is true.
    QByteArray readEntry(const std::string& entryName);
    // Another process changed the archive after the record it is read for
    // was loaded: what this cache gives no longer fits that record.
    bool changedUnderIt() const { return m_changed; }
    // Removes the private copy; the next read makes a new one.
    void close();
    // Whether the archive, as the last read found it, is readable but has no
    // such entry.
    bool lacks(const std::string& entryName);
    // Whether the archive has the entry; the private copy is made if need be,
    // but a missing entry is no warning.
    bool holds(const std::string& entryName) { return !indexedLocalCopy().empty() && m_index.contains(entryName); }
    // The first damage a read met since the copy was made: an archive that
    // can't be opened, or an entry failing its checksum; or empty.
    const std::string& damage() const { return m_damage; }

    // Process-wide counts: archives copied to a private place, and entries
    // read out of them.
    static std::uint64_t copyCount();
    static std::uint64_t readCount();
    // Process-wide count of archives found changed under their reader.
    static std::uint64_t changeCount();

private:
    void noteDamage(const std::string& reason);
    std::string directoryName() const;

    // The private copy, made if missing, with its index; the empty string,
    // with the report told, if either can't be had.
    std::string indexedLocalCopy();
    // The store's top-level manifest is no longer the one of the origin.
    bool topLevelMoved() const;
    void markChanged();

    std::uint32_t m_number;
    std::string m_archivePath;
    RepositoryReportPtr m_report;
    std::string m_damage;
    Origin m_origin;
    bool m_changed = false;
    ZipEntryIndex m_index;
    // The private copy once made and indexed, until close().
    std::string m_localCopy;
    // Whether the private directory may have been made since close().
    bool m_directoryMade = false;
};

using XMLRepositoryArchiveCachePtr = std::shared_ptr<XMLRepositoryArchiveCache>;

} // namespace LibraryBrowser
