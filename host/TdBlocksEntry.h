#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser::Host {

enum class EntryType { Product, Palette };

// One entry of a tdblocks.json file, with file names already made relative
// to the host root (or absolute where they lie outside it).
struct TdBlocksEntry {
    std::string productName;
    std::string library;
    std::string repositoryDirectory;
    bool flag = true;
    std::string treeIcon;
    std::string panelIcon;
    EntryType type = EntryType::Product;
    std::vector<std::string> children;
    std::vector<std::string> dependencies;
};

} // namespace LibraryBrowser::Host
