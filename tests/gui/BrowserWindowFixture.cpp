#include "BrowserWindowFixture.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QStatusBar>
#include <QTimer>

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

QStringList BrowserWindowFixture::menuOpenedBy(const std::function<void()>& action)
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

} // namespace LibraryBrowser::Testing
