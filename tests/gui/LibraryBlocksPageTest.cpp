// The library page of the real window on the example root, driven as a user
// would: keys and clicks on the page's widgets, offscreen.

#include "BrowserWindowFixture.h"

#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"

#include <QApplication>
#include <QComboBox>
#include <QScrollArea>
#include <QTabWidget>
#include <QTest>

namespace LibraryBrowser::Testing {
namespace {

using LibraryBlocksPageTest = BrowserWindowFixture;

const std::string ports = "Tandril/Ports & Subsystems";
const std::string signalAttributes = "Tandril/Signal Attributes";

// A node's page: its label and first tile selected, subsystems first;
// initials cycle; the menu keys open the selected tile's menu; the mouse
// selects and a double click opens a subsystem in the tree, but not on a page
// that isn't the window's current one. Then seven tiles in three columns:
// each key reaches its move (where each move lands is SelectionMoves' to
// pin); a resize reflows the same tiles and keeps the selection; another
// layout makes them anew and keeps it too; unknown nodes change nothing.
TEST_F(LibraryBlocksPageTest, TheKeysAndTheMouseActOnThePageAndItsSelectionOutlivesAReflow)
{
    StandaloneBrowser& window = open();
    LibraryBlocksPage& page = *window.libraryPage();
    QScrollArea* view = page.getScrollView();
    const auto resizeView = [&](int width) {
        window.window()->resize(window.window()->width() + width - view->viewport()->width(), 600);
        settle();
    };
    const auto selected = [&] { return page.getSelectedBlock() ? page.getSelectedBlock()->getDisplayName() : ""; };
    const auto press = [&](int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(view, Qt::Key(key), modifiers);
    };
    window.setLayout(LayoutType::Grid);
    window.setIconSize(IconSize::Small);
    resizeView(320);
    window.window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.window()));
    view->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), window.searchComboBox()) << "Tab hands the focus to the search box";
    window.internalOpenSubsystemInTree(ports);
    settle();
    EXPECT_EQ(window.window()->findChild<QTabWidget*>("LBTabContainer")->tabText(0),
              "Library: Tandril/Ports && Subsystems");
    const std::string container = ports + "/Container";
    const std::string input = ports + "/Input Port";
    const std::vector<std::string> first = page.getBlocksDisplayPathNames();
    EXPECT_EQ(std::vector<std::string>(first.begin(), first.begin() + std::min<std::size_t>(3, first.size())),
              (std::vector<std::string>{container, ports + "/Conditional Container", input}));
    EXPECT_EQ(selected(), "Container");

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
    EXPECT_EQ(std::make_tuple(selected(), window.getCurrentTreeNode()), std::make_tuple(std::string("Output Port"), ports));
    window.selectTabByIndex(0);
    QTest::mouseClick(panel, Qt::LeftButton, {}, inputAt);
    EXPECT_EQ(selected(), "Input Port");
    QTest::mouseDClick(panel, Qt::LeftButton, {}, containerAt);
    EXPECT_EQ(window.getCurrentTreeNode(), container);

    window.internalOpenSubsystemInTree(signalAttributes);
    settle();
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

    press(Qt::Key_End);
    const long long made = GuiBlock::instancesCreated();
    resizeView(230); // room for two columns
    EXPECT_EQ(std::make_tuple(page.getNumIconCols(), GuiBlock::instancesCreated(), selected()),
              std::make_tuple(2, made, at(6)));
    press(Qt::Key_T);
    window.setLayout(LayoutType::List);
    EXPECT_GT(GuiBlock::instancesCreated(), made);
    EXPECT_EQ(std::make_tuple(selected(), page.getNumIconCols()), std::make_tuple(std::string("Terminator"), 1));
    page.updateBlocks(0);
    page.updateBlocks(999999);
    EXPECT_EQ(page.getBlocksDisplayPathNames(), paths);
}

} // namespace
} // namespace LibraryBrowser::Testing
