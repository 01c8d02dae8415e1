#pragma once

#include <QLabel>

#include <string>

namespace LibraryBrowser {

// The title of a section's header: the library's display path as a link,
// cut in the middle to the width it gets, so that both the product and the
// library's own name stay readable.
class SectionTitleLink : public QLabel {
    Q_OBJECT

public:
    // Bold in the page's font.
    SectionTitleLink(const std::string& title, const QFont& font, int width, QWidget* parent);

    const QString& fullTitle() const { return m_title; }
    // The title as shown, cut or whole.
    QString shownTitle() const { return m_shown; }

signals:
    void activated();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void elideTo(int width);

    QString m_title;
    QString m_shown;
};

} // namespace LibraryBrowser
