#pragma once

#include "platform/ZipArchive.h"
#include "repository/RepositoryReport.h"

#include <QByteArray>

#include <cstdint>
#include <memory>
#include <string>

namespace LibraryBrowser {

// Entries of one archive of a store, read from a private copy of it. The
// copy is made at the first read and serves every later read until close(),
// so a reader sees one state of the archive while a writer is free to
// replace the original. The copy stays open between reads: it is nobody
// else's, and opening an archive parses its whole directory, which would make
// a walk over a product cost the square of its number of manifests.
class XMLRepositoryArchiveCache {
public:
    XMLRepositoryArchiveCache(std::string archivePath, RepositoryReportPtr report);
    ~XMLRepositoryArchiveCache();
    XMLRepositoryArchiveCache(const XMLRepositoryArchiveCache&) = delete;
    XMLRepositoryArchiveCache& operator=(const XMLRepositoryArchiveCache&) = delete;

    // The entry's bytes; empty, with the reason in the report, if the copy
    // can't be made, the archive can't be opened or lacks the entry. A
    // missing archive gives empty bytes without a word.
    QByteArray readEntry(const std::string& entryName);
    // Removes the private copy; the next read makes a new one.
    void close();

    // Process-wide counts: archives copied to a private place, and entries
    // read out of them.
    static std::uint64_t copyCount();
    static std::uint64_t readCount();

private:
    std::string directoryName() const;

    // The private copy, opened on first use; false with the report told.
    bool openLocalCopy();

    std::uint32_t m_number;
    std::string m_archivePath;
    RepositoryReportPtr m_report;
    ZipArchive m_archive;
};

using XMLRepositoryArchiveCachePtr = std::shared_ptr<XMLRepositoryArchiveCache>;

} // namespace LibraryBrowser
