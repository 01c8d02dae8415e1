#include "gui/LBImageLink.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace LibraryBrowser {

LBImageLink::LBImageLink(int size, QWidget* parent) : QLabel(parent), m_size(size)
{
    setFixedSize(size, size);
    setAlignment(Qt::AlignCenter);
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
}

void LBImageLink::setImage(const std::string& file, bool expandsOnClick)
{
    m_expandsOnClick = expandsOnClick;
    QPixmap image(QString::fromStdString(file));
    if (image.isNull())
        image = fallbackImage(expandsOnClick);
    else
        image = image.scaled(m_size, m_size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    setPixmap(image);
}

QPixmap LBImageLink::fallbackImage(bool pointsRight) const
{
    const qreal ratio = devicePixelRatioF();
    QPixmap image(QSize(m_size, m_size) * ratio);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal inset = m_size * 0.25;
    const qreal far = m_size - inset;
    QPainterPath triangle;
    if (pointsRight) {
        triangle.moveTo(inset, inset * 0.8);
        triangle.lineTo(far, m_size / 2.0);
        triangle.lineTo(inset, m_size - inset * 0.8);
    } else {
        triangle.moveTo(inset * 0.8, inset);
        triangle.lineTo(m_size - inset * 0.8, inset);
        triangle.lineTo(m_size / 2.0, far);
    }
    triangle.closeSubpath();
    painter.fillPath(triangle, palette().color(QPalette::WindowText));
    return image;
}

void LBImageLink::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton;
    event->accept();
}

void LBImageLink::mouseReleaseEvent(QMouseEvent* event)
{
    const bool click = m_pressed && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    m_pressed = false;
    event->accept();
    if (click)
        emit clicked();
}

} // namespace LibraryBrowser
