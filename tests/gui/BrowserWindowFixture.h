#pragma once

#include "PageTestSupport.h"

#include "gui/BrowserPreferences.h"
#include "gui/StandaloneBrowser.h"

#include <gtest/gtest.h>

#include <QDockWidget>
#include <QFile>
#include <QMainWindow>
#include <QStringList>

#include <functional>
#include <memory>
#include <string>

namespace LibraryBrowser::Testing {

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

} // namespace LibraryBrowser::Testing
