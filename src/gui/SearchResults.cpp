#include "gui/SearchResults.h"

namespace LibraryBrowser {

SingleLibrarySearchResults_tag countSearchHits(const TandrilObjectIterator& hits, int& libraries,
                                               std::vector<std::string>* listed)
{
    SingleLibrarySearchResults_tag counted;
    counted.iterator = hits;
    for (TandrilObjectIterator it = hits; it.isValidIterator(); it.next()) {
        const TandrilObject object = it.current();
        if (object.isLibrary()) {
            ++libraries;
            continue;
        }
        // A subsystem is a block too: ask for it first.
        if (object.isSubSystem())
            ++counted.numSubsystems;
        else if (object.isBlock())
            ++counted.numBlocks;
        else
            continue;
        if (listed)
            listed->push_back(object.getDisplayPath());
        const std::string name = object.getDisplayName();
        if (name.size() > counted.longestName.size())
            counted.longestName = name;
    }
    return counted;
}

SingleLibrarySearchResults_tag indexedSearchHits(IndexedSearch::Hits& indexed, const TandrilObjectIterator& hits,
                                                 int& libraries, std::vector<std::string>& listed)
{
    SingleLibrarySearchResults_tag counted;
    counted.iterator = hits;
    counted.numBlocks = indexed.blocks;
    counted.numSubsystems = indexed.subsystems;
    counted.longestName = std::move(indexed.longestName);
    libraries += indexed.libraries;
    listed = std::move(indexed.paths);
    return counted;
}

} // namespace LibraryBrowser
