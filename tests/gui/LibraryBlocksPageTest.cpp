// The library page on the example root, driven as a user would: keys and
// clicks on the real widgets, offscreen.

#include "PageTestSupport.h"

#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"

#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

class LibraryBlocksPageTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { session = new ExampleRootSession(); }
    static void TearDownTestSuite()
    {
        delete session;
        session = nullptr;
    }

    void SetUp() override
    {
        BrowserUtils::setScreenDPIOverride(96);
        host = std::make_unique<FakePageHost>(session->repository());
        page = std::make_unique<LibraryBlocksPage>(*host, host->layout, host->iconSize, host->font, Qt::white);
        host->currentPage = page.get();
        // Three columns of small grid tiles: 273 to 361 pixels of view.
        view()->resize(320 + 2 * view()->frameWidth(), 420);
        view()->show();
        QApplication::processEvents();
    }
    void TearDown() override { BrowserUtils::setScreenDPIOverride(0); }

    QScrollArea* view() { return page->getScrollView(); }

    void showNode(const std::string& path)
    {
        host->currentNode = host->addNode(session->object(path));
        page->updateBlocks(host->currentNode);
        QApplication::processEvents();
    }

    std::string selected() const
    {
        const GuiBlock* tile = page->getSelectedBlock();
        return tile ? tile->getDisplayName() : "";
    }

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(view(), Qt::Key(key), modifiers);
    }

    static ExampleRootSession* session;
    std::unique_ptr<FakePageHost> host;
    std::unique_ptr<LibraryBlocksPage> page;
};

ExampleRootSession* LibraryBlocksPageTest::session = nullptr;

const char* const signalAttributes = "tandril/Signal Attributes";

TEST_F(LibraryBlocksPageTest, ShowsTheNodeWithItsLabelStatusAndFirstTileSelected)
{
    showNode("tandril/Ports & Subsystems");
    EXPECT_EQ(host->tabLabel, "Library: Tandril/Ports && Subsystems");
    EXPECT_EQ(host->status, "Showing: Tandril/Ports & Subsystems");
    // Subsystems come first, then the plain blocks, each in library order.
    const std::vector<std::string> paths = page->getBlocksDisplayPathNames();
    ASSERT_EQ(paths.size(), 6u);
    EXPECT_EQ(std::vector<std::string>(paths.begin(), paths.begin() + 3),
              (std::vector<std::string>{"Tandril/Ports & Subsystems/Container",
                                        "Tandril/Ports & Subsystems/Conditional Container",
                                        "Tandril/Ports & Subsystems/Input Port"}));
    EXPECT_EQ(selected(), "Container");
    EXPECT_EQ(host->description, paths[0]);
    EXPECT_TRUE(page->getBlockByPathName(paths[1])->isSubsystem());
    EXPECT_FALSE(page->getBlockByPathName(paths[2])->isSubsystem());
}

TEST_F(LibraryBlocksPageTest, KeyboardMovesInAGridOfSevenInThreeColumns)
{
    showNode(signalAttributes);
    ASSERT_EQ(page->getNumIconCols(), 3);
    const std::vector<std::string> paths = page->getBlocksDisplayPathNames();
    ASSERT_EQ(paths.size(), 7u);
    auto at = [&](int index) { return page->getBlockByPathName(paths[index])->getDisplayName(); };

    // Where each move lands is SelectionMoves' to pin; here each key reaches
    // its move with the page's columns.
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), at(2));
    press(Qt::Key_Down);
    EXPECT_EQ(selected(), at(5));
    press(Qt::Key_Up);
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), at(1));
    press(Qt::Key_End);
    EXPECT_EQ(selected(), at(6));
    press(Qt::Key_Home);
    EXPECT_EQ(selected(), at(0));
    // Control or Alt leave the page's keys alone.
    press(Qt::Key_End, Qt::ControlModifier);
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(selected(), at(0));
    // Tab hands the focus to the search box.
    press(Qt::Key_Tab);
    EXPECT_EQ(host->searchFocusRequests, 1);
}

TEST_F(LibraryBlocksPageTest, InitialsCycleAndTheMenuKeysAskForTheSelectedTilesMenu)
{
    showNode("tandril/Ports & Subsystems");
    press(Qt::Key_C);
    EXPECT_EQ(selected(), "Conditional Container");
    press(Qt::Key_O, Qt::ShiftModifier);
    EXPECT_EQ(selected(), "Output Port");
    press(Qt::Key_Q);
    EXPECT_EQ(selected(), "Output Port");

    press(Qt::Key_F10);
    EXPECT_TRUE(host->menus.empty());
    press(Qt::Key_F10, Qt::ShiftModifier);
    press(Qt::Key_Menu);
    EXPECT_EQ(host->menus, (std::vector<std::string>{"Output Port", "Output Port"}));
}

TEST_F(LibraryBlocksPageTest, MouseSelectsAndADoubleClickOpensASubsystemInTheTree)
{
    showNode("tandril/Ports & Subsystems");
    auto* panel = static_cast<BlocksPanel*>(page->getMainPanel());
    const GuiBlock* input = page->getBlockByPathName("Tandril/Ports & Subsystems/Input Port");
    QTest::mouseClick(panel, Qt::LeftButton, {}, input->geometry().center());
    EXPECT_EQ(selected(), "Input Port");

    const GuiBlock* container = page->getBlockByPathName("Tandril/Ports & Subsystems/Container");
    QTest::mouseDClick(panel, Qt::LeftButton, {}, container->geometry().center());
    EXPECT_EQ(host->openedInTree, std::vector<std::string>{"Tandril/Ports & Subsystems/Container"});

    // A page that isn't the window's current one ignores the mouse.
    QTest::mouseClick(panel, Qt::LeftButton, {}, container->geometry().center());
    host->currentPage = nullptr;
    QTest::mouseClick(panel, Qt::LeftButton, {}, input->geometry().center());
    QTest::mouseDClick(panel, Qt::LeftButton, {}, container->geometry().center());
    EXPECT_EQ(selected(), "Container");
    EXPECT_EQ(host->openedInTree.size(), 1u);
}

TEST_F(LibraryBlocksPageTest, AResizeReflowsTheSameTilesAndKeepsTheSelection)
{
    showNode(signalAttributes);
    press(Qt::Key_End);
    const long long made = GuiBlock::instancesCreated();
    const GuiBlock* third = page->getBlockByPathName(page->getBlocksDisplayPathNames()[2]);
    const QRect before = third->geometry();

    view()->resize(230 + 2 * view()->frameWidth(), 420); // room for two columns
    QApplication::processEvents();
    EXPECT_EQ(page->getNumIconCols(), 2);
    EXPECT_EQ(GuiBlock::instancesCreated(), made);
    EXPECT_EQ(third->geometry().topLeft(), QPoint(before.left() - 2 * (before.width() + 4), before.bottom() + 1 + 4));
    EXPECT_EQ(selected(), page->getBlockByPathName(page->getBlocksDisplayPathNames()[6])->getDisplayName());

    // Widening within the same columns changes nothing at all.
    view()->resize(240 + 2 * view()->frameWidth(), 420);
    QApplication::processEvents();
    EXPECT_EQ(third->geometry().topLeft(), QPoint(5, 5 + 98 + 4));
    EXPECT_EQ(GuiBlock::instancesCreated(), made);
}

TEST_F(LibraryBlocksPageTest, ASelectionSurvivesARebuildForAnotherLayout)
{
    showNode(signalAttributes);
    press(Qt::Key_T);
    EXPECT_EQ(selected(), "Terminator");
    const long long made = GuiBlock::instancesCreated();
    host->layout = LayoutType::List;
    page->updateBlocks(host->currentNode);
    EXPECT_GT(GuiBlock::instancesCreated(), made); // a new layout makes the tiles anew
    EXPECT_EQ(selected(), "Terminator");
    EXPECT_EQ(page->getNumIconCols(), 1);
}

TEST_F(LibraryBlocksPageTest, AWideNameInTheListGetsAHorizontalScrollBarNotACut)
{
    host->layout = LayoutType::List;
    host->iconSize = IconSize::Large;
    view()->resize(160, 420);
    QApplication::processEvents();
    showNode(signalAttributes);
    const GuiBlock* widest = page->getBlockByPathName("Tandril/Signal Attributes/Signal Attributes");
    const int nameWidth = BrowserUtils::getFontInfoStringWidth(host->font, widest->getDisplayName());
    const TileMetrics& metrics = page->getTileMetrics();
    EXPECT_GE(widest->geometry().width(), metrics.listWidthFor(nameWidth));
    EXPECT_GE(metrics.nameRect(widest->geometry().width()).width(), nameWidth);
    EXPECT_TRUE(view()->horizontalScrollBar()->isVisible());
    // Every item is as wide as the widest, so the selection bar runs to the edge.
    for (const std::string& path : page->getBlocksDisplayPathNames())
        EXPECT_EQ(page->getBlockByPathName(path)->geometry().width(), widest->geometry().width());
}

TEST_F(LibraryBlocksPageTest, UnknownNodesChangeNothing)
{
    showNode(signalAttributes);
    const std::vector<std::string> shown = page->getBlocksDisplayPathNames();
    page->updateBlocks(0);
    page->updateBlocks(999);
    EXPECT_EQ(page->getBlocksDisplayPathNames(), shown);
}

} // namespace
} // namespace LibraryBrowser::Testing
