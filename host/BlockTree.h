#pragma once

#include "BlockRecord.h"
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
// reading of a library file has one node; a file read again after a change
// gets new nodes. References resolve on every use, so a changed target is
// seen at once.
//
// A node keeps what the walk needs (name, type, place); its record is found
// again in its document by that place, so that a document the catalog has let
// go can be parsed again when it is needed.
class BlockTree {
public:
    using NodeId = std::uint32_t;
    static constexpr NodeId none = 0;

    struct Node {
        std::size_t reading = 0; // index into the readings of library files
        NodeId parent = none;    // none for the library itself
        int indexInParent = -1;
        BlockType type = BlockType::SubSystem;
        std::string name;
        bool childrenBuilt = false;
        std::vector<NodeId> children;
        std::unordered_map<std::string, NodeId> childByKey;
    };

    // A node's record in its document, which stays alive while this is held.
    struct Held {
        std::shared_ptr<const LibraryDocument> document;
        const BlockRecord* record = nullptr; // null for the library itself
        explicit operator bool() const { return document != nullptr; }
    };

    explicit BlockTree(LibraryCatalog& catalog) : m_catalog(catalog) {}

    static double handleOf(NodeId id) { return static_cast<double>(id); }
    // The node of a handle, or none for a value that is not one.
    NodeId nodeOfHandle(double handle) const;
    const Node& node(NodeId id) const { return m_nodes[id - 1]; }
    static bool isLibrary(const Node& node) { return node.parent == none; }

    // The node's document and record; empty, with the issue, when the
    // document was let go and its file has changed since.
    Held hold(NodeId id, FileIssue& issue);

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
    // The name of the node's library, as its file gives it.
    const std::string& libraryOf(NodeId id) const;
    // An issue located at a field of the node in its library file.
    FileIssue issueAt(NodeId id, const QString& field, const QString& message);

private:
    struct Reading {
        std::string library;
        QString file;
        std::uint64_t number = 0;
        NodeId root = none;
        std::weak_ptr<const LibraryDocument> document;
    };

    NodeId rootOf(const std::string& library, const LibraryCatalog::Loaded& loaded);
    NodeId makeNode(Node node);
    bool buildChildren(NodeId id, FileIssue& issue);
    NodeId walk(NodeId from, const std::vector<std::string>& segments, std::size_t first, FileIssue& issue);
    bool isAncestorOrSelf(NodeId candidate, NodeId of) const;

    LibraryCatalog& m_catalog;
    std::deque<Node> m_nodes;
    std::vector<Reading> m_readings;
    std::unordered_map<std::uint64_t, std::size_t> m_readingByNumber;
    std::vector<NodeId> m_resolving;
};

} // namespace LibraryBrowser::Host
