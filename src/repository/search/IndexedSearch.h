#pragma once

#include "repository/search/SearchIndex.h"
#include "repository/search/SearchPattern.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace LibraryBrowser {

// A name search below one product over the store's search indexes, in the
// order and with the rules of the depth-first walk: a subsystem the walk is
// inside of is neither returned nor entered again, each library reference is
// entered once per search and no deeper than the walk's limit, and a
// reference leads into its target's product, whose display paths continue
// below the reference.
class IndexedSearch {
public:
    // The index of the product of that unique path's first part; null where
    // there is none that can be used.
    using IndexOf = std::function<std::shared_ptr<const SearchIndex>(const std::string& productId)>;

    // What a search found: all objects matched, and of those the libraries
    // (only counted), subsystems and blocks, the longest name among the last
    // two and their display paths in walk order.
    struct Hits {
        int matched = 0;
        int libraries = 0;
        int subsystems = 0;
        int blocks = 0;
        std::string longestName;
        std::vector<std::string> paths;
    };

    IndexedSearch(const std::string& pattern, SearchOptions::RegExp regExp, SearchOptions::WholeWord wholeWord,
                  SearchOptions::MatchCase matchCase, bool descriptions, IndexOf indexOf);

    // The hits below the product; nothing where the walk would reach a
    // product without an index (or a palette's computed members).
    std::optional<Hits> search(const std::string& productId, const std::string& productPath);

private:
    // Direct children of one object: the objects of [begin, end) at `depth`.
    struct Range {
        const SearchIndex* index = nullptr;
        std::size_t begin = 0;
        std::size_t end = 0;
        int depth = 0;
        bool empty() const { return begin >= end; }
    };

    const SearchIndex* indexOf(const std::string& productId);
    bool walk(const Range& children);
    void visit(const SearchIndex::Object& object);
    // The children that the object of a unique path shows, as the reader
    // loads them for a reference to it. False where an index is missing.
    bool childrenOf(const std::string& uniquePath, Range& children);
    bool childrenOfObject(const Range& level, std::size_t position, const std::string& uniquePath, Range& children);

    SearchPattern m_pattern;
    bool m_descriptions;
    IndexOf m_indexOf;
    std::unordered_map<std::string, std::shared_ptr<const SearchIndex>> m_indexes;
    std::string m_productPath;
    // From the product down to the current level: names shown and unique.
    std::vector<const std::string*> m_names;
    std::vector<const std::string*> m_keys;
    std::string m_productId;
    // As the walk keeps them.
    std::vector<const std::string*> m_entered;
    std::unordered_set<std::string> m_referencesEntered;
    int m_openReferences = 0;
    // The references whose targets are being found now.
    std::unordered_set<std::string> m_resolving;
    Hits m_hits;
};

} // namespace LibraryBrowser
