#include "repository/ReaderCacheRegistry.h"

#include "repository/Library.h"
#include "repository/ReaderCache.h"
#include "repository/xmlrepository/RepositoryPaths.h"

#include <algorithm>
#include <map>

namespace LibraryBrowser {

namespace {

using Registry = std::multimap<std::string, ReaderCache*>;

Registry& registry()
{
    static Registry* const caches = new Registry();
    return *caches;
}

} // namespace

void ReaderCacheRegistry::add(const std::string& directory, ReaderCache* cache)
{
    registry().emplace(forwardSlashes(directory), cache);
}

void ReaderCacheRegistry::remove(const std::string& directory, ReaderCache* cache)
{
    auto range = registry().equal_range(forwardSlashes(directory));
    for (auto it = range.first; it != range.second; ++it) {
        if (it->second == cache) {
            registry().erase(it);
            return;
        }
    }
}

std::vector<ReaderCache*> ReaderCacheRegistry::cachesFor(const std::string& directory)
{
    std::vector<ReaderCache*> caches;
    const auto range = registry().equal_range(forwardSlashes(directory));
    for (auto it = range.first; it != range.second; ++it)
        caches.push_back(it->second);
    return caches;
}

// The walks below work on a copy of the caches of the directory, checked
// against the registry before each call: a cache's drop may end another one.
namespace {

template <class Action>
void forEachCache(const std::string& directory, Action action)
{
    for (ReaderCache* cache : ReaderCacheRegistry::cachesFor(directory)) {
        const std::vector<ReaderCache*> now = ReaderCacheRegistry::cachesFor(directory);
        if (std::find(now.begin(), now.end(), cache) != now.end())
            action(*cache);
    }
}

} // namespace

void ReaderCacheRegistry::refreshCaches(const std::string& directory)
{
    forEachCache(directory, [](ReaderCache& cache) {
        cache.clearHandles();
        cache.refresh();
    });
}

void ReaderCacheRegistry::unloadProductCaches(const std::string& directory, const Library& product)
{
    const std::string key = ReaderCache::productKey(product.id().str());
    forEachCache(directory, [&](ReaderCache& cache) {
        cache.clearProductHandles(key);
        cache.unloadProduct(product);
    });
}

void ReaderCacheRegistry::unloadTopLevelCaches(const std::string& directory, const ReaderCache* kept)
{
    forEachCache(directory, [kept](ReaderCache& cache) {
        cache.clearTopLevelHandles();
        if (&cache == kept)
            return;
        cache.unloadTopLevel();
    });
}

void ReaderCacheRegistry::forgetModels(const std::string& directory, const std::unordered_set<const Model*>& models)
{
    forEachCache(directory, [&](ReaderCache& cache) { cache.forgetModels(models); });
}

} // namespace LibraryBrowser
