#pragma once

#include "gui/BlocksPageHost.h"

namespace LibraryBrowser {

struct SearchResults;

// What the results page asks of the window beyond what every page asks: the
// results of the last search, and the two preferences of the page.
class ResultsPageHost : public BlocksPageHost {
public:
    virtual const SearchResults& getSearchResults() const = 0;
    // The page has taken the results; the next update needn't copy them again.
    virtual void clearResultsNeedReload() = 0;
    // LBSearchResults_rememberUserHiddenSections: a library the user hid stays
    // hidden in the next search's results.
    virtual bool rememberUserHiddenSections() const = 0;
    // LBSearchResults_isTitleElidedMiddle, read by the window; the page always
    // cuts a long title in the middle.
    virtual bool isTitleElidedMiddle() const = 0;
};

} // namespace LibraryBrowser
