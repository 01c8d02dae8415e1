#pragma once

#include <QFile>
#include <QList>
#include <QObject>
#include <QTimer>

namespace LibraryBrowser {
class StandaloneBrowser;
}

class QWindow;

namespace LibraryBrowser::Tdlb {

// The program's windows that a user has open besides the browser: its other
// top-level windows and dialogs (a model, a help window), whatever made
// them, but not dialogs that belong to a window, menus or tool tips.
QList<QWindow*> otherOpenWindows(const QWindow* browserWindow);

// What the browser window shows, one JSON object per line, written whenever
// it changes: title, tabs and their labels, the status bar, where the
// keyboard is, the search box with its selection and list, the tree node,
// the tiles of the page in front and the selected one, layout, icon size,
// the tree pane's width, where the main parts are on the screen, and the
// titles of the program's other windows. For tests that drive the program
// from outside, which cannot read the screen.
class WindowStateLog : public QObject {
    Q_OBJECT

public:
    // False when the file can't be opened for writing.
    bool open(const QString& fileName, StandaloneBrowser& browser);

private:
    void write();

    StandaloneBrowser* m_browser = nullptr;
    QFile m_file;
    QTimer m_timer;
    QByteArray m_last;
};

} // namespace LibraryBrowser::Tdlb
