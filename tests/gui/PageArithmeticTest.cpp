// The tile arithmetic and text helpers, checked against values worked out by
// hand for a 96 dots-per-inch screen and 10-point names.

#include "gui/BrowserUtils.h"
#include "gui/SelectionMoves.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using namespace BrowserUtils;

TEST(TileSizes, ColumnsTruncateAndMayDropBelowOne)
{
    setScreenDPIOverride(96);
    // (390 - 85 - 10) / 89 + 1
    EXPECT_EQ((std::vector<int>{calculateMaxNumIconCols(LayoutType::Grid, IconSize::Small, 390, 10),
                                calculateMaxNumIconCols(LayoutType::Grid, IconSize::Small, 273, 10),
                                calculateMaxNumIconCols(LayoutType::Grid, IconSize::Small, 272, 10),
                                calculateMaxNumIconCols(LayoutType::List, IconSize::Large, 20, 10)}),
              (std::vector<int>{4, 3, 2, 1}));
    EXPECT_LE(calculateMaxNumIconCols(LayoutType::Grid, IconSize::Large, 20, 10), 1);
    EXPECT_EQ(getListIconWidth(LayoutType::List, IconSize::Small, 100, 10), 63 + 4 + 3 + 100);
    setScreenDPIOverride(0);
}

TEST(BlockPaths, DoubledSlashesStayInNamesAndOddRunsSeparate)
{
    struct Row {
        const char *path, *parent, *last, *root;
    } rows[] = {
        {"", "", "", ""},
        {"lib", "", "lib", "lib"},
        {"lib/sub/block", "lib/sub", "block", "lib"},
        {"lib/a//b/c", "lib/a//b", "c", "lib"},
        {"lib/in//out", "lib", "in//out", "lib"},
        {"lib///x", "lib", "x", "lib"},
        {"lib////x/y", "lib////x", "y", "lib////x"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(tokenizeBlockPath(row.path, TokenType::ParentPath) + "|" + tokenizeBlockPath(row.path, TokenType::LastName) +
                      "|" + tokenizeBlockPath(row.path, TokenType::RootName),
                  std::string(row.parent) + "|" + row.last + "|" + row.root)
            << row.path;
}

TEST(TextHelpers, LongestWordAndReplace)
{
    std::string word, first;
    EXPECT_EQ(computeLongestWordInString("gain  integrator sum", word) + computeLongestWordInString("abc def", first), 13);
    EXPECT_EQ(word + "/" + first, "integrator/abc");
    std::string text = "a-b-A";
    strReplace(text, "a", "xa");
    EXPECT_EQ(text, "xa-b-A");
}

// Seven tiles in three columns: 0 1 2 / 3 4 5 / 6. One row, one column, or
// a list: down and up step along. Nothing selected: down counts from -1 and
// lands at the end of the first row. Initials cycle and end on the selected
// tile.
TEST(SelectionMoves, GridOfSevenInThreeColumnsAndInitials)
{
    using namespace SelectionMoves;
    using Ints = std::vector<int>;
    EXPECT_EQ((Ints{down(2, 7, 3, false), down(5, 7, 3, false), down(3, 7, 3, false), up(6, 7, 3, false),
                    up(1, 7, 3, false), right(2, 7), right(6, 7), left(0), left(-1)}),
              (Ints{5, -1, 6, 3, -1, 3, -1, -1, -1}));
    EXPECT_EQ((Ints{down(1, 4, 4, false), up(1, 4, 4, false), down(1, 7, 1, false), down(1, 7, 3, true),
                    down(-1, 7, 3, false)}),
              (Ints{2, 0, 2, 2, 2}));
    EXPECT_EQ((Ints{home(-1), home(0), home(3), end(-1, 7), end(6, 7)}), (Ints{-1, -1, 0, 6, -1}));
    const std::vector<std::string> names{"Container", "conditional", "Input", "Output", "Cast", "_x"};
    EXPECT_EQ((Ints{byInitial(0, names, 'C'), byInitial(1, names, 'C'), byInitial(4, names, 'C'),
                    byInitial(2, names, 'I'), byInitial(2, names, 'Z'), byInitial(-1, names, 'O'),
                    byInitial(-1, names, '_'), byInitial(-1, {"Only"}, 'O')}),
              (Ints{1, 4, 0, 2, -1, 3, 5, -1}));
}

} // namespace
} // namespace LibraryBrowser
