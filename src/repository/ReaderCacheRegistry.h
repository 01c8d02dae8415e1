#pragma once

#include <string>
#include <unordered_set>
#include <vector>

namespace LibraryBrowser {

class Library;
class Model;
class ReaderCache;

// The process-wide register of read caches by store directory, through which
// whoever changes a store tells every cache that reads it. Several caches
// may read one directory (a repository's own, a plain reader's, the
// writer's); directories are compared with backslashes taken as slashes.
// Made on first use, never destroyed; main thread only.
class ReaderCacheRegistry {
public:
    static void add(const std::string& directory, ReaderCache* cache);
    static void remove(const std::string& directory, ReaderCache* cache);
    static std::vector<ReaderCache*> cachesFor(const std::string& directory);

    // Every handle loses its node, then the cache drops all it loaded.
    static void refreshCaches(const std::string& directory);
    // The product's handles and the placeholders lose their nodes, then the
    // cache drops what it loaded for the product.
    static void unloadProductCaches(const std::string& directory, const Library& product);
    // The library-level handles and the placeholders lose their nodes, then
    // the cache drops its top level; `kept`, if given, keeps its model.
    static void unloadTopLevelCaches(const std::string& directory, const ReaderCache* kept = nullptr);
    // Models read from the directory's store are about to go: handles on
    // their nodes, in any cache of the directory, lose them first.
    static void forgetModels(const std::string& directory, const std::unordered_set<const Model*>& models);
};

} // namespace LibraryBrowser
