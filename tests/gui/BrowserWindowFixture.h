#pragma once

#include "EmbeddedHost.h"
#include "ModelWindow.h"
#include "ModelWindows.h"
#include "SyntheticRootGenerator.h"
#include "frame/MessageCatalogue.h"
#include "gui/BlocksPanel.h"
#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/StandaloneBrowser.h"
#include "platform/HostInterpreter.h"
#include "platform/MessageService.h"
#include "repository/Repository.h"
#include "support/Files.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QMenu>
#include <QPoint>
#include <QStatusBar>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

// Texts in a failed check read as texts.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

namespace LibraryBrowser::Testing {

// The embedded host on a private copy of the example root, with the message
// catalogue loaded and a repository opened on it: what a page reads from.
class ExampleRootSession {
public:
    ExampleRootSession() : ExampleRootSession(Host::HostOptions::bundledRoot()) {}
    // On a copy of another root.
    explicit ExampleRootSession(const QString& sourceRoot)
    {
        MessageService::instance().addPrimaryTable(MessageCatalogue::table());
        for (const auto& [file, bytes] : snapshot(sourceRoot.toStdString()))
            writeFile(root() + "/" + file.toStdString(), bytes);
        Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
        options.root = m_root.path();
        options.preferencesDirectory = m_prefs.path();
        m_host = std::make_unique<Host::EmbeddedHost>(options);
        m_host->install();
        m_repository = Repository::open();
    }
    ~ExampleRootSession()
    {
        m_repository.reset();
        m_host.reset();
    }
    // On a root of synthetic products of plain blocks named "Block 0" on;
    // fails the test and gives none when the root can't be written.
    static std::unique_ptr<ExampleRootSession> synthetic(int products, int blocksPerProduct)
    {
        // One level, no references between products.
        const Host::SyntheticRootGenerator::Settings settings{products, blocksPerProduct, 1, 0, false};
        QTemporaryDir source;
        QString error;
        if (!Host::SyntheticRootGenerator(settings).write(source.path(), error)) {
            ADD_FAILURE() << error.toStdString();
            return nullptr;
        }
        return std::make_unique<ExampleRootSession>(source.path());
    }

    const RepositoryPtr& repositoryPtr() const { return m_repository; }
    std::string root() const { return m_root.path().toStdString(); }
    Host::EmbeddedHost& host() { return *m_host; }
    // The object of a unique path; fails the test when there is none.
    TandrilObject object(const std::string& path)
    {
        const TandrilObject found = m_repository->getTandrilObject(path);
        EXPECT_TRUE(found.isValid()) << path;
        return found;
    }

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
    std::unique_ptr<Host::EmbeddedHost> m_host;
    RepositoryPtr m_repository;
};

// The window on the repository, shown, with what the user sees in its status
// bar noted in texts.
inline std::unique_ptr<StandaloneBrowser> showBrowser(const RepositoryPtr& repository, const std::shared_ptr<QStringList>& texts)
{
    std::unique_ptr<StandaloneBrowser> browser = StandaloneBrowser::create(repository);
    QObject::connect(browser->window()->statusBar(), &QStatusBar::messageChanged, browser->window(),
                     [texts](const QString& text) {
                         if (!text.isEmpty())
                             texts->append(text);
                     });
    browser->showBrowser();
    return browser;
}

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
    StandaloneBrowser& open()
    {
        m_browser = showBrowser(s_session->repositoryPtr(), m_statusTexts);
        settle();
        return *m_browser;
    }
    void closeWindow() { m_browser.reset(); }
    StandaloneBrowser& browser() { return *m_browser; }

    // The preferences file as the browser reads and writes it.
    static QString preferencesFile() { return BrowserPreferences::defaultFileName(); }

    // What the user saw in the status bar since the window opened.
    QStringList statusTexts() const { return *m_statusTexts; }
    QDockWidget* dock(const char* name) const { return m_browser->window()->findChild<QDockWidget*>(name); }
    // The entries of any popup menu that opens while the action runs; the
    // menu is closed without a choice.
    static QStringList menuOpenedBy(const std::function<void()>& action)
    {
        QStringList entries;
        QTimer closer;
        closer.setInterval(0);
        QObject::connect(&closer, &QTimer::timeout, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu)
                return;
            for (const QAction* entry : menu->actions())
                if (!entry->isSeparator())
                    entries.append(entry->text());
            menu->close();
        });
        closer.start();
        action();
        settle();
        closer.stop();
        return entries;
    }
    // Lets timers and queued events run for a while.
    static void settle(int milliseconds = 0)
    {
        QElapsedTimer clock;
        clock.start();
        do
            QApplication::processEvents(QEventLoop::AllEvents, 10);
        while (clock.elapsed() < milliseconds);
    }

    static ExampleRootSession& session() { return *s_session; }

    // A suite on another root sets it in its own SetUpTestSuite.
    static inline ExampleRootSession* s_session = nullptr;

private:
    std::unique_ptr<StandaloneBrowser> m_browser;
    std::shared_ptr<QStringList> m_statusTexts = std::make_shared<QStringList>();
};

// The browser window with the host's model windows beside it: the targets
// of the block actions. Every test starts with no system open and the
// browser at the top left of the screen.
class BlockActionsFixture : public BrowserWindowFixture {
protected:
    void SetUp() override
    {
        BrowserWindowFixture::SetUp();
        session().host().showWindows();
        std::vector<std::string> open;
        for (const Host::OpenSystem& system : session().host().systems().systems())
            open.push_back(system.name);
        for (const std::string& name : open)
            ASSERT_TRUE(call("close_system", {HostValue::string(name)}).ok) << name;
        call("private_td_close_block_dialogs");
        settle();
    }
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
    std::string newSystem(const char* type)
    {
        const auto result = call("private_td_new_system", {HostValue::string(type)}, 1);
        EXPECT_TRUE(result.ok) << result.errorMessage;
        return result.ok ? result.outputs.front().toString() : std::string();
    }
    Host::ModelWindow* modelWindow(const std::string& name) { return session().host().modelWindows()->window(name); }
    // The blocks of an open system as the host holds them.
    QStringList blocksOf(const std::string& system)
    {
        QStringList names;
        if (const Host::OpenSystem* open = session().host().systems().find(system))
            for (const Host::BlockRecord& block : open->document.blocks)
                names.append(QString::fromStdString(block.name));
        return names;
    }
    // Places the model window to the right of the browser, clear of it.
    void placeBesideBrowser(Host::ModelWindow* window)
    {
        window->move(browser().window()->frameGeometry().topRight() + QPoint(30, 0));
        settle();
    }

    // The browser on the tree node; the tile of the block on its page.
    StandaloneBrowser& openOn(const std::string& node)
    {
        StandaloneBrowser& window = open();
        window.setPosition(QRect(20, 20, 520, 480));
        // A nested node is found by opening the tree down to it.
        if (node.find('/') == std::string::npos)
            window.selectTreeNodeByName(node);
        else
            window.internalOpenSubsystemInTree(node);
        settle();
        EXPECT_EQ(window.getCurrentTreeNode(), node);
        return window;
    }
    GuiBlock* tile(const std::string& displayPath)
    {
        GuiBlock* found = browser().libraryPage()->getBlockByPathName(displayPath);
        EXPECT_NE(found, nullptr) << displayPath;
        return found;
    }

    // Press on the tile, move, and release at the point of the screen, the
    // cursor following, as the window system delivers a drag: the events
    // enter through the browser's window and go to the tile that was pressed.
    void drag(GuiBlock* tile, Qt::MouseButton button, const QPoint& global)
    {
        // The user scrolls to the tile first.
        browser().selectBlockByName(tile->getDisplayPath());
        settle();
        QWindow* handle = browser().window()->windowHandle();
        const QPoint start = tile->getPanel()->mapTo(browser().window(), tile->geometry().center());
        QCursor::setPos(handle->mapToGlobal(start));
        QTest::mousePress(handle, button, {}, start);
        QTest::mouseMove(handle, start + QPoint(12, 6));
        const QPoint end = handle->mapFromGlobal(global);
        QCursor::setPos(global);
        QTest::mouseMove(handle, end);
        QTest::mouseRelease(handle, button, {}, end);
        settle();
    }

    // The Edit menu opened and closed again: the add entry's label and
    // whether it was enabled while open.
    struct MenuEntry {
        QString label;
        bool enabled = false;
    };
    MenuEntry editMenuAddEntry()
    {
        QAction* add = browser().action(BrowserAction::AddBlock);
        QMenu* edit = nullptr;
        for (QObject* owner : add->associatedObjects())
            if (auto* menu = qobject_cast<QMenu*>(owner))
                edit = menu;
        EXPECT_NE(edit, nullptr);
        if (!edit)
            return {};
        edit->popup(browser().window()->mapToGlobal(QPoint(10, 30)));
        settle();
        const MenuEntry entry{add->text(), add->isEnabled()};
        edit->hide();
        settle();
        return entry;
    }

    // What the user saw in the status bar, and what the host was asked,
    // since the mark.
    void mark()
    {
        m_statusMark = int(statusTexts().size());
        m_commandMark = session().host().commandLog().entries().size();
    }
    QStringList statusSinceMark() const { return statusTexts().mid(m_statusMark); }
    QStringList commandsSinceMark()
    {
        QStringList commands;
        const auto& entries = session().host().commandLog().entries();
        for (std::size_t i = m_commandMark; i < entries.size(); ++i)
            commands.append(QString::fromStdString(entries[i].command));
        return commands;
    }

private:
    int m_statusMark = 0;
    std::size_t m_commandMark = 0;
};

} // namespace LibraryBrowser::Testing
