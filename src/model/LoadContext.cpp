#include "model/LoadContext.h"

namespace LibraryBrowser {

bool LoadContext::addNode(unsigned storedId, Node* node)
{
    return m_nodes.emplace(storedId, node).second;
}

Node* LoadContext::findNode(unsigned storedId) const
{
    auto it = m_nodes.find(storedId);
    return it == m_nodes.end() ? nullptr : it->second;
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
