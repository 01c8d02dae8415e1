#pragma once

#include <unordered_map>

namespace LibraryBrowser {

// Maps node ids of a source model to the ids of their copies in a
// destination model, for rebinding references after nodes were copied.
class NodeMap {
public:
    void insert(unsigned sourceId, unsigned destId) { m_ids[sourceId] = destId; }
    // 0 (no node) for an id that was not copied.
    unsigned getDestIDForSourceID(unsigned sourceId) const
    {
        auto it = m_ids.find(sourceId);
        return it == m_ids.end() ? 0 : it->second;
    }

private:
    std::unordered_map<unsigned, unsigned> m_ids;
};

} // namespace LibraryBrowser
