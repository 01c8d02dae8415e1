#include "model/LoadContext.h"

#include <algorithm>

namespace LibraryBrowser {

namespace {

// Ids below twice the nodes added so far plus this index the vector: its
// size follows the nodes of the document, whatever ids a hostile one gives.
constexpr std::size_t DenseSlack = 1024;

} // namespace

bool LoadContext::addNode(unsigned storedId, Node* node)
{
    // Nodes are never null: null marks a free place of the vector.
    if (!node || findNode(storedId))
        return false;
    ++m_added;
    if (storedId >= 2 * m_added + DenseSlack)
        return m_sparse.emplace(storedId, node).second;
    if (storedId >= m_dense.size())
        m_dense.resize(std::max<std::size_t>(storedId + 1, 2 * m_dense.size()), nullptr);
    m_dense[storedId] = node;
    return true;
}

Node* LoadContext::findNode(unsigned storedId) const
{
    if (storedId < m_dense.size() && m_dense[storedId])
        return m_dense[storedId];
    const auto it = m_sparse.find(storedId);
    return it == m_sparse.end() ? nullptr : it->second;
}

void LoadContext::deferReference(std::vector<unsigned> storedIds, Binder binder)
{
    m_pending.push_back({std::move(storedIds), std::move(binder)});
}

void LoadContext::bindReferences()
{
    for (Pending& p : m_pending) {
        std::vector<Node*> targets;
        targets.reserve(p.ids.size());
        for (unsigned id : p.ids)
            targets.push_back(id ? findNode(id) : nullptr);
        p.binder(targets);
    }
    m_pending.clear();
}

} // namespace LibraryBrowser
