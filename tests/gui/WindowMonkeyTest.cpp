// The window's monkey test: a seeded random user of the real window, offscreen.
// TDLB_WINDOW_MONKEY_SEEDS ("1-10" or "4,7") and TDLB_WINDOW_MONKEY_STEPS
// make the long form; TDLB_WINDOW_MONKEY_TRACE=1 prints every step before it
// runs, so that a crash's last line names the step.

#include "BrowserWindowFixture.h"
#include "WindowMonkey.h"

#include "gui/BlocksPanel.h"
#include "gui/BrowserActionTable.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/LibraryTreeView.h"
#include "gui/StandaloneBrowser.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QMainWindow>
#include <QTest>

#include <iostream>
#include <vector>

namespace LibraryBrowser::Testing {
namespace {

class WindowMonkeyTest : public BrowserWindowFixture {};

std::vector<unsigned> seedsToRun()
{
    const QString text = qEnvironmentVariable("TDLB_WINDOW_MONKEY_SEEDS", QStringLiteral("1,2,3"));
    std::vector<unsigned> seeds;
    for (const QString& part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList range = part.split(QLatin1Char('-'));
        const unsigned first = range.front().trimmed().toUInt();
        const unsigned last = range.back().trimmed().toUInt();
        for (unsigned seed = first; seed <= last; ++seed)
            seeds.push_back(seed);
    }
    return seeds;
}

TEST_F(WindowMonkeyTest, TheWindowAnswersAndHangsTogetherAfterEveryRandomStep)
{
    const std::vector<unsigned> seeds = seedsToRun();
    ASSERT_FALSE(seeds.empty()) << "TDLB_WINDOW_MONKEY_SEEDS names no seed";
    const int steps = qEnvironmentVariableIntValue("TDLB_WINDOW_MONKEY_STEPS") > 0
                          ? qEnvironmentVariableIntValue("TDLB_WINDOW_MONKEY_STEPS")
                          : 3000;
    const bool trace = qEnvironmentVariableIsSet("TDLB_WINDOW_MONKEY_TRACE");
    for (unsigned seed : seeds) {
        // Each seed starts from a new window on preferences of its own.
        closeWindow();
        SetUp();
        StandaloneBrowser& window = open();
        window.window()->activateWindow();
        settle();
        WindowMonkey monkey(window, seed, trace);
        const QString before = monkey.check();
        ASSERT_TRUE(before.isEmpty()) << "seed " << seed << " before the first step: " << before.toStdString();
        for (int step = 1; step <= steps; ++step) {
            if (trace)
                std::cerr << "seed " << seed << " step " << step << std::endl;
            const QString done = monkey.step();
            if (trace)
                std::cerr << "  " << done.toStdString() << std::endl;
            const QString fault = monkey.check();
            if (!fault.isEmpty()) {
                ADD_FAILURE() << "seed " << seed << " step " << step << ": " << fault.toStdString()
                              << "\nthe last steps:\n  " << monkey.recentSteps().join(QStringLiteral("\n  ")).toStdString();
                return;
            }
        }
    }
}

// The monkey's findings, each as the one step that went wrong.

// A new icon size lays the page out anew while the mouse rests on a tile:
// the tile under the mouse was freed before the panel that repaints it when
// the mouse leaves (seen by AddressSanitizer).
TEST_F(WindowMonkeyTest, ThePageIsLaidOutAnewWhileTheMouseRestsOnATile)
{
    StandaloneBrowser& window = open();
    window.selectTreeNodeByName("Kinetics/Continuous");
    settle();
    const std::vector<std::string> names = window.libraryPage()->getBlocksDisplayPathNames();
    ASSERT_FALSE(names.empty());
    GuiBlock* tile = window.libraryPage()->getBlockByPathName(names.front());
    QTest::mouseMove(tile->getPanel(), tile->geometry().center());
    settle();
    window.action(BrowserAction::CompactIcons)->trigger();
    window.action(BrowserAction::LargeIcons)->trigger();
    settle();
    EXPECT_EQ(window.libraryPage()->getBlocksDisplayPathNames(), names);
}

// The view scrolls to a row whose branch the expander closed and opens the
// branch on the way; that opening must not make the branch anew, or the row
// it is scrolling to is freed under it.
TEST_F(WindowMonkeyTest, TheViewScrollsToARowInABranchClosedOverIt)
{
    StandaloneBrowser& window = open();
    LibraryTreeView* tree = window.tree();
    window.selectTreeNodeByName("Kinetics/Continuous");
    const int uid = window.getCurrentNodeUID();
    QTreeWidgetItem* row = tree->itemOf(uid);
    ASSERT_NE(row, nullptr);
    tree->collapseItem(row->parent());
    settle();
    // As the view scrolls on its own (its current row changed, a key search):
    // through its virtual scrollTo.
    QAbstractItemView* view = tree;
    view->scrollTo(tree->selectionModel()->currentIndex());
    settle();
    EXPECT_EQ(tree->itemOf(uid), row);
    EXPECT_EQ(tree->currentItem(), row);
    EXPECT_TRUE(row->parent()->isExpanded());
}

} // namespace
} // namespace LibraryBrowser::Testing
