#pragma once

#include "model/Model.h"
#include "repository/BlockIcon.h"
#include "repository/HandleData.h"
#include "repository/HandleTable.h"
#include "repository/Library.h"
#include "repository/TandrilObjectIterator.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace LibraryBrowser {


// The cache behind a reader: it loads on demand, keeps what it loaded, and
// owns the table of the handles bound to it, one HandleData per id. The
// handles are filed in three sets so that dropping one product's data or
// the top level forgets only the nodes concerned: library-level handles (no
// "/" in the id), handles on a placeholder, and per product the rest.
class ReaderCache {
public:
    ReaderCache() = default;
    // Orphans every handle still bound here.
    virtual ~ReaderCache();
    ReaderCache(const ReaderCache&) = delete;
    ReaderCache& operator=(const ReaderCache&) = delete;

    // Every entry of the top level.
    virtual TandrilObjectIterator getAllProductsIterator() = 0;
    // The valid products.
    virtual TandrilObjectIterator getProductsIterator() = 0;
    virtual TandrilObjectIterator getChildrenIterator(const TandrilObject& object) = 0;
    virtual BlockIconPtr getIcon(const TandrilObject& object) = 0;
    // A new model of the object's children, never the one the cache keeps.
    virtual ModelPtr getModel(const TandrilObject& object) = 0;
    // Drops all that was loaded.
    virtual void refresh() = 0;
    // Drops what was loaded for one product.
    virtual void unloadProduct(const Library& product) = 0;
    // Drops the top level and keeps the products.
    virtual void unloadTopLevel() = 0;

    // The product that an object id starts with: the id cut at the first "/"
    // and then at the first "-", matched against the unique paths and
    // display paths of the valid products. Null if none fits.
    Library getProduct(const std::string& id);
    // The product named by the object's product name; null for a null or
    // invalid object.
    Library getProductOf(const TandrilObject& object);
    // The object of an id, found along its path from the product down; a
    // path through a library reference goes on in the referenced library.
    // A placeholder that keeps the id if nothing fits.
    TandrilObject findObject(const StringId& id);

    // What the cache registry tells a cache, each before the matching drop.
    void clearHandles();
    void clearProductHandles(const std::string& productKey);
    void clearTopLevelHandles();
    // Clears every handle whose node lives in one of these models, which are
    // about to go.
    void forgetModels(const std::unordered_set<const Model*>& models);
    // Goes up by one with each of the four calls above: a list of handles
    // checked at the same count still has all its nodes.
    std::uint64_t clearCount() const { return m_clearCount; }
    // The key of the product set for an id: cut at the first "/", then at
    // the first "-".
    static std::string productKey(const std::string& id);

    // The HandleData table.
    HandleData* lookupHandle(const StringId& id) const;
    // The table's entry for the id, made empty if missing: a new HandleData
    // fills it before anything else can look.
    HandleData*& handleEntry(const StringId& id) { return m_handles.entry(id); }
    // Files a new HandleData, already in the table, in its set and under
    // its node's model.
    void registerHandle(HandleData* data);
    void unregisterHandle(HandleData* data);
    // Files a registered handle under the model of its new node (none for
    // null), out of the list of the model it was under.
    void fileByModel(HandleData& data, const Model* model);
    std::size_t libraryHandleCount() const { return m_libraryHandles.size(); }
    std::size_t invalidHandleCount() const { return m_invalidHandles.size(); }
    std::size_t productHandleCount(const std::string& productKey) const;

protected:
    // A handle with the id on the placeholder node, unless the id already
    // has a node here.
    TandrilObject placeholder(const StringId& id, TandrilObjectImpl* node);

private:
    using HandleSet = std::unordered_set<HandleData*>;

    HandleTable m_handles;
    HandleSet m_libraryHandles;
    HandleSet m_invalidHandles;
    // The list of the product of an id, made if missing.
    ProductHandleList& productHandles(const std::string& id);

    // Kept when they empty: a node of the map stays where it is, and the
    // handles point at their list.
    std::unordered_map<std::string, ProductHandleList> m_productHandles;
    // The list found last, with its key: the handles of a read come product
    // by product, and the key is then compared in place, not cut out.
    std::string m_lastProductKey;
    ProductHandleList* m_lastProduct = nullptr;
    // The first of each model's handles, the rest linked from it: forgetting
    // the models of an unloaded product then costs their handles, not a
    // walk of every handle the cache holds.
    std::unordered_map<const Model*, HandleData*> m_modelHandles;
    // Products found by key: every subsystem entered during a walk asks for
    // its product, and a scan of the top level per question made that the
    // walk's largest cost. The handles follow their ids into a reloaded top
    // level; one whose node has gone, or no longer fits, is looked up anew.
    std::unordered_map<std::string, Library> m_products;
    std::uint64_t m_clearCount = 0;
};

} // namespace LibraryBrowser
