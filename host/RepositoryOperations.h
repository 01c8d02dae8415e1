#pragma once

#include "BlockTree.h"
#include "CallArguments.h"
#include "SearchPath.h"
#include "TdBlocksCache.h"

#include <QHash>

#include <string>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser::Host {

// The operations of "tdprivate" that the repository store asks: product
// data from the tdblocks files, children, block and library data by path or
// handle, icons, and directory removal. A bad file fails the call that needs
// it, with an error line in the report passed in; nothing is written then.
class RepositoryOperations {
public:
    using CallResult = HostInterpreter::CallResult;

    RepositoryOperations(const SearchPath& path, LibraryCatalog& catalog, BlockTree& tree, PathCacheFile& cache)
        : m_path(path), m_catalog(catalog), m_tree(tree), m_tdBlocks(cache) {}

    static bool isOperation(const std::string& name);
    // Inputs as the call got them, the operation name first.
    CallResult call(const std::string& operation, int outputCount, const std::vector<HostValue>& inputs);

private:
    CallResult getTdBlocksData(int outputCount, CallArguments& args);
    CallResult getChildrenHandles(int outputCount, CallArguments& args);
    CallResult getBlockData(int outputCount, CallArguments& args);
    CallResult getLibraryData(int outputCount, CallArguments& args);
    CallResult createSubSystemIcons(int outputCount, CallArguments& args);
    CallResult removeDirectory(int outputCount, CallArguments& args);

    BlockTree::NodeId nodeOfInput(CallArguments& args, std::size_t index, FileIssue& issue);
    BlockTree::NodeId childAtPath(BlockTree::NodeId container, const std::string& containerPath,
                                  const std::string& path, FileIssue& issue);
    bool iconOf(BlockTree::NodeId id, QByteArray& svg, FileIssue& issue);
    static CallResult reportFailure(HostLogSink* report, const std::string& id, const std::string& message);

    const SearchPath& m_path;
    LibraryCatalog& m_catalog;
    BlockTree& m_tree;
    TdBlocksCache m_tdBlocks;
    // How each library file found is named to the module: a generation asks
    // for every product's, and the root does not change while the host runs.
    QHash<QString, std::string> m_fileSpecs;
};

} // namespace LibraryBrowser::Host
