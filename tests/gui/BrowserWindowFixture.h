#pragma once

#include "EmbeddedHost.h"
#include "ModelWindow.h"
#include "ModelWindows.h"
#include "gui/BrowserPreferences.h"
#include "gui/StandaloneBrowser.h"
#include "platform/HostInterpreter.h"
#include "repository/Repository.h"

#include <gtest/gtest.h>

#include <QDockWidget>
#include <QFile>
#include <QMainWindow>
#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

// Texts in a failed check read as texts.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

namespace LibraryBrowser {
class GuiBlock;
}

namespace LibraryBrowser::Testing {

// The embedded host on a private copy of the example root, with the message
// catalogue loaded and a repository opened on it: what a page reads from.
class ExampleRootSession {
public:
    ExampleRootSession();
    // On a copy of another root.
    explicit ExampleRootSession(const QString& sourceRoot);
    ~ExampleRootSession();
    // On a root of synthetic products of plain blocks named "Block 0" on;
    // fails the test and gives none when the root can't be written.
    static std::unique_ptr<ExampleRootSession> synthetic(int products, int blocksPerProduct);

    const RepositoryPtr& repositoryPtr() const { return m_repository; }
    std::string root() const { return m_root.path().toStdString(); }
    Host::EmbeddedHost& host() { return *m_host; }
    // The object of a unique path; fails the test when there is none.
    TandrilObject object(const std::string& path);

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
    std::unique_ptr<Host::EmbeddedHost> m_host;
    RepositoryPtr m_repository;
};

// The window on the repository, shown, with what the user sees in its status
// bar noted in texts.
std::unique_ptr<StandaloneBrowser> showBrowser(const RepositoryPtr& repository, const std::shared_ptr<QStringList>& texts);

// The whole browser window on a private copy of the example root, offscreen,
// with a preferences file that each test starts from empty. The root and its
// store are made once per suite; each test gets a new window.
class BrowserWindowFixture : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_session = new ExampleRootSession(); }
    static void TearDownTestSuite()
    {
        delete s_session;
        s_session = nullptr;
    }
    void SetUp() override
    {
        BrowserUtils::setScreenDPIOverride(96);
        QFile::remove(preferencesFile());
    }
    void TearDown() override
    {
        m_browser.reset();
        BrowserUtils::setScreenDPIOverride(0);
    }

    // A window on the suite's repository, shown; the preferences file holds
    // what the test wrote before.
    StandaloneBrowser& open();
    void closeWindow() { m_browser.reset(); }
    StandaloneBrowser& browser() { return *m_browser; }

    // The preferences file as the browser reads and writes it.
    static QString preferencesFile() { return BrowserPreferences::defaultFileName(); }

    // What the user saw in the status bar since the window opened.
    QStringList statusTexts() const { return *m_statusTexts; }
    QDockWidget* dock(const char* name) const { return m_browser->window()->findChild<QDockWidget*>(name); }
    // The entries of any popup menu that opens while the action runs; the
    // menu is closed without a choice.
    static QStringList menuOpenedBy(const std::function<void()>& action);
    // Lets timers and queued events run for a while.
    static void settle(int milliseconds = 0);

    static ExampleRootSession& session() { return *s_session; }

private:
    static ExampleRootSession* s_session;
    std::unique_ptr<StandaloneBrowser> m_browser;
    std::shared_ptr<QStringList> m_statusTexts = std::make_shared<QStringList>();
};

// The browser window with the host's model windows beside it: the targets
// of the block actions. Every test starts with no system open and the
// browser at the top left of the screen.
class BlockActionsFixture : public BrowserWindowFixture {
protected:
    void SetUp() override;
    void TearDown() override
    {
        call("private_td_close_block_dialogs");
        BrowserWindowFixture::TearDown();
    }

    HostInterpreter::CallResult call(const std::string& command, std::vector<HostValue> inputs = {}, int outputs = 0)
    {
        return session().host().callWithTrap(command, outputs, inputs);
    }
    // A new untitled system of the type ("Model" or "Library"); its name.
    std::string newSystem(const char* type);
    Host::ModelWindow* modelWindow(const std::string& name) { return session().host().modelWindows()->window(name); }
    // The blocks of an open system as the host holds them.
    QStringList blocksOf(const std::string& system);
    // Places the model window to the right of the browser, clear of it.
    void placeBesideBrowser(Host::ModelWindow* window)
    {
        window->move(browser().window()->frameGeometry().topRight() + QPoint(30, 0));
        settle();
    }

    // The browser on the tree node; the tile of the block on its page.
    StandaloneBrowser& openOn(const std::string& node);
    GuiBlock* tile(const std::string& displayPath);

    // Press on the tile, move, and release at the point of the screen, the
    // cursor following, as the window system delivers a drag: the events
    // enter through the browser's window and go to the tile that was pressed.
    void drag(GuiBlock* tile, Qt::MouseButton button, const QPoint& global);

    // The Edit menu opened and closed again: the add entry's label and
    // whether it was enabled while open.
    struct MenuEntry {
        QString label;
        bool enabled = false;
    };
    MenuEntry editMenuAddEntry();

    // What the user saw in the status bar, and what the host was asked,
    // since the mark.
    void mark()
    {
        m_statusMark = int(statusTexts().size());
        m_commandMark = session().host().commandLog().entries().size();
    }
    QStringList statusSinceMark() const { return statusTexts().mid(m_statusMark); }
    QStringList commandsSinceMark();

private:
    int m_statusMark = 0;
    std::size_t m_commandMark = 0;
};

} // namespace LibraryBrowser::Testing
