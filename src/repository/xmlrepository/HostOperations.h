#pragma once

#include "platform/HostInterpreter.h"
#include "repository/RepositoryReport.h"

#include <QRectF>

#include <cstdint>
#include <string>
#include <vector>

namespace LibraryBrowser {

// The model file of a library, as the host knows it.
struct LibraryData {
    std::string fileSpec; // as the host gives it
    std::int64_t size = 0;
    std::int32_t date = 0; // modification time of the file, read here
};

// One child of a library or subsystem, as the host describes it.
struct BlockData {
    std::string name;        // line feeds as blanks
    std::string displayName; // name with "//" as "/"
    std::string description;
    QRectF position;
    std::string type; // "Block", "SubSystem" or "LibraryRef"
    std::string libraryRefName;
    std::string libraryRefPath;
};

// The repository's questions to its host, all through the one trapped entry
// "tdprivate" with the operation's name first and the report second, so that
// the host can log to it. A failed call gives an empty answer and no message:
// the host has said what went wrong in the report already.
class HostOperations {
public:
    explicit HostOperations(RepositoryReportPtr report) : m_report(std::move(report)) {}

    // Empty file, size and date 0 when the host fails.
    LibraryData getLibraryData(const std::string& libraryPath) const;
    // Opaque handles of the children, in the host's order; empty on failure.
    std::vector<double> getChildrenHandles(const std::string& path) const;
    std::vector<double> getChildrenHandles(double handle) const;
    // False when the call fails.
    bool getBlockData(double handle, BlockData& data) const;
    // Asks the host to write one icon file per child; the answer is not
    // examined: a file the host did not write is simply missing later.
    void createSubSystemIcons(const std::string& path, const std::vector<std::string>& childPaths,
                              const std::vector<std::string>& files) const;

private:
    HostInterpreter::CallResult call(const char* operation, int outputCount, std::vector<HostValue> inputs) const;

    RepositoryReportPtr m_report;
};

} // namespace LibraryBrowser
