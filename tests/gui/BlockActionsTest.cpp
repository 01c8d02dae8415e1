// The browser's block actions against the host's model windows: add with
// Ctrl+I and from the Edit menu, drags across the two windows and the cursor
// they leave, the context menu after a right drag, loading a library before
// use, and double clicks.

#include "BlockActionsFixture.h"

#include "ModelWindows.h"
#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QRegularExpression>
#include <QTest>
#include <QWindow>

namespace LibraryBrowser::Testing {
namespace {

using BlockActionsTest = BlockActionsFixture;

// Display paths, as the window names its nodes and tiles.
const std::string continuous = "Kinetics/Continuous";
const std::string integrator = continuous + "/Integrator";
const std::string derivative = continuous + "/Derivative";

// The systems with a window; a library only loaded has none.
QStringList shownSystems(ExampleRootSession& session)
{
    QStringList names;
    for (const Host::OpenSystem& system : session.host().systems().systems())
        if (system.shown)
            names.append(QString::fromStdString(system.name));
    return names;
}

void pressCtrlI(StandaloneBrowser& browser)
{
    QApplication::setActiveWindow(browser.window());
    QTest::keyClick(browser.window(), Qt::Key_I, Qt::ControlModifier);
    QApplication::processEvents();
}

// Ctrl+I with no open system makes a new model and then adds to it; the
// Edit menu names the target before it opens; a locked library in front is
// no target: a new model is offered, and taken, and the library left alone.
TEST_F(BlockActionsTest, CtrlIWithNoOpenSystemMakesANewModelAndThenAddsToIt)
{
    StandaloneBrowser& window = openOn(continuous);
    window.selectBlockByName(integrator);
    ASSERT_TRUE(shownSystems(session()).isEmpty());
    EXPECT_EQ(editMenuAddEntry().label, "Add Selected &Block to a New Model");
    pressCtrlI(window);
    ASSERT_EQ(shownSystems(session()).size(), 1);
    const std::string model = session().host().systems().current()->name;
    EXPECT_EQ(session().host().systems().current()->type, Host::SystemType::Model);
    EXPECT_TRUE(modelWindow(model) && modelWindow(model)->blockNames() == QStringList{"Integrator"});
    // The new model is in front and unlocked now: the next add goes there.
    pressCtrlI(window);
    EXPECT_EQ(std::make_pair(shownSystems(session()).size(), blocksOf(model)),
              std::make_pair(qsizetype(1), QStringList{"Integrator", "Integrator1"}));
    EXPECT_EQ(editMenuAddEntry().label.toStdString(), "Add Selected &Block to " + model);

    ASSERT_TRUE(call("open_system", {HostValue::string("kinetics")}).ok);
    ASSERT_TRUE(session().host().systems().current()->locked);
    EXPECT_EQ(std::make_pair(editMenuAddEntry().label, editMenuAddEntry().enabled),
              std::make_pair(QString("Add Selected &Block to a New Model"), true));
    const QStringList library = blocksOf("kinetics");
    pressCtrlI(window);
    EXPECT_EQ(blocksOf("kinetics"), library);
    const std::string second = session().host().systems().current()->name;
    EXPECT_TRUE(second != "kinetics" && second != model && blocksOf(second) == QStringList{"Integrator"}) << second;
}

TEST_F(BlockActionsTest, ASubsystemTileGoesOnlyIntoALibrary)
{
    StandaloneBrowser& window = openOn("Kinetics");
    window.selectBlockByName(continuous);
    const std::string model = newSystem("Model");
    EXPECT_FALSE(editMenuAddEntry().enabled);
    // Closed, the menu gives its accelerator back, and Ctrl+I still refuses.
    EXPECT_TRUE(window.action(BrowserAction::AddBlock)->isEnabled());
    pressCtrlI(window);
    EXPECT_TRUE(blocksOf(model).isEmpty());

    const std::string library = newSystem("Library");
    const MenuEntry intoLibrary = editMenuAddEntry();
    EXPECT_EQ(std::make_pair(intoLibrary.enabled, intoLibrary.label.toStdString()),
              std::make_pair(true, "Add Selected &Block to Library: " + library));
    pressCtrlI(window);
    EXPECT_EQ(std::make_pair(blocksOf(library), blocksOf(model)), std::make_pair(QStringList{"Continuous"}, QStringList()));
    // A plain block has no such condition.
    window.internalOpenSubsystemInTree(continuous);
    settle();
    window.selectBlockByName(derivative);
    EXPECT_TRUE(editMenuAddEntry().enabled);
}

// A drag released over the browser drops nothing, even where a model's
// window lies under the point, nor one released over no window; left and
// right drags onto a model add the block where dropped and give the page
// its cursor back; the right drag opens no menu, the next right click does,
// and where the platform sends the menu's event after the release, the
// right drag's flag keeps the menu shut, once.
TEST_F(BlockActionsTest, DragsOntoAModelAddTheBlockWhereDroppedAndARightDragOpensNoMenu)
{
    StandaloneBrowser& window = openOn(continuous);
    const std::string model = newSystem("Model");
    Host::ModelWindow* target = modelWindow(model);
    const QRect browserRect = window.getPosition();
    target->move(browserRect.center());
    settle();
    const QPoint release = browserRect.center() + QPoint(40, 40);
    ASSERT_TRUE(browserRect.contains(release));
    QCursor::setPos(release);
    ASSERT_EQ(call("private_td_sys_name_under_mouse", {}, 1).outputs.front().toString(), model);
    mark();
    drag(tile(integrator), Qt::LeftButton, release);
    EXPECT_TRUE(blocksOf(model).isEmpty());
    EXPECT_FALSE(commandsSinceMark().contains("private_td_drop_block"));
    placeBesideBrowser(target);
    drag(tile(integrator), Qt::LeftButton, target->frameGeometry().bottomRight() + QPoint(60, 60));
    EXPECT_TRUE(blocksOf(model).isEmpty());

    GuiBlock* integratorTile = tile(integrator);
    BlocksPanel* panel = integratorTile->getPanel();
    drag(integratorTile, Qt::LeftButton, target->viewport()->mapToGlobal(QPoint(150, 90)));
    EXPECT_FALSE(panel->testAttribute(Qt::WA_SetCursor)) << panel->cursor().shape();
    const QStringList duringDrag =
        menuOpenedBy([&] { drag(tile(derivative), Qt::RightButton, target->viewport()->mapToGlobal(QPoint(40, 200))); });
    EXPECT_TRUE(duringDrag.isEmpty()) << duringDrag.join(", ").toStdString();
    EXPECT_EQ(target->blockNames(), (QStringList{"Integrator", "Derivative"}));
    const auto& blocks = session().host().systems().find(model)->document.blocks;
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(QPointF(blocks[0].position.left, blocks[0].position.top), QPointF(150, 90));
    EXPECT_EQ(QPointF(blocks[1].position.left, blocks[1].position.top), QPointF(40, 200));
    // A right click through the window system opens the menu.
    QWindow* handle = window.window()->windowHandle();
    const QPoint at = integratorTile->getPanel()->mapTo(window.window(), integratorTile->geometry().center());
    QCursor::setPos(handle->mapToGlobal(at));
    const QStringList menu = menuOpenedBy([&] { QTest::mouseClick(handle, Qt::RightButton, {}, at); });
    ASSERT_FALSE(menu.isEmpty());
    EXPECT_EQ(menu.front().toStdString(), "Add to " + model);
    EXPECT_EQ(blocksOf(model).size(), 2) << "a menu closed without a choice adds nothing";

    const QPoint start = integratorTile->geometry().center();
    const QPoint end = panel->mapFromGlobal(target->viewport()->mapToGlobal(QPoint(60, 70)));
    QCursor::setPos(panel->mapToGlobal(end));
    const auto menuEvent = [&] {
        return menuOpenedBy([&] {
            QContextMenuEvent event(QContextMenuEvent::Mouse, end, panel->mapToGlobal(end));
            QApplication::sendEvent(panel, &event);
        });
    };
    QTest::mousePress(panel, Qt::RightButton, {}, start);
    QTest::mouseMove(panel, end);
    QTest::mouseRelease(panel, Qt::RightButton, {}, end);
    EXPECT_EQ(blocksOf(model).size(), 3);
    EXPECT_TRUE(menuEvent().isEmpty());
    EXPECT_FALSE(menuEvent().isEmpty());
}

// A double click acts only on a tile of the current page; a library is
// loaded once, without a window, before its first block is used; a drop the
// host refuses leaves no trace in the browser.
TEST_F(BlockActionsTest, ALibraryIsLoadedOnceBeforeItsFirstBlockIsUsed)
{
    StandaloneBrowser& window = openOn(continuous);
    mark();
    window.doubleClickBlock(continuous + "/No Such Block");
    window.doubleClickBlock("Tandril/Annotations/Note");
    EXPECT_EQ(std::make_tuple(commandsSinceMark(), window.getCurrentTreeNode()), std::make_tuple(QStringList(), continuous));

    window.selectBlockByName(integrator);
    ASSERT_FALSE(session().host().systems().isLoaded("kinetics"));
    mark();
    window.showSelectedBlockParams();
    EXPECT_TRUE(statusSinceMark().contains(QString::fromStdString("Loading: " + continuous)))
        << statusSinceMark().join(" | ").toStdString();
    EXPECT_TRUE(session().host().systems().isLoaded("kinetics") && !modelWindow("kinetics"));
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Showing: " + continuous);
    mark();
    window.showSelectedBlockHelp();
    window.doubleClickBlock(derivative);
    EXPECT_TRUE(statusSinceMark().filter(QRegularExpression("^Loading")).isEmpty() && !commandsSinceMark().contains("open_system"));
    EXPECT_EQ(session().host().modelWindows()->openDialogCount(), 3);
    call("private_td_close_block_dialogs");
    ASSERT_TRUE(call("open_system", {HostValue::string("switchyard")}).ok);
    Host::ModelWindow* library = modelWindow("switchyard");
    placeBesideBrowser(library);
    const QStringList before = blocksOf("switchyard");
    const std::string status = window.getCurrentStatusBarMessage();
    mark();
    drag(tile(integrator), Qt::LeftButton, library->viewport()->mapToGlobal(QPoint(300, 300)));
    EXPECT_TRUE(commandsSinceMark().contains("private_td_drop_block"));
    EXPECT_EQ(std::make_tuple(blocksOf("switchyard"), window.getCurrentStatusBarMessage(), window.isEnabled(),
                              session().host().modelWindows()->openDialogCount()),
              std::make_tuple(before, status, true, 0));
}

} // namespace
} // namespace LibraryBrowser::Testing
