// The window's rules that need no widget: where a saved window goes on the
// screens there are, the search box's history, and where a tile's name wraps.

#include "gui/BrowserLayoutRules.h"
#include "gui/NameWrap.h"
#include "gui/SearchHistory.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

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
    // Too far right on the second screen: back to its start.
    EXPECT_EQ(std::make_pair(fitBrowserOnScreens(QRect(2000, 100, 600, 640), screens),
                             fitBrowserOnScreens(QRect(3190, 100, 600, 640), screens).x()),
              std::make_pair(QRect(2000, 100, 600, 640), 1920 + 32));
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

TEST(NameWrapTest, NamesWrapWhereAReaderExpectsBeforeAnywhereElse)
{
    // One unit per character; two lines at most, the second keeps the rest.
    const std::tuple<const char*, int, QStringList> cases[] = {
        {"Gain", 10, {"Gain"}},
        {"Transport Delay", 10, {"Transport", "Delay"}},
        {"Zero-Order Hold", 6, {"Zero-", "Order Hold"}},
        {"SignalGenerator", 10, {"Signal", "Generator"}},
        // No place to wrap fits: the line breaks where the width ends.
        {"Abcdefghijklmnop", 5, {"Abcde", "fghijklmnop"}},
        {"Unit  Delay ", 5, {"Unit", "Delay"}},
    };
    const auto widthOf = [](const QString& text) { return int(text.size()); };
    for (const auto& [name, width, lines] : cases)
        EXPECT_EQ(NameWrap::wrapName(name, width, 2, widthOf), lines) << name << " in " << width;
    EXPECT_EQ(NameWrap::wrapName("Discrete Transfer Fcn", 9, 3, widthOf),
              (QStringList{"Discrete", "Transfer", "Fcn"}));
}

} // namespace
} // namespace LibraryBrowser
