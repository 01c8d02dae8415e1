#include "model/LoadContext.h"

#include "platform/ErrorHolder.h"

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

void LoadContext::deferReference(const std::string& where, std::vector<unsigned> storedIds, Binder binder)
{
    m_pending.push_back({where, std::move(storedIds), std::move(binder)});
}

void LoadContext::bindReferences(ErrorHolder& errors)
{
    for (Pending& p : m_pending) {
        std::vector<Node*> targets;
        targets.reserve(p.ids.size());
        for (unsigned id : p.ids) {
            Node* target = id ? findNode(id) : nullptr;
            if (id && !target)
                errors.addError("Reference to unknown node id " + std::to_string(id) + " in " + p.where);
            targets.push_back(target);
        }
        p.binder(targets);
    }
    m_pending.clear();
}

} // namespace LibraryBrowser
