#pragma once

#include "platform/StringId.h"
#include "repository/BlockIcon.h"
#include "repository/RepositoryReport.h"
#include "repository/TandrilObjectIterator.h"
#include "repository/search/IndexedSearch.h"
#include "repository/search/SearchOptions.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace LibraryBrowser {

class ReaderCache;
class SearchIndex;

using IconTable = std::unordered_map<TandrilObject, BlockIconPtr>;

// The asking side of a repository. Objects come as handles bound to the
// cache behind the reader; a failed lookup gives a null or invalid handle,
// an empty iterator or a null icon, never an exception. A reader lives in a
// shared pointer: depth-first walks hold it for as long as they run.
class RepositoryReader : public std::enable_shared_from_this<RepositoryReader> {
public:
    virtual ~RepositoryReader() = default;

    // There is a readable top-level manifest.
    virtual bool exists() = 0;

    // Whether what the store holds for the product still agrees with the
    // host's files.
    virtual bool isProductUpToDate(const TandrilObject& product, bool ignoreTimestamp) = 0;
    virtual bool isProductUpToDate(const TandrilObject& product) { return isProductUpToDate(product, false); }
    // False for a name that names no product.
    virtual bool isProductUpToDate(const std::string& name);

    // Every entry of the top level, unfiltered, in order.
    virtual TandrilObjectIterator getAllProductsIterator() = 0;
    // The valid products.
    virtual TandrilObjectIterator getProductsIterator() = 0;
    // The products shown at the top of the tree.
    virtual TandrilObjectIterator getTopLevelIterator();
    // The children of a subsystem; a library reference answers with those of
    // its target. No engine for anything that is no valid subsystem.
    virtual TandrilObjectIterator getChildrenIterator(const TandrilObject& object) = 0;
    // The children whose node class is exactly the named one ("BlockImpl"...).
    virtual TandrilObjectIterator getChildrenIterator(const TandrilObject& object, const StringId& blockType);
    // The object of a unique path; an invalid placeholder keeping the id if
    // there is none.
    virtual TandrilObject getTandrilObject(const std::string& id);
    virtual BlockIconPtr getIcon(const TandrilObject& object) = 0;
    // The icon of each child of the object, by child.
    virtual IconTable getIcons(const TandrilObject& object);
    // The product that an object id starts with; null if none.
    virtual Library getProduct(const std::string& name);

    virtual RepositoryReportPtr getRepositoryReport() const = 0;
    virtual ReaderCache* getCache() = 0;

    // Every object whose shown name has a match of the pattern, in the
    // depth-first order of the walk, doubles kept: over the whole repository,
    // or below an object (which is itself never among the results).
    TandrilObjectIterator findBlocks(const std::string& pattern);
    TandrilObjectIterator findBlocks(const std::string& pattern, SearchOptions::RegExp regExp,
                                     SearchOptions::WholeWord wholeWord, SearchOptions::MatchCase matchCase);
    TandrilObjectIterator findBlocks(const std::string& pattern, const TandrilObject& object);
    TandrilObjectIterator findBlocks(const std::string& pattern, const TandrilObject& object,
                                     SearchOptions::RegExp regExp, SearchOptions::WholeWord wholeWord,
                                     SearchOptions::MatchCase matchCase);

    // As findBlocks below an object, and also every object whose description
    // has a match of the pattern: the window's "Search descriptions too".
    TandrilObjectIterator findBlocksByNameOrDescription(const std::string& pattern, const TandrilObject& object,
                                                        SearchOptions::RegExp regExp,
                                                        SearchOptions::WholeWord wholeWord,
                                                        SearchOptions::MatchCase matchCase);

    // The store's search index of a product, for name searches below it that
    // need not walk its manifests; null where the store keeps none that can
    // be used (the search then walks). Asked for, the product is made up to
    // date as for a read of its manifests.
    virtual std::shared_ptr<const SearchIndex> getSearchIndex(const TandrilObject& product);
    // What findBlocks (or findBlocksByNameOrDescription, with `descriptions`)
    // below a product finds, counted and listed from the search indexes of
    // the product and of the products its library references lead into;
    // nothing where one of them has none.
    std::optional<IndexedSearch::Hits> searchIndexed(const TandrilObject& product, const std::string& pattern,
                                                     SearchOptions::RegExp regExp, SearchOptions::WholeWord wholeWord,
                                                     SearchOptions::MatchCase matchCase, bool descriptions);

    // A pre-order walk of everything below the products, or below one
    // object; the starting object itself is not returned. Library references
    // are walked through to their targets, and cycles are cut.
    TandrilObjectIterator getDepthFirstIterator();
    TandrilObjectIterator getDepthFirstIterator(const TandrilObject& root);

    // A reader on a store directory with a report of its own. Nothing on
    // disk is touched; a missing store gives a reader that doesn't exist.
    static std::shared_ptr<RepositoryReader> open(const std::string& directory);
};

using RepositoryReaderPtr = std::shared_ptr<RepositoryReader>;

} // namespace LibraryBrowser
