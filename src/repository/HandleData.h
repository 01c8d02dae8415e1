#pragma once

#include "platform/SmallObjectPool.h"
#include "platform/StringId.h"

#include <cstddef>
#include <cstdint>

namespace LibraryBrowser {

class HandleData;
class Model;
class ReaderCache;
class TandrilObjectImpl;

// The handles of one product in a cache, linked through their HandleData:
// leaving it costs two pointers, where a hashed set cost a look-up into
// memory long cold, once per handle whenever a product was dropped.
struct ProductHandleList {
    HandleData* first = nullptr;
    std::size_t count = 0;
};

// What all handles on one object share: the object's id, the cache it is
// registered with, and the manifest node once it has been found. A cache has
// at most one HandleData per id, so handles on one object share one. The
// node is found again on demand, which is how a handle survives the
// reloading of its product; the cache clears the node before it throws the
// node's model away, and clears both pointers when it dies.
class HandleData {
public:
    // The set of its cache that a HandleData is filed in.
    enum class HandleSet : std::uint8_t { Library, Invalid, Product };

    // Made and dropped with the nodes of the products read and released.
    TDLB_POOLED_ALLOCATION

    ~HandleData();
    HandleData(const HandleData&) = delete;
    HandleData& operator=(const HandleData&) = delete;

    // The data for a node in a cache: the registered one, given the node if
    // it had none or only a placeholder, else a new one. Null if either
    // argument is null.
    static HandleData* acquire(TandrilObjectImpl* node, ReaderCache* cache);
    // The data for an id that a cache has found a node for: the registered
    // one, given the node if it lacks one, else a new one.
    static HandleData* acquire(const StringId& id, TandrilObjectImpl* node, ReaderCache* cache);

    void ref() { ++m_refCount; }
    void unref()
    {
        if (--m_refCount == 0)
            delete this;
    }

    const StringId& id() const { return m_id; }
    ReaderCache* cache() const { return m_cache; }
    // The node as it stands, without resolution.
    TandrilObjectImpl* node() const { return m_node; }
    // The node, asking the cache for it first when it is missing. Null only
    // once orphaned.
    TandrilObjectImpl* resolve();

    // Tells the cache too, which files its handles by the node's model.
    void setNode(TandrilObjectImpl* node);
    void clearNode() { setNode(nullptr); }
    // The cache is going away: node and cache are both forgotten.
    void orphan()
    {
        m_node = nullptr;
        m_cache = nullptr;
        m_model = nullptr;
        m_previousOfModel = m_nextOfModel = nullptr;
        m_product = nullptr;
        m_previousOfProduct = m_nextOfProduct = nullptr;
    }

    HandleSet handleSet() const { return m_set; }
    void setHandleSet(HandleSet set) { m_set = set; }

private:
    // Registered with the cache, filling `entry`, the cache's table entry
    // for the id.
    HandleData(const StringId& id, ReaderCache* cache, TandrilObjectImpl* node, HandleData*& entry);

    // The cache keeps, per model, the list of its handles on the model's
    // nodes, and per product the list of the product's handles, threaded
    // through these fields.
    friend class ReaderCache;

    StringId m_id;
    ReaderCache* m_cache;
    TandrilObjectImpl* m_node;
    const Model* m_model = nullptr;
    HandleData* m_previousOfModel = nullptr;
    HandleData* m_nextOfModel = nullptr;
    ProductHandleList* m_product = nullptr;
    HandleData* m_previousOfProduct = nullptr;
    HandleData* m_nextOfProduct = nullptr;
    unsigned m_refCount = 0;
    HandleSet m_set = HandleSet::Library;
    // Set while the cache looks for the node, so that a lookup that meets
    // this handle again ends instead of recursing.
    bool m_resolving = false;
};

} // namespace LibraryBrowser
