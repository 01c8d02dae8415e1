#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <random>
#include <string>
#include <vector>

class QWidget;
class QTreeWidgetItem;
class QWindow;

namespace LibraryBrowser {
class BlocksPage;
class GuiBlock;
class StandaloneBrowser;
} // namespace LibraryBrowser

namespace LibraryBrowser::Testing {

// A seeded random user of the real window: key presses to the widget with
// the focus, clicks and drags on tiles and tree rows, menu actions,
// searches, the tree's expanders, refresh, hide and show. After every step
// the window must answer and hang together; check() says what does not.
class WindowMonkey {
public:
    // With trace, each step's kind goes to the error stream before it runs.
    WindowMonkey(StandaloneBrowser& browser, unsigned seed, bool trace);

    // One random step, its events processed; the step's description.
    QString step();
    // What is wrong with the window now; empty when nothing is.
    QString check() const;
    // The last steps, oldest first, for a failure's report.
    QStringList recentSteps() const { return {m_recent.begin(), m_recent.end()}; }

private:
    struct Step {
        const char* name;
        int weight;
        QString (WindowMonkey::*run)();
    };
    static const std::vector<Step>& steps();

    QString pressKey();
    QString clickTile();
    QString doubleClickTile();
    QString clickOnTile(bool twice);
    QString dragTile();
    QTreeWidgetItem* shownTreeRow();
    QString clickTreeRow(bool twice);
    QString clickTreeRowOnce();
    QString doubleClickTreeRow();
    QString toggleTreeNode();
    QString triggerMenuAction();
    QString search();
    QString refresh();
    QString hideAndShow();

    int below(int bound);
    BlocksPage* pageInFront() const;
    // A random tile of the page in front, or null on an empty page.
    GuiBlock* randomTile();
    QPoint tileCentreInWindow(const GuiBlock* tile) const;
    QWindow* handle() const;
    // The user's loose ends closed: menus and dialogs left open by a step.
    static void closePopupsAndDialogs();
    static void settle();

    StandaloneBrowser& m_browser;
    std::mt19937 m_random;
    std::deque<QString> m_recent;
    bool m_trace;
    bool m_searched = false;
};

} // namespace LibraryBrowser::Testing
