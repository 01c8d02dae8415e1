#include "gui/BlocksPanel.h"

#include "gui/BlocksPage.h"
#include "gui/GuiBlock.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace LibraryBrowser {

BlocksPanel::BlocksPanel(BlocksPage* page, QWidget* parent) : QWidget(parent), m_page(page)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
}

void BlocksPanel::setGrid(int spacing, int margin)
{
    m_spacing = spacing;
    m_margin = margin;
}

void BlocksPanel::addTile(GuiBlock* tile, int row, int column)
{
    const QSize size = tile->geometry().size();
    tile->setGeometry(QRect(QPoint(m_margin + column * (size.width() + m_spacing),
                                   m_margin + row * (size.height() + m_spacing)),
                            size));
    m_tiles.push_back(tile);
    m_rows.push_back(row);
}

void BlocksPanel::clearTiles()
{
    m_tiles.clear();
    m_rows.clear();
    m_hovered = nullptr;
    m_pressed = nullptr;
}

std::pair<std::size_t, std::size_t> BlocksPanel::tilesInBand(int top, int bottom) const
{
    if (m_tiles.empty())
        return {0, 0};
    const int rowHeight = m_tiles.front()->geometry().height() + m_spacing;
    const int firstRow = std::max(0, (top - m_margin) / std::max(1, rowHeight));
    const int lastRow = std::max(0, (bottom - m_margin) / std::max(1, rowHeight));
    const auto begin = std::lower_bound(m_rows.begin(), m_rows.end(), firstRow);
    const auto end = std::upper_bound(m_rows.begin(), m_rows.end(), lastRow);
    return {std::size_t(begin - m_rows.begin()), std::size_t(end - m_rows.begin())};
}

GuiBlock* BlocksPanel::tileAt(const QPoint& position) const
{
    const auto [begin, end] = tilesInBand(position.y(), position.y());
    for (std::size_t i = begin; i < end; ++i)
        if (m_tiles[i]->geometry().contains(position))
            return m_tiles[i];
    return nullptr;
}

void BlocksPanel::updateTile(const GuiBlock* tile)
{
    if (tile)
        update(tile->geometry());
}

void BlocksPanel::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QRect exposed = event->rect();
    const auto [begin, end] = tilesInBand(exposed.top(), exposed.bottom());
    const TileMetrics& metrics = m_page->getTileMetrics();
    const GuiBlock* selected = m_page->getSelectedBlock();
    for (std::size_t i = begin; i < end; ++i) {
        const GuiBlock* tile = m_tiles[i];
        if (tile->geometry().intersects(exposed))
            tile->paint(painter, metrics, tile == selected, tile == m_hovered);
    }
    if (selected && m_page->hasFocusMark() &&
        std::find(m_tiles.begin() + std::ptrdiff_t(begin), m_tiles.begin() + std::ptrdiff_t(end), selected) !=
            m_tiles.begin() + std::ptrdiff_t(end)) {
        // A dotted line just inside the selection mark, as item views draw it.
        QPen pen(palette().color(QPalette::Highlight), 1, Qt::DotLine);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(selected->geometry().adjusted(2, 2, -3, -3));
    }
}

void BlocksPanel::setHovered(GuiBlock* tile)
{
    if (tile == m_hovered)
        return;
    updateTile(m_hovered);
    m_hovered = tile;
    updateTile(m_hovered);
}

void BlocksPanel::mousePressEvent(QMouseEvent* event)
{
    m_pressed = tileAt(event->position().toPoint());
    if (m_pressed)
        m_pressed->mousePressEvent(event);
}

void BlocksPanel::mouseMoveEvent(QMouseEvent* event)
{
    // A drag stays with the tile it started on, wherever the mouse goes.
    if (m_pressed && event->buttons() != Qt::NoButton) {
        m_pressed->mouseMoveEvent(event);
        return;
    }
    setHovered(tileAt(event->position().toPoint()));
}

void BlocksPanel::mouseReleaseEvent(QMouseEvent* event)
{
    GuiBlock* tile = m_pressed;
    if (event->buttons() == Qt::NoButton)
        m_pressed = nullptr;
    if (tile)
        tile->mouseReleaseEvent(event);
}

void BlocksPanel::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (GuiBlock* tile = tileAt(event->position().toPoint()))
        tile->mouseDoubleClickEvent(event);
}

void BlocksPanel::contextMenuEvent(QContextMenuEvent* event)
{
    // Where the platform asks for the menu at the press, the press may yet
    // become a right drag, which opens no menu: the tile decides at the
    // release. Elsewhere the page shows the menu.
    if (event->reason() == QContextMenuEvent::Mouse && m_pressed &&
        (QGuiApplication::mouseButtons() & Qt::RightButton)) {
        m_pressed->deferContextMenuToRelease();
        event->accept();
        return;
    }
    event->ignore();
}

void BlocksPanel::leaveEvent(QEvent* event)
{
    setHovered(nullptr);
    QWidget::leaveEvent(event);
}

bool BlocksPanel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        if (const GuiBlock* tile = tileAt(help->pos()))
            QToolTip::showText(help->globalPos(), tile->toolTip(), this, tile->geometry());
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

} // namespace LibraryBrowser
