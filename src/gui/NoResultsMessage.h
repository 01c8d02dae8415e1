#pragma once

#include <string>

namespace LibraryBrowser {

struct SearchResults;

// What the results page says about a search without hits.
namespace NoResultsMessage {

// The status bar's text.
std::string status(const SearchResults& results);
// The page's text: the message in red, markup-safe, and after a blank line
// the options that were set, if any.
std::string text(const SearchResults& results);
// "Search options:" and the options set, always whole word, match case,
// regular expression in this order, whatever the order of the menu.
std::string searchOptions(const SearchResults& results);

} // namespace NoResultsMessage
} // namespace LibraryBrowser
