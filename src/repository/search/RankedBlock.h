#pragma once

#include "repository/TandrilObject.h"

#include <cstddef>
#include <vector>

namespace LibraryBrowser {

// A run of the display name that a query matched, in characters (Unicode
// code points) from the start of the name: what a list shows in bold.
struct NameSpan {
    int start = 0;
    int length = 0;
    bool operator==(const NameSpan& other) const { return start == other.start && length == other.length; }
};

// One block of a ranked answer: the higher the score, the better the match.
struct RankedBlock {
    TandrilObject block;
    int score = 0;
    // Ordered, not overlapping; empty when only the description or the
    // library path matched.
    std::vector<NameSpan> spans;
    bool favourite = false;
    bool recent = false;
};

// The best blocks, best first, and how many matched in all.
struct RankingResult {
    std::vector<RankedBlock> blocks;
    std::size_t total = 0;
};

} // namespace LibraryBrowser
