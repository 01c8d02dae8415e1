// The tile arithmetic and text helpers, checked against values worked out by
// hand for a 96 dots-per-inch screen and 10-point names.

#include "gui/BrowserUtils.h"
#include "gui/SelectionMoves.h"
#include "gui/TileMetrics.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using namespace BrowserUtils;

class TileSizes : public ::testing::Test {
protected:
    void SetUp() override { setScreenDPIOverride(96); }
    void TearDown() override { setScreenDPIOverride(0); }
};

struct SizeRow {
    LayoutType layout;
    IconSize size;
    int widgetWidth, widgetHeight, boxWidth, boxHeight, spacing, panelMargin;
};

// 10 points at 96 dpi are 13.33 pixels; a line of name 15.56. The compact
// list tile is 20 high (18 + 2 + 0.5); a double-line name with margin 4 is
// 47, with margin 2 44. Widths are the icon height times 1.5708, rounded, and
// the compact grid tile is 2.414 times its icon part.
const SizeRow sizeRows[] = {
    {LayoutType::List, IconSize::Compact, 31, 20, 31, 20, 1, 1},
    // The list with small icons takes the default margin, not its own constant.
    {LayoutType::List, IconSize::Small, 63, 40, 59, 36, 2, 5},
    {LayoutType::List, IconSize::Medium, 88, 56, 80, 48, 2, 5},
    {LayoutType::List, IconSize::Large, 132, 84, 124, 76, 2, 5},
    {LayoutType::Grid, IconSize::Compact, 178, 47, 66, 39, 2, 5},
    {LayoutType::Grid, IconSize::Small, 85, 98, 81, 50, 4, 5},
    {LayoutType::Grid, IconSize::Medium, 132, 131, 124, 76, 6, 5},
    {LayoutType::Grid, IconSize::Large, 176, 159, 168, 104, 7, 5},
};

TEST_F(TileSizes, MatchHandComputedValuesAtEveryIconSizeAndLayout)
{
    for (const SizeRow& row : sizeRows) {
        SCOPED_TRACE(int(row.layout) * 10 + int(row.size));
        const TileMetrics metrics = TileMetrics::compute(row.layout, row.size, 10);
        EXPECT_EQ((std::vector<int>{getIconWidgetWidth(row.layout, row.size, 10),
                                    getIconWidgetHeight(row.layout, row.size, 10),
                                    getIconBoxWidth(row.layout, row.size, 10), getIconBoxHeight(row.layout, row.size, 10),
                                    getGridSpacing(row.layout, row.size), getBlockPanelMargin(row.layout, row.size),
                                    metrics.height, metrics.box.width(), metrics.box.height()}),
                  (std::vector<int>{row.widgetWidth, row.widgetHeight, row.boxWidth, row.boxHeight, row.spacing,
                                    row.panelMargin, row.widgetHeight, row.boxWidth, row.boxHeight}));
    }
    EXPECT_EQ(getHeaderHeight(QFont("Arial", 10)), 22);
}

TEST_F(TileSizes, ColumnsTruncateAndMayDropBelowOne)
{
    // (390 - 85 - 10) / 89 + 1
    EXPECT_EQ((std::vector<int>{calculateMaxNumIconCols(LayoutType::Grid, IconSize::Small, 390, 10),
                                calculateMaxNumIconCols(LayoutType::Grid, IconSize::Small, 273, 10),
                                calculateMaxNumIconCols(LayoutType::Grid, IconSize::Small, 272, 10),
                                calculateMaxNumIconCols(LayoutType::List, IconSize::Large, 20, 10)}),
              (std::vector<int>{4, 3, 2, 1}));
    EXPECT_LE(calculateMaxNumIconCols(LayoutType::Grid, IconSize::Large, 20, 10), 1);
    EXPECT_EQ(getListIconWidth(LayoutType::List, IconSize::Small, 100, 10), 63 + 4 + 3 + 100);
}

TEST_F(TileSizes, IconsAreScaledIntoTheirBoxAndCentred)
{
    EXPECT_DOUBLE_EQ(computeIconScaleFactor(0, 40, 100, 100, 5), 1.0);
    // A small icon grows: (81 - 8) / 16 against (50 - 8) / 16.
    EXPECT_DOUBLE_EQ(computeIconScaleFactor(10, 10, 81, 50, 4), 42.0 / 16);
    const IconPlacement plain = fitBlockIconToBox(40, 40, 0, LayoutType::Grid, IconSize::Small, 10);
    EXPECT_DOUBLE_EQ(plain.scale, 42.0 / 46);
    EXPECT_DOUBLE_EQ(plain.x, (81 - 40 * plain.scale) * 0.5 + 2);
    EXPECT_DOUBLE_EQ(plain.y, 2 + (50 - 40 * plain.scale) * 0.5);
    // A stacked tile leaves five pixels for the boxes behind.
    const IconPlacement stacked = fitBlockIconToBox(40, 40, 1, LayoutType::Grid, IconSize::Small, 10);
    EXPECT_DOUBLE_EQ(stacked.scale, 37.0 / 46);
    // Compact tiles are never stacked, and the compact grid shifts by a margin more.
    const IconPlacement compact = fitBlockIconToBox(40, 40, 3, LayoutType::Grid, IconSize::Compact, 10);
    EXPECT_DOUBLE_EQ(compact.x, (66 - 40 * compact.scale) * 0.5 + 8);
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

TEST(TextHelpers, LongestWordReplaceAndAmpersands)
{
    std::string word, first, none;
    EXPECT_EQ(computeLongestWordInString("gain  integrator sum", word), 10);
    EXPECT_EQ(computeLongestWordInString("abc def", first), 3);
    EXPECT_EQ(computeLongestWordInString("", none), 0);
    EXPECT_EQ(word + "/" + first, "integrator/abc");
    std::string text = "a-b-A";
    strReplace(text, "a", "xa");
    EXPECT_EQ(text, "xa-b-A");
    EXPECT_EQ(escapeAmpersands("R&D & Co"), "R&&D && Co");
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
