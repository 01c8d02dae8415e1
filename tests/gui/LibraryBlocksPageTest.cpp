// The library page of the real window on the example root, driven as a user
// would: keys and clicks on the page's widgets, offscreen.

#include "BrowserWindowFixture.h"

#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>

namespace LibraryBrowser::Testing {
namespace {

class LibraryBlocksPageTest : public BrowserWindowFixture {
protected:
    // The window in the layout and icon size, as wide as gives the page's
    // view the width, on the node.
    LibraryBlocksPage& showNode(const std::string& path, int viewWidth, LayoutType layout = LayoutType::Grid,
                                IconSize size = IconSize::Small)
    {
        StandaloneBrowser& window = open();
        window.setLayout(layout);
        window.setIconSize(size);
        resizeView(viewWidth);
        window.internalOpenSubsystemInTree(path);
        settle();
        return *window.libraryPage();
    }
    void resizeView(int width)
    {
        QWidget* top = browser().window();
        top->resize(top->width() + width - view()->viewport()->width(), 600);
        settle();
    }
    QScrollArea* view() { return browser().libraryPage()->getScrollView(); }
    std::string selected()
    {
        const GuiBlock* tile = browser().libraryPage()->getSelectedBlock();
        return tile ? tile->getDisplayName() : "";
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(view(), Qt::Key(key), modifiers);
    }
};

const std::string ports = "Tandril/Ports & Subsystems";
const std::string signalAttributes = "Tandril/Signal Attributes";

// A node's page: its label, status and first tile selected, subsystems
// first; initials cycle; the menu keys open the selected tile's menu; the
// mouse selects and a double click opens a subsystem in the tree, but not on
// a page that isn't the window's current one.
TEST_F(LibraryBlocksPageTest, ShowsTheNodeAndTheKeysAndTheMouseActOnIt)
{
    LibraryBlocksPage& page = showNode(ports, 320);
    StandaloneBrowser& window = browser();
    EXPECT_EQ(window.window()->findChild<QTabWidget*>("LBTabContainer")->tabText(0),
              "Library: Tandril/Ports && Subsystems");
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Showing: " + ports);
    const std::vector<std::string> paths = page.getBlocksDisplayPathNames();
    ASSERT_EQ(paths.size(), 6u);
    const std::string container = ports + "/Container";
    const std::string input = ports + "/Input Port";
    EXPECT_EQ(std::vector<std::string>(paths.begin(), paths.begin() + 3),
              (std::vector<std::string>{container, ports + "/Conditional Container", input}));
    EXPECT_EQ(selected(), "Container");
    EXPECT_TRUE(window.descriptionText()->text().startsWith("<b>Tandril/Ports &amp; Subsystems/Container</b>"));
    EXPECT_TRUE(page.getBlockByPathName(paths[1])->isSubsystem());
    EXPECT_FALSE(page.getBlockByPathName(paths[2])->isSubsystem());

    for (const auto& [key, modifiers, expected] : {std::tuple{Qt::Key_C, Qt::NoModifier, "Conditional Container"},
                                                   {Qt::Key_O, Qt::ShiftModifier, "Output Port"},
                                                   {Qt::Key_Q, Qt::NoModifier, "Output Port"}}) {
        press(key, modifiers);
        EXPECT_EQ(selected(), expected) << char(key);
    }
    EXPECT_TRUE(menuOpenedBy([&] { press(Qt::Key_F10); }).isEmpty());
    for (const auto& [key, modifiers] : {std::pair{Qt::Key_F10, Qt::ShiftModifier}, {Qt::Key_Menu, Qt::NoModifier}})
        EXPECT_TRUE(menuOpenedBy([&] { press(key, modifiers); }).contains("Help for the Output Port block")) << key;

    auto* panel = static_cast<BlocksPanel*>(page.getMainPanel());
    const QPoint inputAt = page.getBlockByPathName(input)->geometry().center();
    const QPoint containerAt = page.getBlockByPathName(container)->geometry().center();
    window.selectTabByIndex(1);
    QTest::mouseClick(panel, Qt::LeftButton, {}, inputAt);
    QTest::mouseDClick(panel, Qt::LeftButton, {}, containerAt);
    EXPECT_EQ(selected(), "Output Port");
    EXPECT_EQ(window.getCurrentTreeNode(), ports);
    window.selectTabByIndex(0);
    QTest::mouseClick(panel, Qt::LeftButton, {}, inputAt);
    EXPECT_EQ(selected(), "Input Port");
    QTest::mouseDClick(panel, Qt::LeftButton, {}, containerAt);
    EXPECT_EQ(window.getCurrentTreeNode(), container);
}

// Seven tiles in three columns: each key reaches its move (where each move
// lands is SelectionMoves' to pin); a resize reflows the same tiles and keeps
// the selection; another layout makes them anew and keeps it too; unknown
// nodes change nothing.
TEST_F(LibraryBlocksPageTest, KeysResizeAndRebuildInAGridOfSeven)
{
    LibraryBlocksPage& page = showNode(signalAttributes, 320);
    ASSERT_EQ(page.getNumIconCols(), 3);
    const std::vector<std::string> paths = page.getBlocksDisplayPathNames();
    ASSERT_EQ(paths.size(), 7u);
    const auto at = [&](int index) { return page.getBlockByPathName(paths[index])->getDisplayName(); };
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
    browser().window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(browser().window()));
    view()->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), browser().searchComboBox()) << "Tab hands the focus to the search box";

    press(Qt::Key_End);
    const long long made = GuiBlock::instancesCreated();
    const GuiBlock* third = page.getBlockByPathName(paths[2]);
    const QRect before = third->geometry();
    resizeView(230); // room for two columns
    EXPECT_EQ(page.getNumIconCols(), 2);
    EXPECT_EQ(GuiBlock::instancesCreated(), made);
    EXPECT_EQ(third->geometry().topLeft(), QPoint(before.left() - 2 * (before.width() + 4), before.bottom() + 1 + 4));
    EXPECT_EQ(selected(), at(6));
    // Widening within the same columns changes nothing at all.
    resizeView(240);
    EXPECT_EQ(third->geometry().topLeft(), QPoint(5, 5 + 98 + 4));
    EXPECT_EQ(GuiBlock::instancesCreated(), made);

    press(Qt::Key_T);
    EXPECT_EQ(selected(), "Terminator");
    browser().setLayout(LayoutType::List);
    EXPECT_GT(GuiBlock::instancesCreated(), made);
    EXPECT_EQ(selected(), "Terminator");
    EXPECT_EQ(page.getNumIconCols(), 1);
    page.updateBlocks(0);
    page.updateBlocks(999999);
    EXPECT_EQ(page.getBlocksDisplayPathNames(), paths);
}

TEST_F(LibraryBlocksPageTest, AWideNameInTheListGetsAHorizontalScrollBarNotACut)
{
    LibraryBlocksPage& page = showNode(signalAttributes, 160, LayoutType::List, IconSize::Large);
    const GuiBlock* widest = page.getBlockByPathName(signalAttributes + "/Signal Attributes");
    const int nameWidth = BrowserUtils::getFontInfoStringWidth(browser().getGuiFont(), widest->getDisplayName());
    const TileMetrics& metrics = page.getTileMetrics();
    EXPECT_GE(widest->geometry().width(), metrics.listWidthFor(nameWidth));
    EXPECT_GE(metrics.nameRect(widest->geometry().width()).width(), nameWidth);
    EXPECT_TRUE(view()->horizontalScrollBar()->isVisible());
    // Every item is as wide as the widest, so the selection bar runs to the edge.
    for (const std::string& path : page.getBlocksDisplayPathNames())
        EXPECT_EQ(page.getBlockByPathName(path)->geometry().width(), widest->geometry().width());
}

} // namespace
} // namespace LibraryBrowser::Testing
