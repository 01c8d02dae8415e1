// The browser window as a user meets it: start, tree, selection by keyboard
// and mouse, the library page, preferences from the dialog and across a
// restart, docks, close and show, refresh.

#include "BrowserWindowFixture.h"

#include "gui/LibraryTreeView.h"
#include "gui/PreferencesDialog.h"

#include <QComboBox>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QStatusTipEvent>
#include <QTabWidget>
#include <algorithm>

namespace LibraryBrowser::Testing {
namespace {

using BrowserWindowTest = BrowserWindowFixture;

template <typename Widget>
Widget* field(PreferencesDialog& dialog, const char* name)
{
    auto* widget = dialog.findChild<Widget*>(name);
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

void press(PreferencesDialog& dialog, QDialogButtonBox::StandardButton which)
{
    dialog.findChild<QDialogButtonBox*>()->button(which)->click();
}

// The first window: the tree's order, the first product shown, the panels
// docked, and the description closed with its cross staying closed across a
// restart.
TEST_F(BrowserWindowTest, OpensWithTheMainLibraryFirstTheDocksAndTheDescription)
{
    StandaloneBrowser& window = open();
    const std::vector<std::string> names = window.getSortedLibraryNames();
    ASSERT_EQ(window.tree()->topLevelItemCount(), int(names.size()));
    EXPECT_TRUE(names.front() == "Tandril" && std::is_sorted(names.begin() + 1, names.end()));
    for (int i = 0; i < int(names.size()); ++i)
        EXPECT_EQ(window.tree()->topLevelItem(i)->text(0).toStdString(), " " + names[i]);
    EXPECT_TRUE(window.isTreeNodeExpanded(window.getCurrentTreeNode()));
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Showing: " + window.getCurrentTreeNode());
    for (const char* name : {"LBTreeDockWidget", "LBSearchDockWidget", "LBDescDockWidget"})
        EXPECT_NE(window.window()->dockWidgetArea(dock(name)), Qt::NoDockWidgetArea) << name;
    // A command's own tip, or its name where it has none.
    EXPECT_EQ(window.action(BrowserAction::NewModel)->toolTip().toStdString(),
              BrowserUtils::xlatedMessageFromId(MessageId::TDLB_GuiToolBarNewModelToolTip));
    for (BrowserAction plain : {BrowserAction::Close, BrowserAction::Find})
        EXPECT_EQ(window.action(plain)->toolTip(), window.action(plain)->iconText()) << int(plain);

    // The description of the selected block, in the shown dock, its text
    // beside the icon in a wide dock and below it in a narrow one; closed
    // with its cross.
    QDockWidget* descriptions = dock("LBDescDockWidget");
    ASSERT_TRUE(descriptions->isVisible());
    for (const char* name : {"LBDescText", "LBDescIcon"}) {
        auto* label = descriptions->findChild<QLabel*>(name);
        EXPECT_TRUE(label && label->isVisible() && label->window() == window.window()) << name;
    }
    const auto textCell = [&](QSize size) {
        descriptions->widget()->resize(size);
        settle();
        auto* grid = qobject_cast<QGridLayout*>(window.descriptionText()->parentWidget()->layout());
        int row = -1, column = -1, rows = 0, columns = 0;
        grid->getItemPosition(grid->indexOf(window.descriptionText()), &row, &column, &rows, &columns);
        return std::make_pair(row, column);
    };
    EXPECT_TRUE(textCell({150, 400}) == std::make_pair(1, 0) && textCell({600, 90}) == std::make_pair(0, 1));
    window.internalOpenSubsystemInTree("Tandril/Signal Attributes");
    window.selectBlockByName("Tandril/Signal Attributes/Ground");
    EXPECT_TRUE(window.descriptionText()->text().startsWith("<b>Tandril/Signal Attributes/Ground</b>: "));
    descriptions->close();
    EXPECT_FALSE(window.action(BrowserAction::ShowDescription)->isChecked() || window.isBlockDescriptionVisible());
    window.showBlockDescription(true);
    EXPECT_TRUE(window.isBlockDescriptionVisible());
    descriptions->close();
    window.closeBrowser();
    EXPECT_FALSE(BrowserPreferences(preferencesFile()).getBool(PrefKey::LBShowBlockDesc));
    closeWindow();
    EXPECT_FALSE(open().isBlockDescriptionVisible());
    // A window closed while hidden keeps the description as it was shown.
    browser().showBlockDescription(true);
    browser().closeBrowser();
    browser().closeBrowser();
    EXPECT_TRUE(BrowserPreferences(preferencesFile()).getBool(PrefKey::LBShowBlockDesc));
}

// Expanding lists subsystems only; closing moves the selection up; a path
// not yet in the tree is found by opening its way down; the expander closing
// a branch over the current node leaves its nearest ancestor current, and
// opening it makes the branch's items anew. (* opening every branch below:
// the real-display journey.)
TEST_F(BrowserWindowTest, TheCurrentNodeOutlivesItsBranchClosedAndOpenedWithTheExpander)
{
    StandaloneBrowser& window = open();
    LibraryTreeView* tree = window.tree();
    window.expandTreeNodeByName("Tandril");
    for (const std::string& child : window.getChildren("Tandril"))
        EXPECT_EQ(child.find('/', 8), std::string::npos) << child;
    window.selectTreeNodeByName("Tandril/Ports & Subsystems");
    EXPECT_TRUE(window.nodeHasParent());
    window.collapseTreeNodeByName("Tandril");
    EXPECT_EQ(window.getCurrentTreeNode(), "Tandril");

    const std::string nested = "Tandril/Ports & Subsystems/Conditional Container";
    window.selectTreeNodeByName(nested);
    EXPECT_EQ(window.getCurrentTreeNode(), "Tandril");
    window.internalOpenSubsystemInTree(nested);
    EXPECT_TRUE(window.getCurrentTreeNode() == nested && tree->currentItem()->text(0) == "Conditional Container");
    EXPECT_EQ(window.getSelectedBlockName(), nested + "/Condition Logic");
    window.collapseTreeNodeByName("Tandril/Ports & Subsystems");
    EXPECT_EQ(window.getCurrentTreeNode(), "Tandril");
    window.internalOpenSubsystemInTree(nested);
    window.goToParent();
    EXPECT_EQ(window.getCurrentTreeNode(), "Tandril/Ports & Subsystems");

    window.internalOpenSubsystemInTree(nested);
    tree->collapseItem(tree->topLevelItem(0));
    tree->expandItem(tree->topLevelItem(0));
    settle();
    ASSERT_NE(tree->itemOf(window.getCurrentNodeUID()), nullptr);
    EXPECT_EQ(window.getCurrentTreeNode(), "Tandril/Ports & Subsystems");
    EXPECT_EQ(tree->currentItem(), tree->itemOf(window.getCurrentNodeUID()));
    window.selectTreeNodeByName(nested);
    EXPECT_EQ(window.getCurrentTreeNode(), "Tandril/Ports & Subsystems");
    window.internalOpenSubsystemInTree(nested);
    EXPECT_EQ(window.getCurrentTreeNode(), nested);
    ASSERT_NE(tree->itemOf(window.getCurrentNodeUID()), nullptr);

    // Keys in the tree wait for the timer (the move shown when it runs: the
    // real-display journey); a click within the time-out shows its node at once
    // and cancels the move, so that nothing else is shown.
    window.selectTreeNodeByName("Kinetics");
    tree->setFocus();
    const int before = int(statusTexts().size());
    QTest::keyClick(tree, Qt::Key_Down);
    QTest::keyClick(tree, Qt::Key_Down);
    settle(30);
    EXPECT_FALSE(window.isSelectedTreeNodeCurrent()) << "nothing is built before the timer";
    QTreeWidgetItem* last = tree->topLevelItem(tree->topLevelItemCount() - 1);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(last).center());
    EXPECT_EQ(window.getCurrentTreeNode(), last->text(0).trimmed().toStdString());
    settle(400);
    EXPECT_EQ(statusTexts().mid(before).filter("Showing: "), QStringList{"Showing: " + last->text(0).trimmed()});
}

// Wrong values come back corrected and are written as the file always had
// them; the font steps stop at the ends.
TEST_F(BrowserWindowTest, PreferencesComeBackCorrectedAndAreWrittenAsTheFileAlwaysHadThem)
{
    {
        BrowserPreferences stored(preferencesFile());
        stored.setString(PrefKey::LBLayout, "Model");
        stored.setString(PrefKey::LBIconSize, "Large");
        stored.setInt(PrefKey::LBFontSize, 25);
        stored.setColor(PrefKey::LBColorSearchResultsBackgroundBot, QColor(10, 20, 30));
        stored.setColor(PrefKey::LBColorLibraryBlocksBackgroundBot, QColor(200, 0, 0));
        stored.setBool(PrefKey::LBSearch_MatchCase, true);
        stored.setRect(PrefKey::LBGeometry4Window, QRect(50, 70, 700, 500));
        ASSERT_TRUE(stored.save());
    }
    StandaloneBrowser& window = open();
    EXPECT_EQ(std::make_tuple(window.getLayoutType(), window.getIconSize(), window.getFontPointSize(),
                              window.getSearchOptions(), window.action(BrowserAction::GridLayout)->isChecked()),
              std::make_tuple(LayoutType::Grid, IconSize::Large, double(BrowserPreferences::defaultFontSize()),
                              std::vector<bool>{false, true, false}, true));
    EXPECT_EQ(window.getPosition().size(), QSize(700, 500));
    window.setIconSize(IconSize::Small);
    EXPECT_TRUE(window.closeBrowser() && !window.closeBrowser()) << "a second close finds it closed";
    {
        BrowserPreferences stored(preferencesFile());
        EXPECT_EQ(std::make_tuple(stored.getString(PrefKey::LBLayout), stored.getString(PrefKey::LBIconSize),
                                  stored.getInt(PrefKey::LBFontSize), stored.getBool(PrefKey::LBSearch_MatchCase),
                                  stored.contains(PrefKey::LBColorSearchResultsDividerBarFrame),
                                  stored.getColor(PrefKey::LBColorLibraryBlocksBackgroundBot).name(),
                                  stored.getRect(PrefKey::LBGeometry4Window).size(),
                                  stored.getString(PrefKey::LBWindowState).isEmpty()),
                  std::make_tuple(QString("Grid"), QString("Small"), BrowserPreferences::defaultFontSize(), true, false,
                                  QColor(10, 20, 30).name(), QSize(700, 500), false));
    }
    closeWindow();
    BrowserPreferences stored(preferencesFile());
    stored.setInt(PrefKey::LBFontSize, 23);
    ASSERT_TRUE(stored.save());
    StandaloneBrowser& again = open();
    again.increaseFontSize();
    const double top = again.getFontPointSize();
    again.decreaseFontSize();
    EXPECT_EQ(std::make_tuple(top, again.getFontPointSize(), again.getGUIFont()), std::make_tuple(23.0, 21.0, 21));
    for (int i = 0; i < 10; ++i)
        again.decreaseFontSize();
    EXPECT_EQ(again.getFontPointSize(), 9);
}

// Only a different layout or icon size rebuilds the page; then show after
// close, refresh and the preferences dialog on the same window.
TEST_F(BrowserWindowTest, LayoutAndIconSizeRebuildThePageOnlyOnAChange)
{
    StandaloneBrowser& window = open();
    const long long tiles = GuiBlock::instancesCreated();
    window.setIconSize(window.getIconSize());
    window.setLayout(window.getLayoutType());
    EXPECT_EQ(GuiBlock::instancesCreated(), tiles);
    window.action(BrowserAction::ListLayout)->trigger();
    EXPECT_GT(GuiBlock::instancesCreated(), tiles);
    QTest::keyClick(window.window(), Qt::Key_4, Qt::ControlModifier);
    EXPECT_EQ(std::make_tuple(window.getLayoutType(), window.action(BrowserAction::GridLayout)->isChecked(),
                              window.getIconSize(), window.action(BrowserAction::LargeIcons)->isChecked(),
                              window.action(BrowserAction::SmallIcons)->isChecked()),
              std::make_tuple(LayoutType::List, false, IconSize::Large, true, false));

    // Show after close checks the products again without the progress dialog;
    // Refresh regenerates a changed library with it; a library that fails to
    // generate keeps its node, with no dialog, and the window goes on.
    window.window()->close();
    EXPECT_FALSE(window.isOpen());
    const int busy = int(statusTexts().count("Busy"));
    int dialogs = window.progressShownCount();
    window.showBrowser();
    EXPECT_EQ(std::make_tuple(window.isOpen(), int(statusTexts().count("Busy")), window.progressShownCount(),
                              window.getCurrentTreeNode().empty()),
              std::make_tuple(true, busy + 1, dialogs, false));
    window.showBrowser();
    EXPECT_EQ(statusTexts().count("Busy"), busy + 1);

    // Each library file is edited and given a later time, as a user's save.
    const auto edit = [&](const std::string& name, const std::string& after, const std::string& insert, int secs) {
        const std::string file = session().root() + "/toolbox/" + name + "/" + name + ".tdlib.json";
        const QByteArray good = readFile(file);
        std::string text = good.toStdString();
        writeFile(file, QByteArray::fromStdString(text.insert(text.find(after) + after.size(), insert)));
        setModified(file, QDateTime::currentDateTime().addSecs(secs));
        return good;
    };
    edit("kinetics", "\"blocks\": [",
         "{\"name\": \"Fresh Block\", \"type\": \"Block\", \"position\": [0, 0, 40, 40],"
         " \"icon\": {\"shape\": \"rectangle\", \"inputs\": 1, \"outputs\": 1}},",
         60);
    window.action(BrowserAction::Refresh)->trigger();
    EXPECT_TRUE(window.progressShownCount() > dialogs && !window.isProgressShown() && window.isEnabled());
    window.selectTreeNodeByName("Kinetics");
    EXPECT_TRUE(window.libraryPage()->getBlockByPathName("Kinetics/Fresh Block"));

    const QByteArray switchyard = edit("switchyard", "\"shape\": \"", "no such ", 120);
    window.refreshLibraryBrowser();
    window.selectTreeNodeByName("Switchyard");
    EXPECT_EQ(std::make_tuple(window.isEnabled(), window.getCurrentTreeNode(),
                              window.window()->findChildren<QMessageBox*>("LBWarningDialog").size()),
              std::make_tuple(true, std::string("Switchyard"), qsizetype(0)));
    const std::string file = session().root() + "/toolbox/switchyard/switchyard.tdlib.json";
    writeFile(file, switchyard);
    setModified(file, QDateTime::currentDateTime().addSecs(240));

    // The preferences dialog: what a person sets there reaches the open
    // window at once and the preferences file (read back at a restart:
    // PreferencesComeBackCorrected...).
    window.setLayout(LayoutType::Grid);
    window.setIconSize(IconSize::Small);
    settle();
    PreferencesDialog& dialog = *PreferencesDialog::open(window);
    EXPECT_TRUE(dialog.isVisible() && field<QComboBox>(dialog, "layout")->currentText() == "Grid");
    EXPECT_EQ(field<QSpinBox>(dialog, "fontSize")->value(), int(window.getFontPointSize()));

    const QColor sand(230, 215, 170);
    field<QSpinBox>(dialog, "fontSize")->setValue(14);
    field<QComboBox>(dialog, "layout")->setCurrentText("List");
    field<QComboBox>(dialog, "iconSize")->setCurrentText("Large");
    field<QSpinBox>(dialog, "treeSelectionTimeout")->setValue(400);
    dialog.chooseColor(PrefKey::LBColorLibraryBlocksBackgroundTop, sand);
    EXPECT_EQ(window.getLayoutType(), LayoutType::Grid) << "nothing changes before Apply";
    press(dialog, QDialogButtonBox::Apply);
    settle();

    EXPECT_EQ(std::make_tuple(window.getFontPointSize(), window.window()->font().pointSize(), window.getLayoutType(),
                              window.getIconSize(), window.libraryPage()->getBackgroundColor()),
              std::make_tuple(14.0, 14, LayoutType::List, IconSize::Large, sand));
    const BrowserPreferences stored(preferencesFile());
    EXPECT_EQ(std::make_tuple(stored.getInt(PrefKey::LBFontSize), stored.getString(PrefKey::LBLayout),
                              stored.getString(PrefKey::LBIconSize), stored.getInt(PrefKey::LBTreeSelectionTimeout),
                              stored.getColor(PrefKey::LBColorLibraryBlocksBackgroundTop).rgb()),
              std::make_tuple(14, QString("List"), QString("Large"), 400, sand.rgb()));

    // Restore Defaults fills the fields only; Cancel leaves the window as it is.
    press(dialog, QDialogButtonBox::RestoreDefaults);
    EXPECT_EQ(field<QComboBox>(dialog, "layout")->currentText(), "Grid");
    EXPECT_EQ(field<QSpinBox>(dialog, "treeSelectionTimeout")->value(), 111);
    press(dialog, QDialogButtonBox::Cancel);
    settle();
    EXPECT_EQ(window.getLayoutType(), LayoutType::List);
}

TEST_F(BrowserWindowTest, TheKeyboardWorksThePageAndTheWindowKeepsWhatItShows)
{
    StandaloneBrowser& window = open();
    window.window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.window()));
    QScrollArea* page = window.libraryPage()->getScrollView();

    // Tab from the tree reaches the page, not the tab bar; the first key acts.
    window.tree()->setFocus();
    QTest::keyClick(window.tree(), Qt::Key_Tab);
    ASSERT_TRUE(QApplication::focusWidget() == page && window.libraryPage()->hasFocusMark());
    const std::vector<std::string> tiles = window.getLibraryPageBlockNames();
    ASSERT_GT(tiles.size(), 1u);
    QTest::keyClick(page, Qt::Key_Right);
    EXPECT_EQ(window.getSelectedBlockName(), tiles[1]);
    // Return on a subsystem goes into it, as a double click does.
    QTest::keyClick(page, Qt::Key_Return);
    EXPECT_EQ(window.getCurrentTreeNode(), tiles[1]);
    const QString status = QString::fromStdString("Showing: " + tiles[1]);
    EXPECT_EQ(window.window()->statusBar()->currentMessage(), status);

    // A menu entry without a tip of its own leaves the status text.
    QStatusTipEvent tip{QString()};
    QApplication::sendEvent(window.window(), &tip);
    EXPECT_EQ(window.window()->statusBar()->currentMessage(), status);

    // Edit > Find names the text with its ampersand doubled.
    window.searchComboBox()->setEditText("R&D");
    auto* edit = qobject_cast<QMenu*>(window.action(BrowserAction::Find)->associatedObjects().value(0));
    ASSERT_NE(edit, nullptr);
    emit edit->aboutToShow();
    EXPECT_EQ(window.action(BrowserAction::Find)->text(), "&Find 'R&&D'");

    // A window made small squeezes the tree only until it grows again, and
    // the width the user gave is what is saved.
    QDockWidget* tree = dock("LBTreeDockWidget");
    const int width = tree->width();
    for (int wide : {320, 900, 320}) {
        window.window()->resize(wide, window.window()->height());
        settle(50);
        EXPECT_EQ(tree->width() < width, wide == 320) << wide;
    }
    window.closeBrowser();
    EXPECT_EQ(BrowserPreferences(preferencesFile()).getInt(PrefKey::LBTreeDockWidth), width);
}

using LibraryBlocksPageTest = BrowserWindowFixture;

const std::string ports = "Tandril/Ports & Subsystems";
const std::string signalAttributes = "Tandril/Signal Attributes";

// A node's page: its label and first tile selected, subsystems first;
// initials cycle; the menu keys open the selected tile's menu; the mouse
// selects and a double click opens a subsystem in the tree, but not on a page
// that isn't the window's current one. Then seven tiles in three columns:
// each key lands where its move goes; a resize reflows the same tiles and keeps the selection; another
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
