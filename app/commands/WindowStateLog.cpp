#include "WindowStateLog.h"

#include "gui/BlocksPanel.h"
#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/LibraryTreeView.h"
#include "gui/QuickInsertPopup.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/StandaloneBrowser.h"

#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabWidget>
#include <QWindow>

namespace LibraryBrowser::Tdlb {

namespace {

QJsonArray toArray(const std::vector<std::string>& texts)
{
    QJsonArray array;
    for (const std::string& text : texts)
        array.append(QString::fromStdString(text));
    return array;
}

// Where a widget, or a rectangle in it, is on the screen: x, y, width, height.
QJsonArray onScreen(const QWidget* widget, QRect rect)
{
    if (!widget || !widget->isVisible())
        return QJsonArray();
    rect.moveTopLeft(widget->mapToGlobal(rect.topLeft()));
    return QJsonArray{rect.x(), rect.y(), rect.width(), rect.height()};
}

QJsonArray onScreen(const QWidget* widget) { return widget ? onScreen(widget, widget->rect()) : QJsonArray(); }

// The part of the window that has the keyboard, in the words a user would use.
QString focusOf(StandaloneBrowser& browser)
{
    const QWidget* focus = QApplication::focusWidget();
    if (!focus)
        return QString();
    const auto within = [focus](const QWidget* widget) { return widget && (focus == widget || widget->isAncestorOf(focus)); };
    if (within(browser.searchComboBox()))
        return "search box";
    if (within(browser.libraryPage()->getScrollView()))
        return "library page";
    if (within(browser.resultsPage()->getScrollView()))
        return "results page";
    if (within(browser.tree()))
        return "tree";
    if (within(browser.searchListBox()))
        return "results list";
    return focus->window() == browser.window() ? QString("window") : QString("other window");
}

} // namespace

QList<QWindow*> otherOpenWindows(const QWindow* browserWindow)
{
    QList<QWindow*> open;
    for (QWindow* window : QGuiApplication::topLevelWindows())
        if (window != browserWindow && window->isVisible() && !window->transientParent() &&
            (window->type() == Qt::Window || window->type() == Qt::Dialog))
            open.append(window);
    return open;
}

bool WindowStateLog::open(const QString& fileName, StandaloneBrowser& browser)
{
    m_browser = &browser;
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return false;
    // Often enough that a test waits little, seldom enough to cost nothing.
    connect(&m_timer, &QTimer::timeout, this, &WindowStateLog::write);
    m_timer.start(50);
    write();
    return true;
}

void WindowStateLog::write()
{
    StandaloneBrowser& browser = *m_browser;
    QMainWindow* window = browser.window();
    QJsonObject state;
    state["visible"] = window->isVisible();
    state["title"] = window->windowTitle();
    const auto* tabs = window->findChild<QTabWidget*>("LBTabContainer");
    state["tab"] = tabs->currentIndex();
    state["tabLabels"] = QJsonArray{tabs->tabText(0), tabs->tabText(1)};
    state["status"] = window->statusBar()->currentMessage();
    state["focus"] = focusOf(browser);
    const QComboBox* box = browser.searchComboBox();
    state["searchText"] = box->currentText();
    state["searchSelection"] = box->lineEdit()->selectedText();
    QJsonArray history;
    for (int i = 0; i < box->count(); ++i)
        history.append(box->itemText(i));
    state["history"] = history;
    state["treeNode"] = QString::fromStdString(browser.getCurrentTreeNode());
    // Branches below the current node that could open and are closed.
    QJsonArray closedBelow;
    std::vector<QTreeWidgetItem*> below{browser.tree()->currentItem()};
    while (!below.empty()) {
        QTreeWidgetItem* item = below.back();
        below.pop_back();
        for (int i = 0; item && i < item->childCount(); ++i) {
            QTreeWidgetItem* child = item->child(i);
            if (browser.tree()->isItemExpandable(LibraryTreeView::uidOf(child)) && !child->isExpanded())
                closedBelow.append(child->text(0));
            below.push_back(child);
        }
    }
    state["closedBelow"] = closedBelow;
    BlocksPage* page = browser.getCurrentTabIndex() == 1 ? static_cast<BlocksPage*>(browser.resultsPage())
                                                         : static_cast<BlocksPage*>(browser.libraryPage());
    state["tiles"] = toArray(page->getBlocksDisplayPathNames());
    const GuiBlock* selected = page->getSelectedBlock();
    state["selected"] = selected ? QString::fromStdString(selected->getDisplayPath()) : QString();
    state["focusMark"] = page->hasFocusMark();
    const auto* tree = window->findChild<QDockWidget*>("LBTreeDockWidget");
    QJsonObject rects;
    rects["searchBox"] = onScreen(box);
    rects["tree"] = onScreen(tree);
    rects["page"] = onScreen(page->getScrollView()->viewport());
    rects["selected"] = selected && selected->getPanel() ? onScreen(selected->getPanel(), selected->geometry())
                                                         : QJsonArray();
    state["rects"] = rects;
    state["layout"] = BrowserPreferences::wordOf(browser.getLayoutType());
    state["iconSize"] = BrowserPreferences::wordOf(browser.getIconSize());
    state["treeWidth"] = tree->isVisible() ? tree->width() : 0;
    state["enabled"] = window->isEnabled();
    QJsonArray others;
    for (const QWindow* other : otherOpenWindows(window->windowHandle()))
        others.append(other->title());
    state["otherWindows"] = others;
    QJsonObject quickInsert;
    if (const QuickInsertPopup* popup = browser.quickInsertPopup(); popup && popup->isVisible()) {
        quickInsert["query"] = popup->query();
        QJsonArray rows;
        for (const RankedBlock& row : popup->rows().rows())
            rows.append(QString::fromStdString(row.block.getDisplayPath()));
        quickInsert["rows"] = rows;
        quickInsert["current"] = popup->rows().current();
        quickInsert["footer"] = popup->footerText();
        quickInsert["rect"] = onScreen(popup);
    }
    // Empty while no quick insert is open.
    state["quickInsert"] = quickInsert;
    const QByteArray line = QJsonDocument(state).toJson(QJsonDocument::Compact);
    if (line == m_last)
        return;
    m_last = line;
    m_file.write(line + '\n');
    m_file.flush();
}

} // namespace LibraryBrowser::Tdlb
