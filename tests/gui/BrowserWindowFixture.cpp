#include "BrowserWindowFixture.h"

#include "gui/BrowserPreferences.h"
#include "gui/LibraryTreeView.h"

#include <QApplication>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QStatusBar>

namespace LibraryBrowser::Testing {

ExampleRootSession* BrowserWindowFixture::s_session = nullptr;

void BrowserWindowFixture::SetUpTestSuite() { s_session = new ExampleRootSession(); }

void BrowserWindowFixture::TearDownTestSuite()
{
    delete s_session;
    s_session = nullptr;
}

void BrowserWindowFixture::SetUp()
{
    BrowserUtils::setScreenDPIOverride(96);
    QFile::remove(preferencesFile());
}

void BrowserWindowFixture::TearDown()
{
    m_browser.reset();
    BrowserUtils::setScreenDPIOverride(0);
}

StandaloneBrowser& BrowserWindowFixture::open()
{
    m_browser = StandaloneBrowser::create(s_session->repositoryPtr());
    auto texts = m_statusTexts;
    QObject::connect(m_browser->window()->statusBar(), &QStatusBar::messageChanged, m_browser->window(),
                     [texts](const QString& text) {
                         if (!text.isEmpty())
                             texts->append(text);
                     });
    m_browser->showBrowser();
    settle();
    return *m_browser;
}

QString BrowserWindowFixture::preferencesFile() { return BrowserPreferences::defaultFileName(); }

QDockWidget* BrowserWindowFixture::dock(const char* name) const
{
    return m_browser->window()->findChild<QDockWidget*>(name);
}

QStringList BrowserWindowFixture::treeTopLevel() const
{
    QStringList labels;
    for (int i = 0; i < m_browser->tree()->topLevelItemCount(); ++i)
        labels.append(m_browser->tree()->topLevelItem(i)->text(0));
    return labels;
}

void BrowserWindowFixture::settle(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    do
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    while (clock.elapsed() < milliseconds);
}

} // namespace LibraryBrowser::Testing
