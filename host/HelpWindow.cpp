#include "HelpWindow.h"

#include <QTextBrowser>
#include <QVBoxLayout>

namespace LibraryBrowser::Host {

HelpWindow::HelpWindow() : QWidget(nullptr, Qt::Window)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_page = new QTextBrowser(this);
    m_page->setOpenExternalLinks(true);
    m_page->document()->setDocumentMargin(12);
    layout->addWidget(m_page);
    resize(560, 520);
}

void HelpWindow::showMarkdown(const QString& title, const QString& markdown)
{
    m_page->setMarkdown(markdown);
    present(title);
}

void HelpWindow::showHtml(const QString& title, const QString& html)
{
    m_page->setHtml(html);
    present(title);
}

void HelpWindow::present(const QString& title)
{
    setWindowTitle(title);
    show();
    raise();
    activateWindow();
}

QString HelpWindow::plainText() const { return m_page->toPlainText(); }

} // namespace LibraryBrowser::Host
