#include "ResultsPageFixture.h"

#include "frame/MessageCatalogue.h"
#include "gui/BrowserUtils.h"
#include "gui/GuiBlock.h"
#include "gui/LBImageLink.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SectionHeader.h"
#include "gui/SectionTitleLink.h"

#include <QLabel>
#include <QScrollArea>
#include <QTest>

#include <cstdlib>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using Names = std::vector<std::string>;

class ResultsPageTest : public ResultsPageFixture {
protected:
    static std::string text(std::uint32_t id) { return BrowserUtils::xlatedMessageFromId(id); }
    static QLabel* noResultsLabel(ResultsBlocksPage& page)
    {
        return page.getScrollView()->findChild<QLabel*>("noResultsText");
    }
    static void clickToggle(ResultsBlocksPage& page, const std::string& name)
    {
        QTest::mouseClick(page.getSectionByName(name)->header->imageLink(), Qt::LeftButton);
        QApplication::processEvents();
    }
};

} // namespace

// "port" is found in three products: one section each, in the order of the
// libraries, with the hits counted and the tiles in the order found.
TEST_F(ResultsPageTest, SectionsFollowTheLibrariesWithTheirCountsAndTiles)
{
    auto window = makeWindow();
    window->search("port");
    window->update();
    ResultsBlocksPage& page = window->page();

    EXPECT_EQ(page.getPageSectionNames(), (Names{"Kinetics", "Switchyard", "Tandril"}));
    EXPECT_EQ(visibleSections(page), (Names{"Kinetics", "Switchyard", "Tandril"}));
    EXPECT_EQ((Names{sectionCount(page, "Kinetics"), sectionCount(page, "Switchyard"), sectionCount(page, "Tandril")}),
              (Names{"1", "1", "9"}));
    EXPECT_EQ(page.getPageSectionBlocksDisplayPathNames("Switchyard"), (Names{"Switchyard/Routing/Multiport Switch"}));
    const Names tandril = page.getPageSectionBlocksDisplayPathNames("Tandril");
    ASSERT_EQ(tandril.size(), 9u);
    EXPECT_EQ(tandril.front(), "Tandril/Ports & Subsystems");
    EXPECT_TRUE(page.getPageSectionBlocksDisplayPathNames("Arithmetica").empty());
    EXPECT_EQ(page.getBlocksDisplayPathNames().size(), 11u);

    const PageSection* section = page.getSectionByName("Tandril");
    EXPECT_EQ(section->header->titleLink()->fullTitle().toStdString(), "Tandril");
    EXPECT_EQ(section->header->titleLink()->toolTip().toStdString(), "Select Tandril in the tree view");

    // The first tile is selected and described; the status tells the totals.
    EXPECT_EQ(selectedPath(page), "Kinetics/Continuous/Transport Delay");
    EXPECT_EQ(window->description, "Kinetics/Continuous/Transport Delay");
    EXPECT_EQ(window->getCurrentStatusBarMessage(),
              "Matches for 'port'    3 blocksets    1 subsystems    10 blocks");
    EXPECT_EQ(page.getStatusMessage(), window->getCurrentStatusBarMessage());
    EXPECT_NE(std::find(window->statusMessages.begin(), window->statusMessages.end(),
                        "Matches for 'port'    3 blocksets    1 subsystems    10 blocks    Showing Switchyard"),
              window->statusMessages.end());

    // The title opens its library in the tree.
    emit section->header->titleLink()->linkActivated(QStringLiteral("library"));
    EXPECT_EQ(window->openedInTree, (Names{"Tandril"}));
}

// The header's image hides and shows a section; its tiles outlive the hide,
// and with the preference set the hidden library stays hidden in the next
// search's results, where it is reopened with a click.
TEST_F(ResultsPageTest, AHiddenSectionIsRememberedInTheNextSearch)
{
    auto window = makeWindow();
    window->search("wave");
    window->update();
    ResultsBlocksPage& page = window->page();
    ASSERT_EQ(visibleSections(page), (Names{"Kinetics", "Switchyard", "Tandril", "Signal Workbench"}));

    EXPECT_EQ(page.getSectionByName("Switchyard")->header->imageLink()->toolTip().toStdString(),
              text(MessageId::TDLB_GuiBlocksPageHeaderHideBlocksToolTip));
    clickToggle(page, "Switchyard");
    EXPECT_EQ(visibleSections(page), (Names{"Kinetics", "Tandril", "Signal Workbench"}));
    // The picture for the docs, where TDLB_SCREENSHOT_DIR names a directory.
    if (const char* directory = std::getenv("TDLB_SCREENSHOT_DIR"))
        EXPECT_TRUE(window->widget().grab().save(QString::fromLocal8Bit(directory) + "/results-page.png", "PNG"));
    EXPECT_TRUE(page.getSectionByName("Switchyard")->header->imageLink()->expandsOnClick());
    EXPECT_EQ(page.getSectionByName("Switchyard")->header->imageLink()->toolTip().toStdString(),
              text(MessageId::TDLB_GuiBlocksPageHeaderShowBlocksToolTip));
    EXPECT_EQ(page.getPageSectionBlocksDisplayPathNames("Switchyard").size(), 3u);
    EXPECT_EQ(page.getSectionByName("Switchyard")->header->isHidden(), false);

    window->search("gate");
    window->update();
    EXPECT_EQ(page.getPageSectionNames(), (Names{"Switchyard", "Tandril", "Signal Workbench"}));
    EXPECT_EQ(visibleSections(page), (Names{"Tandril", "Signal Workbench"}));
    EXPECT_TRUE(page.getPageSectionBlocksDisplayPathNames("Switchyard").empty()) << "filled only when shown";
    EXPECT_NE(std::find(window->statusMessages.begin(), window->statusMessages.end(),
                        "Matches for 'gate'    3 blocksets    0 subsystems    16 blocks    Hiding Switchyard"),
              window->statusMessages.end());

    clickToggle(page, "Switchyard");
    EXPECT_EQ(visibleSections(page), (Names{"Switchyard", "Tandril", "Signal Workbench"}));
    EXPECT_EQ(page.getPageSectionBlocksDisplayPathNames("Switchyard").size(), 6u);
    EXPECT_FALSE(page.getSectionByName("Switchyard")->header->imageLink()->expandsOnClick());
}

// By name, unknown sections answer false and change nothing; a resize keeps
// what the user hid and makes no tile anew; without the preference a new
// search opens every section again.
TEST_F(ResultsPageTest, SectionsByNameAndTheForgettingWindow)
{
    auto window = makeWindow();
    window->remember = false;
    window->search("delay");
    window->update();
    ResultsBlocksPage& page = window->page();

    EXPECT_TRUE(page.hideResultsSectionByName("Kinetics"));
    EXPECT_FALSE(page.isResultsSectionVisibleGui("Kinetics"));
    EXPECT_TRUE(page.hideResultsSectionByName("Kinetics")) << "hiding twice is no error";
    EXPECT_FALSE(page.hideResultsSectionByName("Nowhere"));
    EXPECT_FALSE(page.showResultsSectionByName("Nowhere"));
    EXPECT_FALSE(page.isResultsSectionVisibleGui("Nowhere"));
    EXPECT_EQ(visibleSections(page), (Names{"Tandril"}));
    const long long tiles = GuiBlock::instancesCreated();
    window->widget().resize(700, 500);
    QApplication::processEvents();
    EXPECT_EQ(visibleSections(page), (Names{"Tandril"}));
    EXPECT_EQ(GuiBlock::instancesCreated(), tiles);

    window->search("wave");
    window->update();
    EXPECT_EQ(visibleSections(page), (Names{"Kinetics", "Switchyard", "Tandril", "Signal Workbench"}));
}

// An empty result says so in red in the page, with the options that were set
// in a fixed order; the status bar and the description follow.
TEST_F(ResultsPageTest, AnEmptyResultShowsTheMessageAndTheOptions)
{
    struct Case {
        bool regExp, wholeWord, matchCase;
        std::string options;
    };
    const std::vector<Case> cases{
        {false, false, false, ""},
        {true, false, false, "<br> <br>Search options: Regular expression"},
        {true, true, true, "<br> <br>Search options: Match whole word, Match case, Regular expression"},
        {false, true, true, "<br> <br>Search options: Match whole word, Match case"},
    };
    auto window = makeWindow();
    for (const Case& c : cases) {
        window->search("<nothing>", c.regExp, c.wholeWord, c.matchCase);
        window->update();
        ResultsBlocksPage& page = window->page();
        QLabel* label = noResultsLabel(page);
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text().toStdString(),
                  "<font color=red>No search results found for '&lt;nothing&gt;'</font>" + c.options);
        EXPECT_TRUE(page.getPageSectionNames().empty());
        EXPECT_EQ(window->getCurrentStatusBarMessage(), "No matches for '<nothing>'");
        EXPECT_EQ(page.getSelectedBlock(), nullptr);
        EXPECT_EQ(window->description, "");
    }

    // Hits after an empty result bring the sections back and the text goes.
    window->search("delay");
    window->update();
    EXPECT_EQ(noResultsLabel(window->page()), nullptr);
    EXPECT_EQ(visibleSections(window->page()), (Names{"Kinetics", "Tandril"}));
}

// Moves cross from section to section by the rows of two columns, take the
// last tile of a shorter last row, pass over hidden sections and never wrap.
TEST_F(ResultsPageTest, SelectionMovesAcrossSections)
{
    auto window = makeWindow(LayoutType::Grid, QSize(400, 600));
    window->search("wave");
    window->update();
    ResultsBlocksPage& page = window->page();
    ASSERT_EQ(page.getNumIconCols(), 2) << "three hits make two rows";
    const auto select = [&](const std::string& path) { page.setSelectedBlock(page.getBlockByPathName(path)); };
    struct Move {
        void (ResultsBlocksPage::*move)();
        std::string from, to;
    };
    const std::string kinetics = "Kinetics/Test Signals/";
    const std::string switchyard = "Switchyard/Timing Sources/";
    const std::string workbench = "Signal Workbench/Wavecraft Signals";
    // Which move lands where is the section arithmetic's to pin; here the
    // page's wiring of it: across sections, no wrap, the short last row.
    const std::vector<Move> moves{
        {&ResultsBlocksPage::selectBlockDown, kinetics + "Triangle Wave", switchyard + "Sine Wave"},
        {&ResultsBlocksPage::selectBlockUp, switchyard + "Square Wave", kinetics + "Triangle Wave"},
        {&ResultsBlocksPage::selectBlockRight, kinetics + "Triangle Wave", switchyard + "Sine Wave"},
        {&ResultsBlocksPage::selectBlockLeft, kinetics + "Sine Wave", kinetics + "Sine Wave"},
        {&ResultsBlocksPage::selectBlockDown, workbench + "/Sources/Square Wave",
         workbench + "/Sources/Triangle Wave"},
    };
    for (const Move& m : moves) {
        select(m.from);
        (page.*m.move)();
        EXPECT_EQ(selectedPath(page), m.to) << "from " << m.from;
    }

    // A hidden section is passed over, and a move from one of its tiles goes
    // to the neighbouring shown section.
    select("Tandril/Frequently Used/Wave Sources/Sine Wave");
    page.hideResultsSectionByName("Tandril");
    page.selectBlockRight();
    EXPECT_EQ(selectedPath(page), workbench);
    page.selectBlockUp();
    EXPECT_EQ(selectedPath(page), switchyard + "Triangle Wave");
    page.selectBlockDown();
    EXPECT_EQ(selectedPath(page), workbench);

    // A key press reaches the same moves.
    select(kinetics + "Square Wave");
    QTest::keyClick(page.getScrollView(), Qt::Key_Down);
    EXPECT_EQ(selectedPath(page), kinetics + "Triangle Wave");
}

// In a narrow window a long title is cut in the middle, the count and the
// image keep their room, and without the image files a drawn image stands in.
TEST_F(ResultsPageTest, ANarrowHeaderCutsTheTitleInTheMiddle)
{
    auto window = makeWindow(LayoutType::Grid, QSize(150, 300));
    window->search("wave");
    window->update();
    const SectionHeader* header = window->page().getSectionByName("Signal Workbench")->header;
    const QString shown = header->titleLink()->shownTitle();
    EXPECT_LT(shown.size(), QString("Signal Workbench").size());
    EXPECT_TRUE(shown.contains(QChar(0x2026))) << shown.toStdString();
    EXPECT_TRUE(shown.startsWith("Si")) << shown.toStdString();
    EXPECT_TRUE(shown.endsWith("h")) << shown.toStdString();
    EXPECT_TRUE(header->rect().contains(header->count()->geometry()));
    EXPECT_TRUE(header->rect().contains(header->imageLink()->geometry()));
    EXPECT_GT(header->imageLink()->geometry().left(), header->count()->geometry().right());
    EXPECT_FALSE(header->imageLink()->pixmap().isNull());
}

// In the list layout every section is one column of items as wide as the
// view, and Down runs through them into the next section.
TEST_F(ResultsPageTest, TheListLayoutStacksItemsAcrossTheView)
{
    auto window = makeWindow(LayoutType::List, QSize(500, 400));
    window->search("delay");
    window->update();
    ResultsBlocksPage& page = window->page();
    EXPECT_EQ(page.getNumIconCols(), 1);
    const Names kinetics = page.getPageSectionBlocksDisplayPathNames("Kinetics");
    ASSERT_EQ(kinetics.size(), 3u);
    const int viewWidth = page.getScrollView()->viewport()->width();
    for (const std::string& path : page.getBlocksDisplayPathNames())
        EXPECT_GT(page.getBlockByPathName(path)->geometry().width(), viewWidth / 2) << path;

    page.setSelectedBlock(page.getBlockByPathName(kinetics[1]));
    page.selectBlockDown();
    EXPECT_EQ(selectedPath(page), kinetics[2]);
    page.selectBlockDown();
    EXPECT_EQ(selectedPath(page), "Tandril/Frequently Used/Continuous Dynamics/Transport Delay");
    if (const char* directory = std::getenv("TDLB_SCREENSHOT_DIR"))
        window->widget().grab().save(QString::fromLocal8Bit(directory) + "/results-page-list.png", "PNG");
}
