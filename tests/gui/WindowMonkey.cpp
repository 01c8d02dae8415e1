#include "WindowMonkey.h"

#include "gui/BlocksPage.h"
#include "gui/BlocksPanel.h"
#include "gui/BrowserActionTable.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/LibraryTreeView.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/StandaloneBrowser.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <iostream>
#include <iterator>

namespace LibraryBrowser::Testing {

namespace {

constexpr std::size_t recentStepCount = 20;

struct KeyChoice {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* name;
};

// What a keyboard user of the window presses; Ctrl+O is left out because it
// opens the host's file dialog, which waits for an answer nobody gives.
const std::vector<KeyChoice>& keyChoices()
{
    static const std::vector<KeyChoice> keys = {
        {Qt::Key_Left, Qt::NoModifier, "Left"},
        {Qt::Key_Right, Qt::NoModifier, "Right"},
        {Qt::Key_Up, Qt::NoModifier, "Up"},
        {Qt::Key_Down, Qt::NoModifier, "Down"},
        {Qt::Key_Home, Qt::NoModifier, "Home"},
        {Qt::Key_End, Qt::NoModifier, "End"},
        {Qt::Key_Return, Qt::NoModifier, "Return"},
        {Qt::Key_Escape, Qt::NoModifier, "Escape"},
        {Qt::Key_Tab, Qt::NoModifier, "Tab"},
        {Qt::Key_Backtab, Qt::ShiftModifier, "Shift+Tab"},
        {Qt::Key_A, Qt::NoModifier, "a"},
        {Qt::Key_D, Qt::NoModifier, "d"},
        {Qt::Key_G, Qt::NoModifier, "g"},
        {Qt::Key_I, Qt::NoModifier, "i"},
        {Qt::Key_S, Qt::NoModifier, "s"},
        {Qt::Key_Menu, Qt::NoModifier, "Menu"},
        {Qt::Key_Asterisk, Qt::NoModifier, "*"},
        {Qt::Key_F, Qt::ControlModifier, "Ctrl+F"},
        {Qt::Key_L, Qt::ControlModifier, "Ctrl+L"},
        {Qt::Key_G, Qt::ControlModifier, "Ctrl+G"},
        {Qt::Key_1, Qt::ControlModifier, "Ctrl+1"},
        {Qt::Key_2, Qt::ControlModifier, "Ctrl+2"},
        {Qt::Key_3, Qt::ControlModifier, "Ctrl+3"},
        {Qt::Key_4, Qt::ControlModifier, "Ctrl+4"},
        {Qt::Key_Plus, Qt::ControlModifier, "Ctrl++"},
        {Qt::Key_Minus, Qt::ControlModifier, "Ctrl+-"},
    };
    return keys;
}

// Menu actions the monkey leaves alone: Open and Preferences open the host's
// modal dialogs, which wait for an answer nobody gives.
bool isLeftOut(BrowserAction id) { return id == BrowserAction::Open || id == BrowserAction::Preferences; }

// What a user types into the search box: names of the example root, parts
// of them, patterns that are no valid expression, nothing, and a long text.
const QStringList& searchTexts()
{
    static const QStringList texts = {QStringLiteral("Integrator"), QStringLiteral("gain"), QStringLiteral("Sum"),
                                      QStringLiteral("in"),         QStringLiteral("["),    QStringLiteral("*"),
                                      QStringLiteral(""),           QStringLiteral(" "),    QStringLiteral("zzzz"),
                                      QString(300, QLatin1Char('x'))};
    return texts;
}

QString describe(const QString& what, const std::string& target)
{
    return what + QStringLiteral(" \"") + QString::fromStdString(target) + QLatin1Char('"');
}

} // namespace

WindowMonkey::WindowMonkey(StandaloneBrowser& browser, unsigned seed, bool trace)
    : m_browser(browser), m_random(seed), m_trace(trace)
{
}

const std::vector<WindowMonkey::Step>& WindowMonkey::steps()
{
    static const std::vector<Step> table = {
        {"key", 30, &WindowMonkey::pressKey},
        {"click tile", 10, &WindowMonkey::clickTile},
        {"double click tile", 4, &WindowMonkey::doubleClickTile},
        {"drag tile", 3, &WindowMonkey::dragTile},
        {"click tree row", 10, &WindowMonkey::clickTreeRowOnce},
        {"double click tree row", 3, &WindowMonkey::doubleClickTreeRow},
        {"toggle tree node", 8, &WindowMonkey::toggleTreeNode},
        {"menu action", 12, &WindowMonkey::triggerMenuAction},
        {"search", 6, &WindowMonkey::search},
        {"refresh", 1, &WindowMonkey::refresh},
        {"hide and show", 2, &WindowMonkey::hideAndShow},
    };
    return table;
}

QString WindowMonkey::step()
{
    int total = 0;
    for (const Step& step : steps())
        total += step.weight;
    int pick = below(total);
    const Step* chosen = &steps().front();
    for (const Step& step : steps()) {
        if (pick < step.weight) {
            chosen = &step;
            break;
        }
        pick -= step.weight;
    }
    // The description is kept before the step runs, so that a crash's report
    // would name it; the step completes it.
    m_recent.push_back(QString::fromLatin1(chosen->name));
    if (m_trace)
        std::cerr << "  " << chosen->name << " ..." << std::endl;
    if (m_recent.size() > recentStepCount)
        m_recent.pop_front();
    // Context menus wait in a loop of their own; the user closes them again
    // without a choice, as menus and dialogs left open after the step.
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [] { closePopupsAndDialogs(); });
    closer.start(5);
    const QString done = (this->*chosen->run)();
    m_recent.back() = done;
    settle();
    closer.stop();
    closePopupsAndDialogs();
    settle();
    return done;
}

QString WindowMonkey::check() const
{
    if (!m_browser.window())
        return QStringLiteral("the window is gone");
    if (m_browser.isSearching())
        return QStringLiteral("a search is still running after its step");
    if (!m_browser.isEnabled() || !m_browser.window()->isEnabled())
        return QStringLiteral("the window is disabled");
    const int current = m_browser.getCurrentNodeUID();
    if (!m_browser.tree()->itemOf(current))
        return QStringLiteral("the current node %1 is not in the tree").arg(current);
    if (m_browser.getCurrentTreeNode().empty())
        return QStringLiteral("the current node %1 has no path").arg(current);
    if (m_browser.tree()->topLevelItemCount() == 0)
        return QStringLiteral("the tree shows no library");
    for (const BlocksPage* page :
         {static_cast<const BlocksPage*>(m_browser.libraryPage()), static_cast<const BlocksPage*>(m_browser.resultsPage())}) {
        const GuiBlock* selected = page->getSelectedBlock();
        if (!selected)
            continue;
        if (selected->getPage() != page)
            return QStringLiteral("the selected tile belongs to another page");
        const std::vector<std::string> names = page->getBlocksDisplayPathNames();
        if (std::find(names.begin(), names.end(), selected->getDisplayPath()) == names.end())
            return describe(QStringLiteral("the selected tile is not on its page:"), selected->getDisplayPath());
    }
    if (m_searched && m_browser.getCurrentStatusBarMessage().empty())
        return QStringLiteral("the status bar is empty after a search");
    return {};
}

QString WindowMonkey::pressKey()
{
    const KeyChoice& choice = keyChoices()[static_cast<std::size_t>(below(static_cast<int>(keyChoices().size())))];
    QWidget* target = QApplication::focusWidget();
    if (!target || target->window() != m_browser.window())
        target = m_browser.window();
    const QString name = QString::fromLatin1(choice.name) + QStringLiteral(" to ") +
                         (target->objectName().isEmpty() ? QString::fromLatin1(target->metaObject()->className())
                                                         : target->objectName());
    QTest::keyClick(target, choice.key, choice.modifiers);
    return QStringLiteral("key ") + name;
}

QString WindowMonkey::clickTile() { return clickOnTile(false); }

QString WindowMonkey::doubleClickTile() { return clickOnTile(true); }

QString WindowMonkey::clickOnTile(bool twice)
{
    const QString what = twice ? QStringLiteral("double click") : QStringLiteral("click");
    GuiBlock* tile = randomTile();
    if (!tile)
        return what + QStringLiteral(" on an empty page");
    const std::string path = tile->getDisplayPath();
    if (twice)
        QTest::mouseDClick(tile->getPanel(), Qt::LeftButton, {}, tile->geometry().center());
    else
        QTest::mouseClick(tile->getPanel(), Qt::LeftButton, {}, tile->geometry().center());
    return describe(what + QStringLiteral(" tile"), path);
}

QString WindowMonkey::dragTile()
{
    GuiBlock* tile = randomTile();
    if (!tile)
        return QStringLiteral("drag on an empty page");
    const std::string path = tile->getDisplayPath();
    // As the window system delivers a drag: through the window, the cursor
    // following, released somewhere on or off the window.
    QWindow* window = handle();
    const QPoint start = tileCentreInWindow(tile);
    const QPoint end(below(m_browser.window()->width() + 200) - 100, below(m_browser.window()->height() + 200) - 100);
    QCursor::setPos(window->mapToGlobal(start));
    QTest::mousePress(window, Qt::LeftButton, {}, start);
    QTest::mouseMove(window, start + QPoint(12, 6));
    QCursor::setPos(window->mapToGlobal(end));
    QTest::mouseMove(window, end);
    QTest::mouseRelease(window, Qt::LeftButton, {}, end);
    return describe(QStringLiteral("drag tile"), path) + QStringLiteral(" to %1,%2").arg(end.x()).arg(end.y());
}

QTreeWidgetItem* WindowMonkey::shownTreeRow()
{
    // A row the user sees: a top-level row, then down the open branches to a
    // random depth.
    LibraryTreeView* tree = m_browser.tree();
    const int rows = tree->topLevelItemCount();
    if (rows < 1)
        return nullptr;
    QTreeWidgetItem* item = tree->topLevelItem(below(rows));
    while (item->isExpanded() && item->childCount() > 0 && below(3) > 0)
        item = item->child(below(item->childCount()));
    return item;
}

QString WindowMonkey::clickTreeRow(bool twice)
{
    LibraryTreeView* tree = m_browser.tree();
    QTreeWidgetItem* item = shownTreeRow();
    if (!item)
        return QStringLiteral("click on an empty tree");
    const QString label = item->text(0);
    tree->scrollToItem(item);
    const QPoint center = tree->visualItemRect(item).center();
    if (twice)
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, center);
    else
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, center);
    return QStringLiteral("%1 tree row \"%2\"").arg(twice ? QStringLiteral("double click") : QStringLiteral("click"), label);
}

QString WindowMonkey::clickTreeRowOnce() { return clickTreeRow(false); }

QString WindowMonkey::doubleClickTreeRow() { return clickTreeRow(true); }

QString WindowMonkey::toggleTreeNode()
{
    LibraryTreeView* tree = m_browser.tree();
    std::vector<QTreeWidgetItem*> candidates;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        if ((*it)->childIndicatorPolicy() == QTreeWidgetItem::ShowIndicator || (*it)->childCount() > 0)
            candidates.push_back(*it);
    if (candidates.empty())
        return QStringLiteral("toggle with nothing to open");
    QTreeWidgetItem* item = candidates[static_cast<std::size_t>(below(static_cast<int>(candidates.size())))];
    const QString label = item->text(0);
    const bool open = !item->isExpanded();
    // The expander's click: the view opens or closes the row itself.
    if (open)
        tree->expandItem(item);
    else
        tree->collapseItem(item);
    return QStringLiteral("%1 tree node \"%2\"").arg(open ? QStringLiteral("expand") : QStringLiteral("collapse"), label);
}

QString WindowMonkey::triggerMenuAction()
{
    std::vector<std::pair<BrowserAction, QAction*>> enabled;
    for (const BrowserActionSpec& spec : browserActionTable()) {
        QAction* action = m_browser.action(spec.id);
        if (action && action->isEnabled() && !isLeftOut(spec.id))
            enabled.emplace_back(spec.id, action);
    }
    if (enabled.empty())
        return QStringLiteral("no menu action enabled");
    QAction* action = enabled[static_cast<std::size_t>(below(static_cast<int>(enabled.size())))].second;
    const QString text = action->text();
    action->trigger();
    return QStringLiteral("menu action \"%1\"").arg(text);
}

QString WindowMonkey::search()
{
    const QString text = searchTexts()[below(static_cast<int>(searchTexts().size()))];
    QLineEdit* edit = m_browser.searchComboBox()->lineEdit();
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
    m_searched = true;
    return QStringLiteral("search \"%1\"").arg(text.left(20));
}

QString WindowMonkey::refresh()
{
    m_browser.action(BrowserAction::Refresh)->trigger();
    return QStringLiteral("refresh");
}

QString WindowMonkey::hideAndShow()
{
    m_browser.window()->close();
    settle();
    m_browser.showBrowser();
    m_browser.window()->activateWindow();
    return QStringLiteral("close and show");
}

int WindowMonkey::below(int bound)
{
    return bound <= 1 ? 0 : std::uniform_int_distribution<int>(0, bound - 1)(m_random);
}

BlocksPage* WindowMonkey::pageInFront() const
{
    return m_browser.getCurrentTabIndex() == 1 ? static_cast<BlocksPage*>(m_browser.resultsPage())
                                               : static_cast<BlocksPage*>(m_browser.libraryPage());
}

GuiBlock* WindowMonkey::randomTile()
{
    const std::vector<std::string> names = pageInFront()->getBlocksDisplayPathNames();
    if (names.empty())
        return nullptr;
    return pageInFront()->getBlockByPathName(names[static_cast<std::size_t>(below(static_cast<int>(names.size())))]);
}

QPoint WindowMonkey::tileCentreInWindow(const GuiBlock* tile) const
{
    return tile->getPanel()->mapTo(m_browser.window(), tile->geometry().center());
}

QWindow* WindowMonkey::handle() const { return m_browser.window()->windowHandle(); }

void WindowMonkey::closePopupsAndDialogs()
{
    while (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->isVisible() && widget->isModal())
            widget->close();
}

void WindowMonkey::settle() { QApplication::processEvents(QEventLoop::AllEvents, 10); }

} // namespace LibraryBrowser::Testing
