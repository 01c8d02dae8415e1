#include "ModelWindow.h"

#include "IconRenderer.h"

#include <QCloseEvent>
#include <QEvent>
#include <QGraphicsPixmapItem>
#include <QGraphicsSimpleTextItem>
#include <QPainter>
#include <QSvgRenderer>

namespace LibraryBrowser::Host {

namespace {

QPixmap iconPixmap(const BlockRecord& block, const QSizeF& size, qreal ratio)
{
    QPixmap pixmap((size * ratio).toSize().expandedTo(QSize(1, 1)));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(IconRenderer::render(block.icon, block.name, block.type, block.position));
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(QPointF(0, 0), size));
    return pixmap;
}

} // namespace

ModelWindow::ModelWindow(const std::string& name) : m_name(name)
{
    setScene(new QGraphicsScene(this));
    setRenderHint(QPainter::Antialiasing);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setBackgroundBrush(Qt::white);
    setAttribute(Qt::WA_DeleteOnClose, false);
    resize(640, 420);
}

void ModelWindow::showSystem(const OpenSystem& system)
{
    QGraphicsScene* drawing = scene();
    drawing->clear();
    m_blockNames.clear();
    const qreal ratio = devicePixelRatioF();
    for (const BlockRecord& block : system.document.blocks) {
        const QRectF rect(block.position.left, block.position.top, block.position.right - block.position.left,
                          block.position.bottom - block.position.top);
        auto* icon = drawing->addPixmap(iconPixmap(block, rect.size(), ratio));
        icon->setPos(rect.topLeft());
        icon->setToolTip(QString::fromStdString(block.description));
        auto* label = drawing->addSimpleText(QString::fromStdString(block.name));
        label->setPos(rect.center().x() - label->boundingRect().width() / 2, rect.bottom() + 4);
        m_blockNames.append(QString::fromStdString(block.name));
    }
    fitScene();
    QString title = QString::fromStdString(system.name);
    if (system.dirty)
        title += " *";
    if (system.type == SystemType::Library && system.locked)
        title += " (locked library)";
    setWindowTitle(title);
}

void ModelWindow::fitScene()
{
    // The model's origin stays at the window's corner, so that points map
    // one to one; the drawing grows to the right and down, and scrolls only
    // once it is larger than the window.
    const QRectF used = scene()->itemsBoundingRect();
    const QSize view = maximumViewportSize();
    scene()->setSceneRect(QRectF(0, 0, std::max(qreal(view.width()), used.right() + 40),
                                 std::max(qreal(view.height()), used.bottom() + 40)));
}

void ModelWindow::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    fitScene();
}

QPointF ModelWindow::toModel(const QPoint& global) const { return mapToScene(viewport()->mapFromGlobal(global)); }

QStringList ModelWindow::blockNames() const { return m_blockNames; }

void ModelWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        emit activated(m_name);
    QGraphicsView::changeEvent(event);
}

void ModelWindow::closeEvent(QCloseEvent* event)
{
    QGraphicsView::closeEvent(event);
    if (event->isAccepted())
        emit closed(m_name);
}

void ModelWindow::focusInEvent(QFocusEvent* event)
{
    emit activated(m_name);
    QGraphicsView::focusInEvent(event);
}

} // namespace LibraryBrowser::Host
