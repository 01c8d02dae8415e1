#pragma once

#include "FileIssue.h"
#include "LibraryCatalog.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser::Host {

// The blocks of the libraries on the path as nodes with handles. A node is
// made the first time it is reached and kept for the life of the host, so a
// handle (a double) stays valid and is looked up by index. Each block of a
// read document has one node; a library file read again gets new nodes.
// References resolve on every use, so a changed target is seen at once.
class BlockTree {
public:
    using NodeId = std::uint32_t;
    static constexpr NodeId none = 0;

    struct Node {
        std::shared_ptr<const LibraryDocument> document;
        const BlockRecord* record = nullptr; // null for the library itself
        NodeId parent = none;
        int indexInParent = -1;
        bool childrenBuilt = false;
        std::vector<NodeId> children;
        std::unordered_map<std::string, NodeId> childByKey;
    };

    explicit BlockTree(LibraryCatalog& catalog) : m_catalog(catalog) {}

    static double handleOf(NodeId id) { return static_cast<double>(id); }
    // The node of a handle, or none for a value that is not one.
    NodeId nodeOfHandle(double handle) const;
    const Node& node(NodeId id) const { return m_nodes[id - 1]; }

    // The node at a path in the host's notation, going through references.
    NodeId nodeAtPath(const std::string& path, FileIssue& issue);
    // The children of a library or subsystem in order, those of its target
    // for a reference, none for a block.
    bool children(NodeId id, std::vector<NodeId>& out, FileIssue& issue);
    // The library or subsystem a reference stands for, following references
    // that point at references. Missing targets and cycles are errors.
    NodeId resolveReference(NodeId id, FileIssue& issue);
    // The child of a library or subsystem by name (line feeds match blanks).
    NodeId childNamed(NodeId id, const std::string& name);
    // The node's path in the host's notation, from its own library.
    std::string pathOf(NodeId id) const;
    const std::string& libraryOf(NodeId id) const { return node(id).document->name; }
    // An issue located at a field of the node in its library file.
    FileIssue issueAt(NodeId id, const QString& field, const QString& message) const;

private:
    NodeId rootOf(const std::shared_ptr<const LibraryDocument>& document);
    NodeId makeNode(const void* key, Node node);
    void buildChildren(NodeId id);
    NodeId walk(NodeId from, const std::vector<std::string>& segments, std::size_t first, FileIssue& issue);
    bool isAncestorOrSelf(NodeId candidate, NodeId of) const;

    LibraryCatalog& m_catalog;
    std::deque<Node> m_nodes;
    std::unordered_map<const void*, NodeId> m_nodeByKey;
    std::vector<NodeId> m_resolving;
};

} // namespace LibraryBrowser::Host
