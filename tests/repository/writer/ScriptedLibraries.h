#pragma once

#include "support/ScriptedHostInterpreter.h"

#include <map>
#include <string>
#include <vector>

namespace LibraryBrowser::Testing {

// One block of a scripted library; a subsystem has children, a reference a
// target library and path. Trailing members left out of a brace list are empty.
struct ScriptedBlock {
    std::string name;
    std::string type = "Block";
    std::string description{};
    std::vector<ScriptedBlock> children{};
    std::string targetLibrary{};
    std::string targetPath{};
    // Bytes of filler in the block's icon, for icons of a real library's size.
    int iconPadding = 0;
};

// One entry of the host's product list.
struct ScriptedProduct {
    std::string label;
    std::string file;
    std::string type = "Product";
    std::vector<std::string> children{};
    std::vector<std::string> files{};
};

// A host world for the writer, answering every repository operation of
// "tdprivate" from products and libraries held here. Each library also gets
// a model file below the host root, whose content and date change with each
// edit of the library, so that the writer's up-to-date tests see the change.
class ScriptedLibraries {
public:
    ScriptedLibraries(ScriptedHostInterpreter& interpreter, std::string hostRoot);

    void setProducts(std::vector<ScriptedProduct> products) { m_products = std::move(products); }
    // Sets (or replaces) a library's blocks and rewrites its model file.
    void setLibrary(const std::string& library, std::vector<ScriptedBlock> blocks);
    std::string modelFile(const std::string& library) const;

private:
    struct Node {
        const ScriptedBlock* block = nullptr; // null for a library
        std::vector<double> children;
    };

    void rebuildHandles();
    void addChildren(double parent, const std::string& path, const std::vector<ScriptedBlock>& blocks);
    double handleOfPath(const std::string& path) const;

    std::string m_root;
    std::vector<ScriptedProduct> m_products;
    std::map<std::string, std::vector<ScriptedBlock>> m_libraries;
    std::map<double, Node> m_nodes;
    std::map<std::string, double> m_byPath;
    double m_nextHandle = 1;
    int m_edits = 0;
};

} // namespace LibraryBrowser::Testing
