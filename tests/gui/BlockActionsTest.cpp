// The browser's block actions against the host's model windows: add with
// Ctrl+I and from the Edit menu, drags across the two windows, the context
// menus, loading a library before use, double clicks, the host commands and
// the quick insert, typed on a model's drawing.

#include "BrowserWindowFixture.h"

#include "gui/BlockContextMenu.h"
#include "gui/BlockHistory.h"
#include "gui/BrowserHostCommands.h"
#include "gui/GuiSubsystem.h"
#include "gui/QuickInsertPopup.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QFileInfo>
#include <QGraphicsView>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScreen>

#include <algorithm>

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

// A subsystem's tile goes only into a library; then what each tile's menu
// offers, for each kind of tile, page and system in front.
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

    // Each menu as one line: "-- " before an entry after a separator, the
    // accelerator in brackets. Then the window's host commands: what reaches the
    // host, and the warnings muted while they run.
    const auto menu = [](const GuiBlock& block, bool results, bool parent, const OpenSystemState& state) {
        std::string text;
        for (const auto& entry : BlockContextMenu::entriesFor(block, results, parent, state))
            text += (text.empty() ? "" : ", ") + std::string(entry.separatorBefore ? "-- " : "") + entry.label +
                    (entry.accelerator.empty() ? "" : " [" + entry.accelerator + "]");
        return text;
    };
    GuiBlock gain{&window, session().object("arithmetica/Basic Operations/Gain").toBlock(), nullptr};
    GuiSubsystem routing{&window, session().object("switchyard/Routing").toBlock(), nullptr};
    const OpenSystemState untitled{"untitled", ModelType::Model, false};
    const std::string rest = ", Help for the Gain block, -- Block parameters";
    EXPECT_EQ((std::vector<std::string>{menu(gain, false, true, {}), menu(gain, false, false, untitled),
                                        menu(gain, false, false, {"arithmetica", ModelType::Library, true}),
                                        menu(gain, false, false, {"mylib", ModelType::Library, false}),
                                        // On the results page the way back to the library replaces the parent.
                                        menu(gain, true, true, untitled), menu(routing, false, true, {}),
                                        menu(routing, false, false, {}), menu(routing, true, true, {})}),
              (std::vector<std::string>{"Add to a new model [Ctrl+I], Help for the Gain block, Go to parent, -- Block parameters",
                                        "Add to untitled [Ctrl+I]" + rest, "Add to a new model [Ctrl+I]" + rest,
                                        "Add to Library: mylib [Ctrl+I]" + rest,
                                        "Add to untitled [Ctrl+I], Help for the Gain block, Select in library view [Ctrl+R], -- Block parameters",
                                        "Go to parent, -- Open Routing library", "Open Routing library",
                                        "Select in library view [Ctrl+R], -- Open Routing library"}));

    session().host().commandLog().clear();
    using namespace BrowserUtils;
    dropBlock("kinetics/Continuous/Integrator", "untitled", 120, 45);
    openBlockDialog("arithmetica/Basic Operations/Sum", BlockDialogType::Parameters);
    addBlockToModel("", "untitled");
    std::string texts;
    for (const auto& entry : session().host().commandLog().entries())
        texts += entry.text() + "\n";
    EXPECT_TRUE(texts.find("private_td_drop_block") == 0 && texts.find("[120 45]") < texts.find('\n') &&
                texts.find("'params'") > texts.find('\n') && std::count(texts.begin(), texts.end(), '\n') == 2)
        << texts;
    // Warnings are muted while a command runs, and restored after.
    HostEnvironment& environment = Platform::environment();
    for (bool on : {true, false}) {
        environment.setWarningMode(3, on);
        openSystem("no such library", "loadOnly");
        EXPECT_EQ(environment.isWarningModeOn(3), on);
    }
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
    EXPECT_TRUE(blocksOf(model).isEmpty() && !commandsSinceMark().contains("private_td_drop_block"));
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
    EXPECT_EQ(menu.value(0).toStdString(), "Add to " + model);
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
    EXPECT_TRUE(blocksOf(model).size() == 3 && menuEvent().isEmpty() && !menuEvent().isEmpty()) << "shut once only";
}

// A double click acts only on a tile of the current page; a library is
// loaded once, without a window, before its first block is used. (A drop the
// host refuses: HostCommandsTest, through the same command as a drag.)
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
}

const std::string pid = "Kinetics/Continuous/PID Controller";

class QuickInsertTest : public BlockActionsFixture {
protected:
    void SetUp() override
    {
        BlockActionsFixture::SetUp();
        openOn("Kinetics");
        session().host().modelWindows()->setTypingHandler(
            [this](const std::string& system, const QPoint& global, const QString& text) {
                browser().openQuickInsert(system, global, text);
            });
    }
    void TearDown() override
    {
        session().host().modelWindows()->setTypingHandler(nullptr);
        BlockActionsFixture::TearDown();
    }

    QuickInsertPopup* popup()
    {
        QuickInsertPopup* shown = browser().quickInsertPopup();
        return shown && shown->isVisible() ? shown : nullptr;
    }
    QStringList rows()
    {
        QStringList paths;
        if (QuickInsertPopup* shown = popup())
            for (const RankedBlock& row : shown->rows().rows())
                paths.append(QString::fromStdString(row.block.getDisplayPath()));
        return paths;
    }
    void keys(const QString& text)
    {
        QTest::keyClicks(popup()->queryEdit(), text);
        settle();
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(popup()->queryEdit(), which, modifiers);
        settle();
    }
};

// A letter typed on the drawing opens the popup where the mouse is, kept on
// the screen, but not on a locked library's; Enter puts the first match into
// that model with its corner exactly at that point. (The real-display journey
// takes the same road with a person's keys, the favourite and the restart.)
TEST_F(QuickInsertTest, TypingOnAModelInsertsTheBestMatchAtTheMouse)
{
    ASSERT_TRUE(call("open_system", {HostValue::string("kinetics")}).ok);
    ASSERT_TRUE(session().host().systems().current()->locked);
    QTest::keyClick(modelWindow("kinetics")->findChild<QGraphicsView*>(), Qt::Key_P);
    settle();
    EXPECT_EQ(popup(), nullptr);
    const std::string model = newSystem("Model");
    Host::ModelWindow* window = modelWindow(model);
    ASSERT_NE(window, nullptr);
    placeBesideBrowser(window);
    auto* drawing = window->findChild<QGraphicsView*>();
    const QPoint at = window->viewport()->mapToGlobal(QPoint(150, 90));
    QCursor::setPos(at);
    QTest::keyClick(drawing, Qt::Key_P);
    settle();
    ASSERT_NE(popup(), nullptr);
    // At the mouse, moved only as far as keeps it on the screen.
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(popup()->pos(), QPoint(std::min(at.x(), screen.right() + 1 - popup()->width()), at.y()));
    keys("id");
    ASSERT_EQ(rows().value(0).toStdString(), pid);
    key(Qt::Key_Return);
    EXPECT_EQ(popup(), nullptr);
    const auto& blocks = session().host().systems().find(model)->document.blocks;
    ASSERT_EQ(blocksOf(model), QStringList{"PID Controller"});
    EXPECT_EQ(QPointF(blocks[0].position.left, blocks[0].position.top), window->toModel(at));

    // Shortcuts and a lone space keep their meaning on the drawing.
    QTest::keyClick(drawing, Qt::Key_Space);
    QTest::keyClick(drawing, Qt::Key_A, Qt::ControlModifier);
    settle();
    EXPECT_EQ(popup(), nullptr);

    // The context menu's entry after the design's, the recents' bound, and a
    // history whose file can't be written.
    closeWindow();
    openOn("Kinetics/Continuous");
    browser().selectBlockByName(pid);
    settle();
    const auto menuOf = [this](GuiBlock* tile) {
        return menuOpenedBy([&] { browser().internalShowBlockContextMenu(tile, QPoint(100, 100)); });
    };
    const QStringList menu = menuOf(tile(pid));
    ASSERT_EQ(menu.value(menu.size() - 1), "Add to Favorites");
    // The menu was closed without a choice; the entry acts through the history.
    BlockHistory& history = browser().blockHistory();
    const std::string path = tile(pid)->getPath();
    history.setFavourite(path, true);
    EXPECT_EQ(menuOf(tile(pid)).value(menu.size() - 1), "Remove from Favorites");

    for (int i = 0; i < 25; ++i)
        history.noteAdded("lib/Block " + std::to_string(i));
    history.noteAdded("lib/Block 22");
    BrowserPreferences again(preferencesFile());
    const QStringList recents = again.getStringList(PrefKey::LBRecentBlocks);
    EXPECT_EQ((QStringList{recents.value(0), recents.value(1), recents.value(19), recents.value(20)}),
              (QStringList{"lib/Block 22", "lib/Block 24", "lib/Block 5", ""}));
    EXPECT_EQ(again.getStringList(PrefKey::LBFavoriteBlocks), QStringList{QString::fromStdString(path)});

    // A preferences file that can't be written: the history works on for the
    // session and says so.
    const QString blocker = QDir(QFileInfo(preferencesFile()).absolutePath()).filePath("not-a-directory");
    writeFile(blocker.toStdString(), "");
    BrowserPreferences prefs(blocker + "/LibraryBrowser.ini");
    BlockHistory lost(prefs);
    EXPECT_FALSE(lost.noteAdded("lib/Gain") || lost.setFavourite("lib/Gain", true));
    EXPECT_TRUE(lost.isFavourite("lib/Gain") && lost.recents() == QStringList{"lib/Gain"});
    EXPECT_TRUE(lost.saveFailureMessage().contains(blocker)) << lost.saveFailureMessage().toStdString();
    QFile::remove(blocker);
}

// Arrows stop at the ends, Ctrl+Enter inserts and stays, Ctrl+D marks a
// favourite, which the empty query then lists before the recently used
// blocks; Escape closes; a favourite that no longer exists goes quietly.
TEST_F(QuickInsertTest, KeysMoveInsertMarkFavouritesAndClose)
{
    const std::string model = newSystem("Model");
    {
        BrowserPreferences prefs(preferencesFile());
        prefs.setStringList(PrefKey::LBFavoriteBlocks, {"kinetics/No Such Block"});
        ASSERT_TRUE(prefs.save());
    }
    closeWindow();
    openOn("Kinetics");
    browser().openQuickInsert(std::string(), std::nullopt, QString());
    settle();
    ASSERT_NE(popup(), nullptr);
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_TRUE(BrowserPreferences(preferencesFile()).getStringList(PrefKey::LBFavoriteBlocks).isEmpty());

    // Subsystems stand for libraries: a model takes none. "gain" matches
    // three blocks and three subsystems.
    keys("gain");
    EXPECT_EQ(rows() << popup()->footerText(), (QStringList{"Arithmetica/Basic Operations/Gain", "Kinetics/Continuous/Zero-Pole",
                                                           "Kinetics/Continuous/\u00dcbertragungsglied PT1", "3 matching blocks"}));
    popup()->queryEdit()->clear();
    keys("delay");
    ASSERT_GE(rows().size(), 3);
    key(Qt::Key_Up);
    const int top = popup()->rows().current();
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    EXPECT_EQ(std::make_pair(top, popup()->rows().current()), std::make_pair(0, 2));
    const QString third = rows()[2];
    const std::string thirdPath = popup()->rows().currentBlock()->block.getPath();
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_NE(popup(), nullptr);
    EXPECT_EQ(std::make_pair(blocksOf(model).size(), popup()->rows().current()), std::make_pair(qsizetype(1), 2));

    key(Qt::Key_Up);
    const std::string favourite = popup()->rows().currentBlock()->block.getPath();
    key(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(BrowserPreferences(preferencesFile()).getStringList(PrefKey::LBFavoriteBlocks),
              QStringList{QString::fromStdString(favourite)});
    EXPECT_TRUE(popup()->rows().currentBlock()->favourite && popup()->rows().currentBlock()->block.getPath() == favourite);

    // Added last, a block after the other in the tree comes first among the recents.
    popup()->queryEdit()->clear();
    keys("pulse train");
    ASSERT_EQ(rows().value(0), "Kinetics/Test Signals/Pulse Train");
    key(Qt::Key_Return, Qt::ControlModifier);
    popup()->queryEdit()->clear();
    settle();
    ASSERT_EQ(rows().size(), 3);
    EXPECT_EQ(std::make_tuple(popup()->rows().rows()[0].block.getPath(), rows()[1], rows()[2],
                              popup()->rows().rows()[2].block.getPath()),
              std::make_tuple(favourite, QString("Kinetics/Test Signals/Pulse Train"), third, thirdPath));

    key(Qt::Key_Escape);
    EXPECT_TRUE(popup() == nullptr && blocksOf(model).size() == 2);
}

} // namespace
} // namespace LibraryBrowser::Testing
