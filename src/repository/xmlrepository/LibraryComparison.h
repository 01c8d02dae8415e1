#pragma once

#include <cstdint>
#include <string>

namespace LibraryBrowser {

class HostOperations;
class LibraryImpl;
class RepositoryReport;

// Whether what a store holds for one library still agrees with the host's
// disk: the files the product depends on, the store's two archives, and the
// library's model file. Dates are trusted when they match, so the usual case
// (nothing changed) reads no file; a changed date costs a size test and, when
// the size is equal, a checksum. With `ignoreTimestamp` every file is read.
class LibraryComparison {
public:
    LibraryComparison(RepositoryReport& report, std::string storeDirectory, const HostOperations& host)
        : m_report(report), m_storeDirectory(std::move(storeDirectory)), m_host(host) {}

    bool compareLibrary(const LibraryImpl& library, bool ignoreTimestamp) const;

private:
    enum class DateVerdict { Trusted, CheckContent };

    bool fileDependenciesAgree(const LibraryImpl& owner, bool ignoreTimestamp) const;
    bool storedDataExists(const LibraryImpl& owner, const LibraryImpl& library) const;
    bool modelFileAgrees(const LibraryImpl& owner, const LibraryImpl& library, bool ignoreTimestamp) const;
    // Writes the date line and says whether the content must be looked at.
    // Equal dates are not trusted for a file whose recorded date is not older
    // than the start of the generation that recorded it (the owner's
    // lastModified): an edit within that same second leaves the date as it was.
    DateVerdict judgeDates(std::int64_t recordedDate, std::int64_t currentDate, const LibraryImpl& owner,
                           bool ignoreTimestamp, const std::string& shownName, const std::string& shownPath) const;
    // Whether the recorded date is not older than that start.
    static bool recordedSinceGenerationStart(std::int64_t recordedDate, const LibraryImpl& owner);
    // The start of the generation that made the product's records, from its
    // lastModified; 0 when there is none to read.
    static std::int64_t generationStart(const LibraryImpl& owner);
    // The same read from the text itself.
    static std::int64_t startOf(const std::string& text);

    RepositoryReport& m_report;
    std::string m_storeDirectory;
    const HostOperations& m_host;
};

} // namespace LibraryBrowser
