#include "BrowserWindowFixture.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QStatusBar>

namespace LibraryBrowser::Testing {

ExampleRootSession* BrowserWindowFixture::s_session = nullptr;

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

void BrowserWindowFixture::settle(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    do
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    while (clock.elapsed() < milliseconds);
}

} // namespace LibraryBrowser::Testing
