// The browser's block actions against the host's model windows: add with
// Ctrl+I and from the Edit menu, drags across the two windows, the context
// menu after a right drag, loading a library before use, and double clicks.

#include "BlockActionsFixture.h"

#include "ModelWindows.h"
#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QTest>

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

TEST_F(BlockActionsTest, CtrlIWithNoOpenSystemMakesANewModelAndThenAddsToIt)
{
    StandaloneBrowser& window = openOn(continuous);
    window.selectBlockByName(integrator);
    ASSERT_TRUE(shownSystems(session()).isEmpty());

    pressCtrlI(window);
    ASSERT_EQ(shownSystems(session()).size(), 1);
    const std::string model = session().host().systems().current()->name;
    EXPECT_EQ(session().host().systems().current()->type, Host::SystemType::Model);
    EXPECT_EQ(blocksOf(model), QStringList{"Integrator"});
    ASSERT_NE(modelWindow(model), nullptr);
    EXPECT_EQ(modelWindow(model)->blockNames(), QStringList{"Integrator"});

    // The new model is in front and unlocked now: the next add goes there.
    pressCtrlI(window);
    EXPECT_EQ(shownSystems(session()).size(), 1);
    EXPECT_EQ(modelWindow(model)->blockNames(), (QStringList{"Integrator", "Integrator1"}));
}

TEST_F(BlockActionsTest, TheEditMenuNamesTheTargetOfTheAddBeforeItOpens)
{
    StandaloneBrowser& window = openOn(continuous);
    window.selectBlockByName(integrator);
    EXPECT_EQ(editMenuAddEntry().label, "Add Selected &Block to a New Model");

    // A locked library in front is no target: a new model is offered, and
    // taken, and the library is left as it was.
    ASSERT_TRUE(call("open_system", {HostValue::string("kinetics")}).ok);
    ASSERT_TRUE(session().host().systems().current()->locked);
    const MenuEntry locked = editMenuAddEntry();
    EXPECT_EQ(locked.label, "Add Selected &Block to a New Model");
    EXPECT_TRUE(locked.enabled);
    const QStringList library = blocksOf("kinetics");
    pressCtrlI(window);
    EXPECT_EQ(blocksOf("kinetics"), library);
    const std::string model = session().host().systems().current()->name;
    EXPECT_NE(model, "kinetics");
    EXPECT_EQ(blocksOf(model), QStringList{"Integrator"});

    // With the new model in front the menu names it.
    EXPECT_EQ(editMenuAddEntry().label.toStdString(), "Add Selected &Block to " + model);
}

TEST_F(BlockActionsTest, ASubsystemTileGoesOnlyIntoALibrary)
{
    StandaloneBrowser& window = openOn("Kinetics");
    window.selectBlockByName(continuous);
    ASSERT_EQ(window.getSelectedBlockName(), continuous);

    const std::string model = newSystem("Model");
    const MenuEntry intoModel = editMenuAddEntry();
    EXPECT_FALSE(intoModel.enabled);
    // Closed, the menu gives its accelerator back, and Ctrl+I still refuses.
    EXPECT_TRUE(window.action(BrowserAction::AddBlock)->isEnabled());
    pressCtrlI(window);
    EXPECT_TRUE(blocksOf(model).isEmpty());

    const std::string library = newSystem("Library");
    const MenuEntry intoLibrary = editMenuAddEntry();
    EXPECT_TRUE(intoLibrary.enabled);
    EXPECT_EQ(intoLibrary.label.toStdString(), "Add Selected &Block to Library: " + library);
    pressCtrlI(window);
    EXPECT_EQ(blocksOf(library), QStringList{"Continuous"});
    EXPECT_TRUE(blocksOf(model).isEmpty());

    // A plain block has no such condition.
    window.internalOpenSubsystemInTree(continuous);
    settle();
    window.selectBlockByName(derivative);
    EXPECT_TRUE(editMenuAddEntry().enabled);
}

TEST_F(BlockActionsTest, ADragReleasedOverTheBrowserDropsNothingEvenOverAModel)
{
    StandaloneBrowser& window = openOn(continuous);
    const std::string model = newSystem("Model");
    // The model's window lies partly over the browser: the host names it at
    // the point of release, but the point is the browser's own.
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

    // Released over no window at all, the drag drops nothing either.
    placeBesideBrowser(target);
    drag(tile(integrator), Qt::LeftButton, target->frameGeometry().bottomRight() + QPoint(60, 60));
    EXPECT_TRUE(blocksOf(model).isEmpty());
}

// Left and right drags onto a model add the block where it was dropped; the
// right drag opens no menu, the next right click does.
TEST_F(BlockActionsTest, DragsOntoAModelAddTheBlockWhereDroppedAndARightDragOpensNoMenu)
{
    openOn(continuous);
    const std::string model = newSystem("Model");
    Host::ModelWindow* target = modelWindow(model);
    placeBesideBrowser(target);
    GuiBlock* integratorTile = tile(integrator);

    drag(integratorTile, Qt::LeftButton, target->viewport()->mapToGlobal(QPoint(150, 90)));
    const QStringList duringDrag =
        menuOpenedBy([&] { drag(tile(derivative), Qt::RightButton, target->viewport()->mapToGlobal(QPoint(40, 200))); });
    EXPECT_TRUE(duringDrag.isEmpty()) << duringDrag.join(", ").toStdString();
    EXPECT_EQ(target->blockNames(), (QStringList{"Integrator", "Derivative"}));
    const auto& blocks = session().host().systems().find(model)->document.blocks;
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(QPointF(blocks[0].position.left, blocks[0].position.top), QPointF(150, 90));
    EXPECT_EQ(QPointF(blocks[1].position.left, blocks[1].position.top), QPointF(40, 200));

    const QStringList menu = rightClick(integratorTile);
    ASSERT_FALSE(menu.isEmpty());
    EXPECT_EQ(menu.front().toStdString(), "Add to " + model);
    // Closing the menu without a choice adds nothing.
    EXPECT_EQ(blocksOf(model).size(), 2);
}

// Where the platform sends the menu's event after the release, the right
// drag's flag is what keeps the menu shut, once.
TEST_F(BlockActionsTest, AMenuEventAfterARightDragIsSpentOnTheDrag)
{
    openOn(continuous);
    const std::string model = newSystem("Model");
    Host::ModelWindow* target = modelWindow(model);
    placeBesideBrowser(target);
    GuiBlock* integratorTile = tile(integrator);
    QWidget* panel = integratorTile->getPanel();
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
    EXPECT_EQ(blocksOf(model), QStringList{"Integrator"});
    EXPECT_TRUE(menuEvent().isEmpty());
    EXPECT_FALSE(menuEvent().isEmpty());
}

// A host command that fails leaves no trace in the browser.
TEST_F(BlockActionsTest, ADropThatTheHostRefusesChangesNothing)
{
    StandaloneBrowser& window = openOn(continuous);
    ASSERT_TRUE(call("open_system", {HostValue::string("switchyard")}).ok);
    Host::ModelWindow* library = modelWindow("switchyard");
    placeBesideBrowser(library);
    const QStringList before = blocksOf("switchyard");
    const std::string status = window.getCurrentStatusBarMessage();

    mark();
    drag(tile(integrator), Qt::LeftButton, library->viewport()->mapToGlobal(QPoint(300, 300)));
    EXPECT_TRUE(commandsSinceMark().contains("private_td_drop_block"));
    EXPECT_EQ(blocksOf("switchyard"), before);
    EXPECT_EQ(window.getCurrentStatusBarMessage(), status);
    EXPECT_EQ(session().host().modelWindows()->openDialogCount(), 0);
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(BlockActionsTest, ALibraryIsLoadedOnceBeforeItsFirstBlockIsUsed)
{
    StandaloneBrowser& window = openOn(continuous);
    window.selectBlockByName(integrator);
    ASSERT_FALSE(session().host().systems().isLoaded("kinetics"));

    mark();
    window.showSelectedBlockParams();
    EXPECT_TRUE(statusSinceMark().contains(QString::fromStdString("Loading: " + continuous)))
        << statusSinceMark().join(" | ").toStdString();
    EXPECT_TRUE(session().host().systems().isLoaded("kinetics"));
    // Loaded only: no window of the library comes up.
    EXPECT_EQ(modelWindow("kinetics"), nullptr);
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Showing: " + continuous);

    mark();
    window.showSelectedBlockHelp();
    window.doubleClickBlock(derivative);
    for (const QString& text : statusSinceMark())
        EXPECT_FALSE(text.startsWith("Loading")) << text.toStdString();
    EXPECT_EQ(commandsSinceMark().count("open_system"), 0);
    EXPECT_EQ(session().host().modelWindows()->openDialogCount(), 3);
}

TEST_F(BlockActionsTest, DoubleClickBlockActsOnlyOnATileOfTheCurrentPage)
{
    StandaloneBrowser& window = openOn(continuous);
    mark();
    window.doubleClickBlock(continuous + "/No Such Block");
    window.doubleClickBlock("Tandril/Annotations/Note");
    EXPECT_TRUE(commandsSinceMark().isEmpty()) << commandsSinceMark().join(", ").toStdString();
    EXPECT_EQ(window.getCurrentTreeNode(), continuous);
    EXPECT_EQ(session().host().modelWindows()->openDialogCount(), 0);
    // (A block's dialog: the loading test; a subsystem entered: the window's
    // Return on a subsystem tile, which takes the same way.)
}

} // namespace
} // namespace LibraryBrowser::Testing
