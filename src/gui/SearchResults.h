#pragma once

#include "repository/Library.h"
#include "repository/TandrilObjectIterator.h"
#include "repository/search/IndexedSearch.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser {

// The hits of one search in one library: an iterator at their start, their
// counts by kind and the longest display name among them.
struct SingleLibrarySearchResults_tag {
    TandrilObjectIterator iterator;
    int numBlocks = 0;
    int numSubsystems = 0;
    std::string longestName;

    int hits() const { return numBlocks + numSubsystems; }
};

// What the last search found, as the window keeps it and the results page
// copies it. Iterators rather than block lists: the page walks a library's
// hits only when it opens that library's section.
struct SearchResults {
    // The hits that the results page opens by itself.
    static constexpr int maxHitsShown = 144;

    std::unordered_map<Library, SingleLibrarySearchResults_tag> searchResults;
    // The libraries a search walks, in tree order.
    std::vector<Library> libraries;
    int numBlocks = 0;
    int numSubsystems = 0;
    int numLibraries = 0;
    int numLibrariesWithHits = 0;
    int maxHitsPerLibrary = 0;
    std::string longestBlockName;
    std::string longestLibraryPath;
    std::string searchString;
    bool useRegExp = false;
    bool matchWholeWord = false;
    bool matchCase = false;
    bool searchDescriptions = false;
    // The results page must take these results at its next update.
    bool resultsNeedReload = true;
};

// Counts a library's hits by kind and finds the longest display name among
// them; the display paths of blocks and subsystems go to `listed`, if given,
// in the order of the walk. Libraries among the hits are only counted.
SingleLibrarySearchResults_tag countSearchHits(const TandrilObjectIterator& hits, int& libraries,
                                               std::vector<std::string>* listed);

// The same, from the hits of a search index, with `hits` as the iterator;
// their display paths are moved to `listed`.
SingleLibrarySearchResults_tag indexedSearchHits(IndexedSearch::Hits& indexed, const TandrilObjectIterator& hits,
                                                 int& libraries, std::vector<std::string>& listed);

} // namespace LibraryBrowser
