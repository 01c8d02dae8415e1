#include "repository/search/SearchPattern.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

// Names and patterns are read as Unicode, not byte by byte: a letter beyond
// ASCII folds its case, and "?" stands for the whole of it. (The options and
// the walk are FindBlocksTest's; every option on odd input the fuzz target's.)
TEST(SearchPattern, MatchesByTheOptionsEachNameOnItsOwn)
{
    const std::pair<const char*, bool> plain[] = {
        {"r\u00e9sonateur", true}, {"r?sonateur", true}, {"r??sonateur", false}, {"\u00c9SONATEUR", true},
    };
    for (const auto& [pattern, expected] : plain)
        EXPECT_EQ(SearchPattern(pattern, SearchOptions::RegExpOff, SearchOptions::WholeWordOff,
                                SearchOptions::MatchCaseOff)
                      .matches("R\u00e9sonateur"),
                  expected)
            << pattern;
}
