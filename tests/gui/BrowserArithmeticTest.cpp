// The window's rules that need no widget: where a saved window goes on the
// screens there are, the search box's history, block paths, the selection's
// moves in a grid and across result sections, which result sections open,
// and the preferences file.

#include "gui/BrowserLayoutRules.h"
#include "gui/BrowserPreferences.h"
#include "gui/BrowserUtils.h"
#include "gui/SearchHistory.h"
#include "gui/SearchResults.h"
#include "gui/SectionMoves.h"
#include "gui/SectionOpening.h"
#include "gui/SelectionMoves.h"
#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>
#include <vector>

namespace LibraryBrowser {
namespace {

using namespace BrowserUtils;

using BrowserLayoutRules::fitBrowserOnScreens;
using BrowserLayoutRules::ScreenLayout;

ScreenLayout oneScreen(int width = 1920, int height = 1080)
{
    ScreenLayout screens;
    screens.primaryAvailable = QRect(0, 0, width, height);
    screens.desktopAtPoint = screens.primaryAvailable;
    return screens;
}

TEST(BrowserLayoutRulesTest, ASavedWindowIsBroughtBackOntoASingleScreen)
{
    const std::pair<QRect, QRect> cases[] = {
        // Fits: untouched.
        {{32, 64, 600, 640}, {32, 64, 600, 640}},
        // Beyond the width less 80: back to x 32, and clipped to what is left.
        {{1850, 64, 600, 640}, {32, 64, 600, 640}},
        // Left of and above the screen.
        {{-300, -50, 600, 640}, {32, 16, 600, 640}},
        // Too wide: clipped to the screen's right edge.
        {{1500, 64, 600, 640}, {1500, 64, 420, 640}},
        // Clipped below the minimum: the minimum.
        {{1700, 700, 600, 640}, {1700, 700, 390, 404}},
        // Small to begin with: stays small.
        {{100, 100, 200, 150}, {100, 100, 200, 150}},
        // Below the height less 120: back to y 64.
        {{100, 1000, 600, 640}, {100, 64, 600, 640}},
    };
    for (const auto& [saved, expected] : cases)
        EXPECT_EQ(fitBrowserOnScreens(saved, oneScreen()), expected) << saved.x() << "," << saved.y();

    // A second screen keeps a window that was on it.
    ScreenLayout screens = oneScreen();
    screens.screenCount = 2;
    screens.screenAtPoint = 1;
    screens.screen1Available = QRect(1920, 0, 1280, 1024);
    // Too far right on the second screen: back to its start; above it: down onto it.
    EXPECT_EQ(std::make_tuple(fitBrowserOnScreens(QRect(2000, 100, 600, 640), screens),
                              fitBrowserOnScreens(QRect(3190, 100, 600, 640), screens).x(),
                              fitBrowserOnScreens(QRect(2000, -50, 600, 640), screens).y()),
              std::make_tuple(QRect(2000, 100, 600, 640), 1920 + 32, 16));
}

TEST(SearchHistoryTest, TextsAreTrimmedNeedTwoCharactersAndASearchedOneKeepsItsPlace)
{
    const std::pair<std::string, std::string> valid[] = {{"  ga \t", "ga"}, {"\nGain\n", "Gain"}, {"é2", "é2"}};
    for (auto [text, expected] : valid)
        EXPECT_TRUE(SearchHistory::validateSearchString(text) && text == expected) << text;
    for (std::string text : {"", " g ", "\t\n", "é"})
        EXPECT_FALSE(SearchHistory::validateSearchString(text)) << text;
    // A text searched again keeps its place and only a failed one leaves.
    // (The limit and the text that found nothing through the window:
    // SearchFlowTest.)
    const QString prompt = "Enter search term";
    EXPECT_EQ(SearchHistory::beforeSearch({"a1", "b2"}, "b2", QString(), prompt, 24), (QStringList{"a1", "b2"}));
    const QStringList found{"zzz", "gain", "sine"};
    EXPECT_EQ(SearchHistory::beforeSearch(found, "sum", "zzz", prompt, 24), (QStringList{"sum", "gain", "sine"}));
    EXPECT_EQ(SearchHistory::toSave(found, QString()), found);
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

// Seven tiles in three columns: 0 1 2 / 3 4 5 / 6. One row, one column, or
// a list: down and up step along. Nothing selected: down counts from -1 and
// lands at the end of the first row. Initials cycle and end on the selected
// tile.
TEST(SelectionMoves, GridOfSevenInThreeColumnsAndInitials)
{
    using namespace SelectionMoves;
    using Ints = std::vector<int>;
    EXPECT_EQ((Ints{down(2, 7, 3, false), down(4, 7, 3, false), down(3, 7, 3, false), up(6, 7, 3, false),
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

// Each case: the sections' hits, "h" after one hidden by name, "u" after
// one the user opened; then which start open.
TEST(ResultsSectionRulesTest, SectionsOpenWithinTheLimitAndNotAfterTheFirstOverflow)
{
    const std::pair<const char*, const char*> cases[] = {
        {"100 44", "++"},     // exactly 144 opens all
        {"100 45", "+-"},     // one more starts the overflow
        {"100 45 1", "+--"},  // after the overflow even a small one stays shut
        {"145 1", "--"},      // a first section over the limit alone stays shut
        {"10h 140 4", "-++"}, // hidden by name stays shut and opens nothing
        {"100 50h 4", "+--"}, // hidden by name still counts towards the overflow
        {"140 10u 5", "++-"}, // the user's choice opens past the limit
        {"10 10hu", "+-"},    // hidden by name wins over the user's choice
        {"0 144 0", "+++"},   // no hits, no overflow
    };
    for (const auto& [sections, expected] : cases) {
        SectionOpening opening(SearchResults::maxHitsShown);
        std::istringstream in(sections);
        std::string open;
        for (std::string section; in >> section;) {
            const int hits = std::stoi(section);
            const bool starts = opening.startsOpen(hits, section.find('h') != std::string::npos,
                                                   section.find('u') != std::string::npos);
            if (starts)
                opening.opened(hits);
            open += starts ? '+' : '-';
        }
        EXPECT_EQ(open, expected) << sections;
    }
}

TEST(ResultsSectionRulesTest, MovesAcrossSections)
{
    using namespace SectionMoves;
    // Three columns: 7 tiles (rows of 3, 3, 1), a hidden one of 4 with its
    // tiles kept, 5 tiles (3, 2), and a last of 2.
    const std::vector<Section> sections{{7, true}, {4, false}, {5, true}, {2, true}};
    using Move = Position (*)(const std::vector<Section>&, Position, int);
    const Move left = [](const std::vector<Section>& s, Position p, int) { return SectionMoves::left(s, p); };
    const Move right = [](const std::vector<Section>& s, Position p, int) { return SectionMoves::right(s, p); };
    const std::vector<std::tuple<const char*, Move, Position, Position>> cases{
        {"left from the first tile to the previous section's last", left, {2, 0}, {0, 6}},
        {"left at the very first tile stays", left, {0, 0}, {0, 0}},
        {"left from a hidden section's tile", left, {1, 2}, {0, 6}},
        {"right within, across a row end", right, {0, 2}, {0, 3}},
        {"right from the last tile to the next shown section", right, {0, 6}, {2, 0}},
        {"right at the very last tile stays", right, {3, 1}, {3, 1}},
        {"right from a hidden section's tile", right, {1, 0}, {2, 0}},
        {"down within", &down, {0, 1}, {0, 4}},
        {"down onto a shorter last row takes the last tile", &down, {0, 5}, {0, 6}},
        {"down from the last row keeps the column", &down, {2, 4}, {3, 1}},
        {"down keeps the column within the next section", &down, {2, 3}, {3, 0}},
        {"down passes over the hidden section", &down, {0, 6}, {2, 0}},
        {"down on the last row of the last section takes its last tile", &down, {3, 0}, {3, 1}},
        {"up into the previous section keeps the column on its last row", &up, {2, 0}, {0, 6}},
        {"up beyond the short last row takes the last tile", &up, {2, 2}, {0, 6}},
        {"up from the first row of the first section takes tile 0", &up, {0, 2}, {0, 0}},
        {"up into a full last row", &up, {3, 1}, {2, 4}},
        {"nothing selected starts at the first shown tile", &down, {}, {0, 0}},
    };
    for (const auto& [what, move, from, to] : cases)
        EXPECT_EQ(move(sections, from, 3), to) << what;

    // A shown section without tiles, nothing shown, and a shown one after a hidden one.
    EXPECT_EQ((std::vector<Position>{first({{3, false}, {0, true}}), first({{3, false}}), first({{3, false}, {2, true}})}),
              (std::vector<Position>{{}, {}, {1, 0}}));
}

// Every type round-trips through the file; what can't be read, like what
// isn't there, is the default.
TEST(BrowserPreferencesTest, EveryTypeRoundTripsThroughTheFileAndWhatCantBeReadIsTheDefault)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("prefs.ini");
    {
        BrowserPreferences prefs(file);
        prefs.setString(PrefKey::LBFontFamily, "Noto Sans, Bold");
        prefs.setInt(PrefKey::LBFontSize, 14);
        prefs.setBool(PrefKey::LBShowBlockDesc, false);
        prefs.setRect(PrefKey::LBGeometry4Window, QRect(-10, 20, 800, 700));
        prefs.setStringList(PrefKey::LBSearchHistory, {"gain", "a, b", "sum"});
        prefs.setColor(PrefKey::LBColorSearchResultsBackgroundTop, QColor::fromRgbF(0.25f, 0.5f, 0.75f, 1));
        ASSERT_TRUE(prefs.save());
    }
    const QByteArray text = Testing::readFile(file.toStdString());
    EXPECT_TRUE(text.contains("[LibraryBrowser]") && text.contains("LBColorSearchResultsBackgroundTop=0.25, 0.5, 0.75, 1"));

    const BrowserPreferences prefs(file);
    EXPECT_EQ(std::make_tuple(prefs.getString(PrefKey::LBFontFamily),
                              prefs.getInt(PrefKey::LBFontSize), prefs.getBool(PrefKey::LBShowBlockDesc),
                              prefs.getRect(PrefKey::LBGeometry4Window), prefs.getStringList(PrefKey::LBSearchHistory),
                              prefs.getColor(PrefKey::LBColorSearchResultsBackgroundTop)),
              std::make_tuple(QString("Noto Sans, Bold"), 14, false, QRect(-10, 20, 800, 700),
                              QStringList{"gain", "a, b", "sum"}, QColor::fromRgbF(0.25f, 0.5f, 0.75f, 1)));

    Testing::writeFile(file.toStdString(), "[LibraryBrowser]\nLBTreeSelectionTimeout=soon\nLBShowBlockDesc=perhaps\n"
                                             "LBGeometry4Window=1, 2, 3\nLBGeometry4Blocks=a, b, c, d\n"
                                             "LBColorBlocksDescriptionBackground=0.5, 2, 0, 1\n");
    const BrowserPreferences bad(file);
    EXPECT_EQ(std::make_tuple(bad.getInt(PrefKey::LBTreeSelectionTimeout), bad.getBool(PrefKey::LBShowBlockDesc),
                              bad.getRect(PrefKey::LBGeometry4Window), bad.getRect(PrefKey::LBGeometry4Blocks),
                              bad.getColor(PrefKey::LBColorBlocksDescriptionBackground),
                              bad.getStringList(PrefKey::LBSearchHistory)),
              std::make_tuple(111, true, QRect(32, 64, 600, 640), QRect(0, 0, 390, 410), QColor(Qt::white), QStringList()));
    // Words are exact; what isn't one is the default, and Model is not offered.
    // Font sizes outside 8 to 24 are the default.
    using P = BrowserPreferences;
    EXPECT_EQ((std::vector<int>{int(P::layoutFromWord("List")), int(P::layoutFromWord("Model")), int(P::layoutFromWord("list")),
                                int(P::iconSizeFromWord("Huge")), int(P::iconSizeFromWord(P::wordOf(IconSize::Large))),
                                P::correctedFontSize(7), P::correctedFontSize(8), P::correctedFontSize(24),
                                P::correctedFontSize(25)}),
              (std::vector<int>{int(LayoutType::List), int(LayoutType::Grid), int(LayoutType::Grid), int(IconSize::Compact),
                                int(IconSize::Large), P::defaultFontSize(), 8, 24, P::defaultFontSize()}));
}

} // namespace
} // namespace LibraryBrowser
