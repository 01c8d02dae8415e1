#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser {

class Node;

// The id table of one load: maps the ids stored in a document to the nodes
// made for them. References may point forward, so they are bound only after
// every node of the document exists.
class LoadContext {
public:
    using Binder = std::function<void(const std::vector<Node*>& targets)>;

    // False if the document already used this id.
    bool addNode(unsigned storedId, Node* node);
    // The node made for a stored id, or null.
    Node* findNode(unsigned storedId) const;

    // Id 0 stands for "no node" and is bound to null without complaint.
    void deferReference(std::vector<unsigned> storedIds, Binder binder);
    // Binds every deferred reference. An id the document never defined binds
    // to null (dropped from lists), silently: a reference to a node that is
    // gone means no reference, not a broken document.
    void bindReferences();

private:
    struct Pending {
        std::vector<unsigned> ids;
        Binder binder;
    };
    // Documents number their nodes densely from 1: those ids index a
    // vector (a manifest read is one heap block then, not one per node), the
    // few far beyond the count go to the map.
    std::vector<Node*> m_dense;
    std::unordered_map<unsigned, Node*> m_sparse;
    std::size_t m_added = 0;
    std::vector<Pending> m_pending;
};

} // namespace LibraryBrowser
