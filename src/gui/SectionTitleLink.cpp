#include "gui/SectionTitleLink.h"

#include <QFontMetrics>
#include <QResizeEvent>

namespace LibraryBrowser {

SectionTitleLink::SectionTitleLink(const std::string& title, const QFont& font, int width, QWidget* parent)
    : QLabel(parent), m_title(QString::fromStdString(title))
{
    QFont bold = font;
    bold.setBold(true);
    setFont(bold);
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    setFocusPolicy(Qt::NoFocus);
    // The layout may give the title less than its text needs: it is cut then.
    setMinimumWidth(1);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    connect(this, &QLabel::linkActivated, this, [this] { emit activated(); });
    elideTo(width);
}

void SectionTitleLink::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    elideTo(event->size().width());
}

void SectionTitleLink::elideTo(int width)
{
    const QString shown = QFontMetrics(font()).elidedText(m_title, Qt::ElideMiddle, std::max(1, width));
    if (shown == m_shown && !text().isEmpty())
        return;
    m_shown = shown;
    setText(QStringLiteral("<a href=\"library\" style=\"text-decoration:none\">%1</a>").arg(shown.toHtmlEscaped()));
}

} // namespace LibraryBrowser
