#pragma once

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
    bool modelFileAgrees(const LibraryImpl& library, bool ignoreTimestamp) const;
    // Writes the date line and says whether the content must be looked at.
    DateVerdict judgeDates(bool datesEqual, bool ignoreTimestamp, const std::string& shownName,
                           const std::string& shownPath) const;

    RepositoryReport& m_report;
    std::string m_storeDirectory;
    const HostOperations& m_host;
};

} // namespace LibraryBrowser
