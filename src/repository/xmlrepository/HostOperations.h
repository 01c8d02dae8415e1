#pragma once

#include "model/FileInfo.h"
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

// The installed products, as the host's tdblocks data announces them: one
// element per entry in each sequence, in the order of the host's path.
struct ProductsData {
    enum class LibraryType { Product = 0, Palette = 1 };

    std::vector<std::string> productNames;
    std::vector<std::string> modelFiles;
    std::vector<std::string> reposDirectories;
    std::vector<bool> flags;
    std::vector<std::string> treeIcons;  // with forward slashes
    std::vector<std::string> panelIcons; // with forward slashes
    std::vector<LibraryType> types;
    std::vector<std::vector<std::string>> children;
    std::vector<std::vector<FileInfo>> fileDependencies; // only fileSpec set

    std::size_t size() const { return productNames.size(); }
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

    // Every product on the host's path (or on `hostPath` when it is not
    // empty). Empty when the host fails. An entry of a type other than
    // "Product" or "Palette" is left out with a warning, so that it cannot
    // shift the types of the entries after it.
    ProductsData getTdBlocksData(const std::vector<std::string>& hostPath) const;
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
