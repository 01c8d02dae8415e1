#pragma once

#include "model/MetaNode.h"

#include <memory>
#include <vector>

namespace LibraryBrowser {

// The manifest schema as data: one meta node per node class, built once on
// first use from the schema table.
class MetaModel {
public:
    static const MetaModel& instance();

    const StringId& name() const { return m_name; }
    // In registration order: TandrilObjectImpl, BlockImpl, SubSystemImpl,
    // LibraryImpl, LibraryRefImpl, PaletteImpl.
    const std::vector<std::unique_ptr<MetaNode>>& metaNodes() const { return m_nodes; }
    const MetaNode* metaNode(const StringId& typeName) const;

private:
    MetaModel();
    MetaNode& createMetaNode(const StringId& typeName);
    MetaNode* mutableMetaNode(const StringId& typeName);

    StringId m_name;
    std::vector<std::unique_ptr<MetaNode>> m_nodes;
};

} // namespace LibraryBrowser
