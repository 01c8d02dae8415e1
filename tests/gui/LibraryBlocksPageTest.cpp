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

// A node's page: its label, status and first tile selected, subsystems
// first; initials cycle; the menu keys ask for the selected tile's menu; the
// mouse selects and a double click opens a subsystem in the tree, but not on
// a page that isn't the window's current one.
TEST_F(LibraryBlocksPageTest, ShowsTheNodeAndTheKeysAndTheMouseActOnIt)
{
    showNode("tandril/Ports & Subsystems");
    EXPECT_EQ(host->tabLabel, "Library: Tandril/Ports && Subsystems");
    EXPECT_EQ(host->status, "Showing: Tandril/Ports & Subsystems");
    const std::vector<std::string> paths = page->getBlocksDisplayPathNames();
    ASSERT_EQ(paths.size(), 6u);
    const std::string container = "Tandril/Ports & Subsystems/Container";
    const std::string input = "Tandril/Ports & Subsystems/Input Port";
    EXPECT_EQ(std::vector<std::string>(paths.begin(), paths.begin() + 3),
              (std::vector<std::string>{container, "Tandril/Ports & Subsystems/Conditional Container", input}));
    EXPECT_EQ(selected(), "Container");
    EXPECT_EQ(host->description, paths[0]);
    EXPECT_TRUE(page->getBlockByPathName(paths[1])->isSubsystem());
    EXPECT_FALSE(page->getBlockByPathName(paths[2])->isSubsystem());

    for (const auto& [key, modifiers, expected] : {std::tuple{Qt::Key_C, Qt::NoModifier, "Conditional Container"},
                                                   {Qt::Key_O, Qt::ShiftModifier, "Output Port"},
                                                   {Qt::Key_Q, Qt::NoModifier, "Output Port"}}) {
        press(key, modifiers);
        EXPECT_EQ(selected(), expected) << char(key);
    }
    press(Qt::Key_F10);
    EXPECT_TRUE(host->menus.empty());
    press(Qt::Key_F10, Qt::ShiftModifier);
    press(Qt::Key_Menu);
    EXPECT_EQ(host->menus, (std::vector<std::string>{"Output Port", "Output Port"}));

    auto* panel = static_cast<BlocksPanel*>(page->getMainPanel());
    const QPoint inputAt = page->getBlockByPathName(input)->geometry().center();
    const QPoint containerAt = page->getBlockByPathName(container)->geometry().center();
    QTest::mouseClick(panel, Qt::LeftButton, {}, inputAt);
    EXPECT_EQ(selected(), "Input Port");
    QTest::mouseDClick(panel, Qt::LeftButton, {}, containerAt);
    EXPECT_EQ(host->openedInTree, std::vector<std::string>{container});
    QTest::mouseClick(panel, Qt::LeftButton, {}, containerAt);
    host->currentPage = nullptr;
    QTest::mouseClick(panel, Qt::LeftButton, {}, inputAt);
    QTest::mouseDClick(panel, Qt::LeftButton, {}, containerAt);
    EXPECT_EQ(selected(), "Container");
    EXPECT_EQ(host->openedInTree.size(), 1u);
}

// Seven tiles in three columns: each key reaches its move (where each move
// lands is SelectionMoves' to pin); a resize reflows the same tiles and keeps
// the selection; another layout makes them anew and keeps it too; unknown
// nodes change nothing.
TEST_F(LibraryBlocksPageTest, KeysResizeAndRebuildInAGridOfSeven)
{
    showNode(signalAttributes);
    ASSERT_EQ(page->getNumIconCols(), 3);
    const std::vector<std::string> paths = page->getBlocksDisplayPathNames();
    ASSERT_EQ(paths.size(), 7u);
    const auto at = [&](int index) { return page->getBlockByPathName(paths[index])->getDisplayName(); };
    const std::vector<std::tuple<std::vector<int>, Qt::KeyboardModifiers, int>> steps{
        {{Qt::Key_Right, Qt::Key_Right}, Qt::NoModifier, 2}, {{Qt::Key_Down}, Qt::NoModifier, 5},
        {{Qt::Key_Up, Qt::Key_Left}, Qt::NoModifier, 1},     {{Qt::Key_End}, Qt::NoModifier, 6},
        {{Qt::Key_Home}, Qt::NoModifier, 0},                 {{Qt::Key_End}, Qt::ControlModifier, 0},
        {{Qt::Key_Right}, Qt::AltModifier, 0},
    };
    for (const auto& [keys, modifiers, expected] : steps) {
        for (int key : keys)
            press(key, modifiers);
        EXPECT_EQ(selected(), at(expected)) << keys.front() << " with " << modifiers;
    }
    press(Qt::Key_Tab);
    EXPECT_EQ(host->searchFocusRequests, 1) << "Tab hands the focus to the search box";

    press(Qt::Key_End);
    const long long made = GuiBlock::instancesCreated();
    const GuiBlock* third = page->getBlockByPathName(paths[2]);
    const QRect before = third->geometry();
    view()->resize(230 + 2 * view()->frameWidth(), 420); // room for two columns
    QApplication::processEvents();
    EXPECT_EQ(page->getNumIconCols(), 2);
    EXPECT_EQ(GuiBlock::instancesCreated(), made);
    EXPECT_EQ(third->geometry().topLeft(), QPoint(before.left() - 2 * (before.width() + 4), before.bottom() + 1 + 4));
    EXPECT_EQ(selected(), at(6));
    // Widening within the same columns changes nothing at all.
    view()->resize(240 + 2 * view()->frameWidth(), 420);
    QApplication::processEvents();
    EXPECT_EQ(third->geometry().topLeft(), QPoint(5, 5 + 98 + 4));
    EXPECT_EQ(GuiBlock::instancesCreated(), made);

    press(Qt::Key_T);
    EXPECT_EQ(selected(), "Terminator");
    host->layout = LayoutType::List;
    page->updateBlocks(host->currentNode);
    EXPECT_GT(GuiBlock::instancesCreated(), made);
    EXPECT_EQ(selected(), "Terminator");
    EXPECT_EQ(page->getNumIconCols(), 1);
    page->updateBlocks(0);
    page->updateBlocks(999);
    EXPECT_EQ(page->getBlocksDisplayPathNames(), paths);
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

} // namespace
} // namespace LibraryBrowser::Testing
