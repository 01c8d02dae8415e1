// The search results page of the real window: a section per library in tree
// order, hidden and shown by the user and remembered or not, and the
// selection's moves across sections. (The page that says nothing was found:
// SearchFlowTest.)

#include "BrowserWindowFixture.h"

#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/LBImageLink.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SectionHeader.h"
#include "gui/SectionTitleLink.h"

#include <QLabel>
#include <QMainWindow>
#include <QScrollArea>
#include <QTest>

#include <cstdlib>

namespace LibraryBrowser::Testing {
namespace {

using Names = std::vector<std::string>;
using ResultsPageTest = BrowserWindowFixture;

// The sections in order with their tiles, "-" before a hidden one.
std::string sections(ResultsBlocksPage& page)
{
    std::string text;
    for (const std::string& name : page.getPageSectionNames())
        text += (text.empty() ? "" : ", ") + std::string(page.isResultsSectionVisibleGui(name) ? "" : "-") + name + " " +
                std::to_string(page.getPageSectionBlocksDisplayPathNames(name).size());
    return text;
}

std::string selectedPath(ResultsBlocksPage& page)
{
    return page.getSelectedBlock() ? page.getSelectedBlock()->getDisplayPath() : std::string();
}

void clickToggle(ResultsBlocksPage& page, const std::string& name)
{
    QTest::mouseClick(page.getSectionByName(name)->header->imageLink(), Qt::LeftButton);
    QApplication::processEvents();
}

// The picture for the docs, where TDLB_SCREENSHOT_DIR names a directory.
void screenshot(ResultsBlocksPage& page, const char* name)
{
    if (const char* directory = std::getenv("TDLB_SCREENSHOT_DIR"))
        EXPECT_TRUE(page.getScrollView()->grab().save(QString::fromLocal8Bit(directory) + "/" + name, "PNG"));
}

// Sections in tree order with their counts and tiles; the header's image
// hides and shows a section, whose tiles outlive the hide; with the
// preference a hidden library stays hidden in the next search, without it
// a new search opens every section again; a resize keeps what the user hid.
TEST_F(ResultsPageTest, SectionsFollowTheLibrariesAndAHiddenOneIsRememberedOrForgotten)
{
    StandaloneBrowser& window = open();
    ResultsBlocksPage& page = *window.resultsPage();
    window.searchForBlock("port");
    EXPECT_EQ(sections(page), "Tandril 9, Kinetics 1, Switchyard 1");
    EXPECT_EQ(page.getSectionByName("Tandril")->header->count()->text(), "9");
    EXPECT_EQ(page.getPageSectionBlocksDisplayPathNames("Switchyard"), (Names{"Switchyard/Routing/Multiport Switch"}));
    SectionTitleLink* title = page.getSectionByName("Switchyard")->header->titleLink();
    // The first tile is selected and described; the status tells the totals.
    EXPECT_EQ(selectedPath(page), "Tandril/Ports & Subsystems");
    EXPECT_TRUE(window.descriptionText()->text().startsWith("<b>Tandril/Ports &amp; Subsystems</b>: "));
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'port'    3 blocksets    1 subsystems    10 blocks");
    EXPECT_TRUE(statusTexts().contains("Matches for 'port'    3 blocksets    1 subsystems    10 blocks    Showing Switchyard"));
    // The title opens its library in the tree.
    emit title->linkActivated(QStringLiteral("library"));
    EXPECT_EQ(window.getCurrentTreeNode(), "Switchyard");

    window.searchForBlock("wave");
    ASSERT_EQ(sections(page), "Tandril 4, Kinetics 3, Signal Workbench 4, Switchyard 3");
    clickToggle(page, "Switchyard");
    EXPECT_EQ(sections(page), "Tandril 4, Kinetics 3, Signal Workbench 4, -Switchyard 3") << "the tiles outlive the hide";
    screenshot(page, "results-page.png");
    EXPECT_TRUE(page.getSectionByName("Switchyard")->header->imageLink()->expandsOnClick());

    window.searchForBlock("gate");
    EXPECT_EQ(sections(page), "Tandril 9, Signal Workbench 1, -Switchyard 0") << "filled only when shown";
    EXPECT_TRUE(statusTexts().contains("Matches for 'gate'    3 blocksets    0 subsystems    16 blocks    Hiding Switchyard"));
    clickToggle(page, "Switchyard");
    EXPECT_EQ(sections(page), "Tandril 9, Signal Workbench 1, Switchyard 6");
    EXPECT_FALSE(page.getSectionByName("Switchyard")->header->imageLink()->expandsOnClick());

    // The window that forgets: by name, unknown sections answer false.
    closeWindow();
    BrowserPreferences prefs(preferencesFile());
    prefs.setBool(PrefKey::LBSearchResults_rememberUserHiddenSections, false);
    ASSERT_TRUE(prefs.save());
    StandaloneBrowser& forgetting = open();
    ResultsBlocksPage& again = *forgetting.resultsPage();
    forgetting.searchForBlock("delay");
    EXPECT_TRUE(again.hideResultsSectionByName("Kinetics") && again.hideResultsSectionByName("Kinetics"));
    EXPECT_FALSE(again.hideResultsSectionByName("Nowhere") || again.showResultsSectionByName("Nowhere"));
    EXPECT_EQ(sections(again), "Tandril 3, -Kinetics 3");
    const long long tiles = GuiBlock::instancesCreated();
    forgetting.window()->resize(forgetting.window()->size() + QSize(0, 20));
    settle();
    EXPECT_EQ(std::make_pair(sections(again), GuiBlock::instancesCreated()), std::make_pair(std::string("Tandril 3, -Kinetics 3"), tiles));
    forgetting.searchForBlock("wave");
    EXPECT_EQ(sections(again), "Tandril 4, Kinetics 3, Signal Workbench 4, Switchyard 3");
}

// Moves cross from section to section by the rows of two columns, take the
// last tile of a shorter last row, pass over hidden sections and never wrap.
TEST_F(ResultsPageTest, SelectionMovesAcrossSections)
{
    StandaloneBrowser& window = open();
    ResultsBlocksPage& page = *window.resultsPage();
    window.setIconSize(IconSize::Compact);
    window.window()->resize(750, 600);
    settle();
    window.searchForBlock("wave");
    ASSERT_EQ(page.getNumIconCols(), 2);
    const auto select = [&](const std::string& path) { page.setSelectedBlock(page.getBlockByPathName(path)); };
    const std::string tandril = "Tandril/Frequently Used/Wave Sources";
    const std::string kinetics = "Kinetics/Test Signals/";
    const std::string workbench = "Signal Workbench/Wavecraft Signals";
    const std::string switchyard = "Switchyard/Timing Sources/";
    // Which move lands where is the section arithmetic's to pin; here the
    // page's wiring of it: across sections, no wrap, the short last row.
    const std::vector<std::tuple<void (ResultsBlocksPage::*)(), std::string, std::string>> moves{
        {&ResultsBlocksPage::selectBlockDown, kinetics + "Triangle Wave", workbench},
        {&ResultsBlocksPage::selectBlockUp, workbench + "/Sources/Sine Wave", kinetics + "Triangle Wave"},
        {&ResultsBlocksPage::selectBlockRight, kinetics + "Triangle Wave", workbench},
        {&ResultsBlocksPage::selectBlockLeft, tandril, tandril},
        {&ResultsBlocksPage::selectBlockDown, switchyard + "Square Wave", switchyard + "Triangle Wave"},
    };
    for (const auto& [move, from, to] : moves) {
        select(from);
        (page.*move)();
        EXPECT_EQ(selectedPath(page), to) << "from " << from;
    }
    // A hidden section is passed over (which tile each move lands on: the
    // section arithmetic), and a key press reaches the same moves.
    page.hideResultsSectionByName("Kinetics");
    select(tandril + "/Square Wave");
    QTest::keyClick(page.getScrollView(), Qt::Key_Down);
    EXPECT_EQ(selectedPath(page), workbench);
}

} // namespace
} // namespace LibraryBrowser::Testing
