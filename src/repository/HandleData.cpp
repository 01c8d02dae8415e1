#include "repository/HandleData.h"

#include "model/TandrilObjectImpl.h"
#include "repository/ReaderCache.h"
#include "repository/TandrilObject.h"

namespace LibraryBrowser {

HandleData::HandleData(const StringId& id, ReaderCache* cache, TandrilObjectImpl* node, HandleData*& entry)
    : m_id(id), m_cache(cache), m_node(node)
{
    entry = this;
    m_cache->registerHandle(this);
}

HandleData::~HandleData()
{
    if (m_cache)
        m_cache->unregisterHandle(this);
}

HandleData* HandleData::acquire(TandrilObjectImpl* node, ReaderCache* cache)
{
    if (!node || !cache)
        return nullptr;
    const StringId& id = node->getUniquePath();
    // One look-up for both the search and the registration of a new one.
    HandleData*& entry = cache->handleEntry(id);
    if (entry) {
        // An entry with a real node of its own keeps it: one id standing for
        // two objects is a fault of the store, not something to paper over.
        if (!entry->m_node || entry->m_node->getIsInvalid())
            entry->setNode(node);
        return entry;
    }
    return new HandleData(id, cache, node, entry);
}

HandleData* HandleData::acquire(const StringId& id, TandrilObjectImpl* node, ReaderCache* cache)
{
    if (!cache)
        return nullptr;
    HandleData*& entry = cache->handleEntry(id);
    if (entry) {
        if (!entry->m_node || !entry->m_cache)
            entry->setNode(node);
        return entry;
    }
    return new HandleData(id, cache, node, entry);
}

void HandleData::setNode(TandrilObjectImpl* node)
{
    m_node = node;
    const Model* model = node ? node->getModel() : nullptr;
    if (m_cache && model != m_model)
        m_cache->fileByModel(*this, model);
}

TandrilObjectImpl* HandleData::resolve()
{
    if (m_node || !m_cache || m_resolving)
        return m_node;
    m_resolving = true;
    // Keeps this data alive should the lookup drop the last other handle.
    ref();
    const TandrilObject found = m_cache->findObject(m_id);
    if (!m_node && found.getData() != this)
        setNode(found.getData() ? found.getData()->m_node : nullptr);
    m_resolving = false;
    TandrilObjectImpl* node = m_node;
    unref();
    return node;
}

} // namespace LibraryBrowser
