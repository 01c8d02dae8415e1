#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>

namespace LibraryBrowser {

// What one keystroke asks of the ranking engine.
struct RankingQuery {
    // Words separated by white space; each must match the block somewhere.
    // No words at all asks for the favourites, then the recently used blocks.
    std::string text;
    // Block paths (`getPath()`), as the caller stores them; a path that
    // names no block of the index is passed over.
    std::unordered_set<std::string> favourites;
    std::unordered_set<std::string> recents;
    // At most this many blocks in the answer; 0 for all of them.
    std::size_t limit = 50;
};

} // namespace LibraryBrowser
