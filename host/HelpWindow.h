#pragma once

#include <QWidget>

class QTextBrowser;

namespace LibraryBrowser::Host {

// The host's one help window: a page of text that the next request for help
// replaces, brought to the front each time.
class HelpWindow : public QWidget {
    Q_OBJECT

public:
    HelpWindow();

    void showMarkdown(const QString& title, const QString& markdown);
    void showHtml(const QString& title, const QString& html);
    // What the page shows, as plain text.
    QString plainText() const;

private:
    void present(const QString& title);

    QTextBrowser* m_page = nullptr;
};

} // namespace LibraryBrowser::Host
