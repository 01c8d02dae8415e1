#include "gui/GuiBlock.h"

#include "gui/BlocksPage.h"
#include "gui/BlocksPageHost.h"
#include "gui/BlocksPanel.h"
#include "gui/BrowserHostCommands.h"
#include "gui/IconPixmapCache.h"
#include "gui/NameWrap.h"

#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <atomic>

namespace LibraryBrowser {

namespace {

std::atomic<long long> created{0};

const QColor SelectionStroke = QColor::fromRgbF(0.631f, 0.8f, 0.831f);
const QColor SelectionTop = QColor::fromRgbF(0.961f, 0.976f, 1.0f);
const QColor SelectionBottom = QColor::fromRgbF(0.686f, 0.875f, 0.906f);
const QColor BoxStroke = QColor::fromRgbF(0.8f, 0.8f, 0.8f);

const QColor HoverStroke = QColor::fromRgbF(0.95f, 0.95f, 0.95f);

// Up to two lines of name in the rectangle, the second elided.
void drawTwoLines(QPainter& painter, const QRect& rect, const QString& text, Qt::Alignment horizontal)
{
    const QFontMetrics metrics(painter.font());
    QStringList lines = NameWrap::wrapName(text, rect.width(), 2,
                                           [&metrics](const QString& line) { return metrics.horizontalAdvance(line); });
    if (!lines.isEmpty())
        lines.back() = metrics.elidedText(lines.back(), Qt::ElideRight, rect.width());
    const int lineHeight = metrics.height();
    int y = horizontal == Qt::AlignHCenter ? rect.top() : rect.top() + (rect.height() - lineHeight * int(lines.size())) / 2;
    for (const QString& line : lines) {
        painter.drawText(QRect(rect.left(), y, rect.width(), lineHeight), int(horizontal) | Qt::AlignVCenter, line);
        y += lineHeight;
    }
}

} // namespace

GuiBlock::GuiBlock(BlocksPageHost* browser, Block block, BlocksPage* page)
    : m_browser(browser), m_block(std::move(block)), m_page(page)
{
    ++created;
}

GuiBlock::~GuiBlock() = default;

long long GuiBlock::instancesCreated() { return created.load(); }

std::string GuiBlock::getDisplayPath() const { return m_block.getDisplayPath(); }

bool GuiBlock::isFromLibraryBlocksPage() const { return m_page && !m_page->isResultsPage(); }

int GuiBlock::createBlockGraphics(BlocksPanel* panel, BlockIconPtr icon, int children)
{
    m_panel = panel;
    m_icon = std::move(icon);
    m_children = children;
    const TileMetrics& metrics = m_page->getTileMetrics();
    if (metrics.layout == LayoutType::List) {
        const int nameWidth = BrowserUtils::getFontInfoStringWidth(m_page->getPageFont(), getDisplayName());
        m_widgetWidth = std::max(m_page->getEffectiveListItemWidth(), metrics.listWidthFor(nameWidth));
    } else {
        m_widgetWidth = metrics.gridWidth;
    }
    m_geometry.setSize(QSize(m_widgetWidth, metrics.height));
    return m_widgetWidth;
}

QRect GuiBlock::getWidgetPosition() const
{
    if (!m_panel)
        return m_geometry;
    return m_geometry.translated(m_panel->pos());
}

void GuiBlock::adjustListItemSize(int width)
{
    m_widgetWidth = width;
    m_geometry.setWidth(width);
}

void GuiBlock::paint(QPainter& painter, const TileMetrics& metrics, bool selected, bool hovered) const
{
    painter.save();
    painter.translate(m_geometry.topLeft());
    const int width = m_geometry.width();
    const int height = m_geometry.height();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame(0.5, 0.5, width - 1, height - 1);
    const QSizeF radii = metrics.cornerRadii(width);
    if (selected) {
        QLinearGradient gradient(0, 0, 0, height);
        gradient.setColorAt(0, SelectionTop);
        gradient.setColorAt(1, SelectionBottom);
        painter.setPen(SelectionStroke);
        painter.setBrush(gradient);
        painter.drawRoundedRect(frame, radii.width(), radii.height());
    }
    if (metrics.drawsBox()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(BoxStroke);
        painter.setBrush(Qt::white);
        if (m_children < 1) {
            painter.drawRect(metrics.box.adjusted(0, 0, -1, -1));
        } else {
            for (int depth = 2; depth >= 0; --depth)
                painter.drawRect(metrics.stackedBox(depth).adjusted(0, 0, -1, -1));
        }
        painter.setRenderHint(QPainter::Antialiasing);
    }
    if (m_icon) {
        const QSizeF natural = m_icon->naturalSize();
        if (!natural.isEmpty()) {
            const auto placement = BrowserUtils::fitBlockIconToBox(natural.width(), natural.height(), m_children,
                                                                   metrics.layout, metrics.size, metrics.points);
            const QRectF target(placement.x, placement.y, natural.width() * placement.scale,
                                natural.height() * placement.scale);
            const QRect pixelTarget = target.toAlignedRect();
            const QPixmap pixmap =
                IconPixmapCache::instance().pixmap(m_icon, pixelTarget.size(), painter.device()->devicePixelRatioF());
            if (!pixmap.isNull())
                painter.drawPixmap(pixelTarget.topLeft(), pixmap);
        }
    }
    // The hover frame lies over everything but the name, the selection too.
    if (hovered) {
        painter.setPen(HoverStroke);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame, radii.width(), radii.height());
    }
    painter.setPen(m_panel ? m_panel->palette().text().color() : QColor(Qt::black));
    painter.setFont(m_page->getNameFont());
    const QRect nameRect = metrics.nameRect(width);
    const QString name = QString::fromStdString(getDisplayName());
    if (metrics.layout == LayoutType::List)
        painter.drawText(nameRect, Qt::AlignLeft | Qt::AlignVCenter, name);
    else if (metrics.size == IconSize::Compact)
        drawTwoLines(painter, nameRect, name, Qt::AlignLeft);
    else
        drawTwoLines(painter, nameRect, name, Qt::AlignHCenter);
    painter.restore();
}

QString GuiBlock::toolTip() const
{
    return QString::fromStdString(isFromLibraryBlocksPage() ? getDisplayName() : getDisplayPath());
}

bool GuiBlock::actsOnEvents() const { return m_page && m_browser->internalGetCurrentBlocksPage() == m_page; }

void GuiBlock::mousePressEvent(QMouseEvent* event)
{
    if (!actsOnEvents())
        return;
    if (event->button() == Qt::LeftButton)
        m_leftPressed = true;
    else if (event->button() == Qt::RightButton)
        m_rightPressed = true;
    m_page->setSelectedBlock(this);
}

void GuiBlock::mouseMoveEvent(QMouseEvent* event)
{
    if (!actsOnEvents() || !(m_leftPressed || m_rightPressed))
        return;
    if (event->buttons() & Qt::LeftButton)
        m_leftDragged = m_leftPressed;
    if (event->buttons() & Qt::RightButton)
        m_rightDragged = m_rightPressed;
    if (m_panel)
        m_panel->setCursor(m_block.isValid() ? Qt::DragCopyCursor : Qt::ForbiddenCursor);
}

void GuiBlock::mouseReleaseEvent(QMouseEvent* event)
{
    if (!actsOnEvents())
        return;
    if (m_panel)
        m_panel->unsetCursor();
    if (getPath().empty()) {
        m_leftPressed = m_leftDragged = m_rightPressed = m_rightDragged = false;
    } else if (event->button() == Qt::LeftButton) {
        if (m_leftDragged)
            drop(event->globalPosition());
        m_leftPressed = false;
        m_leftDragged = false;
    } else if (event->button() == Qt::RightButton) {
        // The flag of the right drag stays set: the context-menu event that
        // follows the release finds it and shows no menu.
        if (m_rightDragged)
            drop(event->globalPosition());
        m_rightPressed = false;
    }
    if (event->button() == Qt::RightButton && m_menuAtRelease) {
        m_menuAtRelease = false;
        // Once the release is done, as where the platform sends the menu's
        // event then: a choice in the menu may rebuild the page and its tiles.
        QMetaObject::invokeMethod(
            m_page, [page = m_page] { page->handleShowContextMenuForSelectedBlock(); }, Qt::QueuedConnection);
    }
}

void GuiBlock::drop(const QPointF& globalPosition)
{
    // The window's own rectangle, edges included, takes no drop; the host
    // gets the point as it came and maps it into the model.
    const QPoint rounded(int(globalPosition.x() + 0.5), int(globalPosition.y() + 0.5));
    const QRect window = m_browser->getPosition();
    if (rounded.x() >= window.left() && rounded.x() <= window.left() + window.width() &&
        rounded.y() >= window.top() && rounded.y() <= window.top() + window.height())
        return;
    const std::string system = BrowserUtils::tdSysNameUnderMouse();
    if (system.empty())
        return;
    m_browser->internalSetCursor(Qt::WaitCursor);
    loadRootLibrary();
    BrowserUtils::dropBlock(getPath(), system, globalPosition.x(), globalPosition.y());
    m_browser->internalUnsetCursor();
}

void GuiBlock::mouseDoubleClickEvent(QMouseEvent*)
{
    if (actsOnEvents())
        respondToMouseDoubleClick();
}

bool GuiBlock::takeContextMenuFlag()
{
    const bool wasSet = m_rightDragged;
    m_rightDragged = false;
    return wasSet;
}

void GuiBlock::loadRootLibrary() { m_browser->internalLoadRootLibrary(getPath(), getDisplayPath()); }

void GuiBlock::respondToMouseDoubleClick()
{
    loadRootLibrary();
    BrowserUtils::openBlockDialog(getPath(), BlockDialogType::Default);
}

void GuiBlock::showBlockHelp()
{
    loadRootLibrary();
    BrowserUtils::displayHTMLBlockHelp(getPath().c_str());
}

void GuiBlock::showBlockParams()
{
    loadRootLibrary();
    BrowserUtils::openBlockDialog(getPath(), BlockDialogType::Parameters);
}

void GuiBlock::addToCurrentOpenSystem()
{
    loadRootLibrary();
    std::string system;
    ModelType type = ModelType::Unknown;
    bool locked = false;
    BrowserUtils::getCurrentOpenSystemWithTypeAndLockState(system, type, locked);
    if (system.empty() || locked)
        system = BrowserUtils::openNewSystem(ModelType::Model);
    BrowserUtils::addBlockToModel(getPath(), system);
}

void GuiBlock::goToParent()
{
    loadRootLibrary();
    m_browser->goToParent();
}

} // namespace LibraryBrowser
