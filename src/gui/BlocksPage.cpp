#include "gui/BlocksPage.h"

#include "gui/BlocksPageHost.h"
#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"
#include "gui/GuiSubsystem.h"
#include "gui/SelectionMoves.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>

#include <cmath>

namespace LibraryBrowser {

using namespace BrowserUtils;

BlocksPage::BlocksPage(BlocksPageHost& browser, LayoutType layout, IconSize size, const QFont& font,
                       const QColor& backgroundColor, QWidget* parent)
    : QObject(parent), m_browser(browser), m_layoutType(layout), m_iconSize(size), m_font(font),
      m_backgroundColor(backgroundColor)
{
    m_scrollView = new QScrollArea(parent);
    m_scrollView->setFocusPolicy(Qt::StrongFocus);
    m_scrollView->setWidgetResizable(false);
    m_scrollView->setBackgroundRole(QPalette::Base);
    QPalette palette = m_scrollView->palette();
    palette.setColor(QPalette::Base, backgroundColor);
    palette.setColor(QPalette::Window, backgroundColor);
    m_scrollView->setPalette(palette);
    m_scrollView->installEventFilter(this);
    m_scrollView->viewport()->installEventFilter(this);
    m_metrics = TileMetrics::compute(layout, size, font.pointSizeF());
    m_nameFont = font;
    m_nameFont.setPixelSize(std::max(1, int(std::lround(getFontPixelSize(font.pointSizeF())))));
}

void BlocksPage::setBackgroundColors(const QColor& top, const QColor& bottom)
{
    m_backgroundColor = top;
    QLinearGradient gradient(0, 0, 0, 1);
    gradient.setCoordinateMode(QGradient::ObjectMode);
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    QPalette palette = m_scrollView->palette();
    palette.setBrush(QPalette::Base, gradient);
    palette.setBrush(QPalette::Window, gradient);
    m_scrollView->setPalette(palette);
    m_scrollView->viewport()->update();
}

BlocksPage::~BlocksPage()
{
    // The scroll view belongs to the widget tree; it goes when its parent goes.
    if (m_scrollView && !m_scrollView->parent())
        delete m_scrollView;
}

void BlocksPage::createMainPanel()
{
    auto* panel = new BlocksPanel(this, nullptr);
    panel->setGrid(getGridSpacing(m_layoutType, m_iconSize), getBlockPanelMargin(m_layoutType, m_iconSize));
    panel->hide();
    m_scrollView->setWidget(panel);
    // The view's background shows through the tiles' panel.
    panel->setAutoFillBackground(false);
    m_mainPanel = panel;
}

void BlocksPage::getViewSize()
{
    // Before the window is laid out for the first time its scroll view has
    // no size of its own yet: the stored rectangle of the panel stands in.
    if (!m_viewMeasured && !m_scrollView->testAttribute(Qt::WA_Resized)) {
        const QRect stored = m_browser.getBlocksGeometry();
        m_viewWidth = stored.width();
        m_viewHeight = stored.height();
    } else {
        m_viewMeasured = true;
        const QSize size = m_scrollView->maximumViewportSize();
        m_viewWidth = size.width();
        m_viewHeight = size.height();
    }
    m_effectiveViewWidth = m_viewWidth;
    m_effectiveViewHeight = m_viewHeight;
}

bool BlocksPage::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        if (watched == m_scrollView)
            return handleOnKeyPressEvent(static_cast<QKeyEvent*>(event));
        break;
    case QEvent::ContextMenu:
        // The menu key is served by the key handler already; the platform's
        // own event for it would open the menu a second time over the first.
        if (static_cast<QContextMenuEvent*>(event)->reason() != QContextMenuEvent::Keyboard)
            handleShowContextMenuForSelectedBlock();
        return true;
    case QEvent::Resize:
        if (watched == m_scrollView)
            handleOnResize();
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        // The selected tile carries the page's focus mark.
        if (watched == m_scrollView && m_selectedBlock && m_selectedBlock->getPanel())
            m_selectedBlock->getPanel()->updateTile(m_selectedBlock);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void BlocksPage::handleOnResize()
{
    // A page behind the other tab is laid out when it is shown again; its
    // texts mustn't reach the window's status bar meanwhile.
    if (m_browser.internalGetCurrentBlocksPage() != this) {
        m_resizedWhileHidden = true;
        return;
    }
    m_resizedWhileHidden = false;
    updateBlocks(m_browser.getCurrentNodeUID());
    adjustPageSizes();
}

void BlocksPage::layOutIfResizedWhileHidden()
{
    if (m_resizedWhileHidden)
        handleOnResize();
}

bool BlocksPage::handleOnKeyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if (modifiers != Qt::NoModifier && modifiers != Qt::ShiftModifier && modifiers != Qt::KeypadModifier)
        return false;
    const int key = event->key();
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9) ||
        key == Qt::Key_Underscore) {
        selectBlockByInitial(char(key));
        return true;
    }
    switch (key) {
    case Qt::Key_Tab:
        m_browser.internalFocusSearchBox();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        openSelectedBlock();
        return true;
    case Qt::Key_Home:
        selectBlockHome();
        return true;
    case Qt::Key_End:
        selectBlockEnd();
        return true;
    case Qt::Key_Left:
        selectBlockLeft();
        return true;
    case Qt::Key_Up:
        selectBlockUp();
        return true;
    case Qt::Key_Right:
        selectBlockRight();
        return true;
    case Qt::Key_Down:
        selectBlockDown();
        return true;
    case Qt::Key_F10:
        if (modifiers != Qt::ShiftModifier)
            return false;
        [[fallthrough]];
    case Qt::Key_Menu:
        Platform::environment().print("Non-WIN32: key(" + std::to_string(key) +
                                      ") calling showContextMenuForSelectedBlock\n");
        showContextMenuForSelectedBlock();
        return true;
    default:
        return false;
    }
}

void BlocksPage::openSelectedBlock()
{
    const int index = selectedIndex();
    if (index < 0)
        return;
    // Going into a subsystem makes the page anew: the tile lives until its
    // own call is done.
    const GuiBlockPtr tile = m_blocks[std::size_t(index)];
    tile->respondToMouseDoubleClick();
}

bool BlocksPage::hasFocusMark() const { return m_scrollView->hasFocus(); }

void BlocksPage::handleShowContextMenuForSelectedBlock() { showContextMenuForSelectedBlock(); }

void BlocksPage::showContextMenuForSelectedBlock()
{
    if (!m_selectedBlock)
        return;
    // Served already by the mouse: a right drag ends in no menu.
    if (m_selectedBlock->takeContextMenuFlag())
        return;
    const QRect rect = m_selectedBlock->getWidgetPosition();
    const double factor = m_layoutType == LayoutType::List ? 0.75 : 0.5;
    const QPoint local(int(rect.x() + rect.height() * 0.5), int(rect.y() + rect.height() * factor));
    m_browser.internalShowBlockContextMenu(m_selectedBlock, m_mainPanel->mapToGlobal(local));
}

bool BlocksPage::isValid() const
{
    const QFont font = m_browser.getGuiFont();
    return m_layoutType == m_browser.getLayoutType() && m_font.family() == font.family() &&
           m_font.pointSizeF() == font.pointSizeF();
}

void BlocksPage::setValid()
{
    m_layoutType = m_browser.getLayoutType();
    m_iconSize = m_browser.getIconSize();
    m_font = m_browser.getGuiFont();
    m_nameFont = m_font;
    m_nameFont.setPixelSize(std::max(1, int(std::lround(getFontPixelSize(m_font.pointSizeF())))));
    m_metrics = TileMetrics::compute(m_layoutType, m_iconSize, m_font.pointSizeF());
}

bool BlocksPage::isVisible() const { return m_mainPanel && m_mainPanel->isVisible(); }

void BlocksPage::hidePageBlocks()
{
    if (m_mainPanel)
        m_mainPanel->hide();
}

void BlocksPage::showPageBlocks()
{
    if (m_mainPanel)
        m_mainPanel->show();
}

void BlocksPage::clearBlocks()
{
    m_blocksByPath.clear();
    if (m_savedBlockSelectionName.empty() && m_selectedBlock)
        m_savedBlockSelectionName = m_selectedBlock->getDisplayPath();
    m_selectedBlock = nullptr;
    // The panel goes before its tiles: hiding it sends a leave event that
    // repaints the tile under the mouse.
    disposePanel(m_scrollView->takeWidget());
    m_mainPanel = nullptr;
    m_blocks.clear();
    createMainPanel();
}

void BlocksPage::disposePanel(QWidget* panel) { delete panel; }

int BlocksPage::addBlocksToPanel(TandrilObjectIterator iterator, BlocksPanel* panel,
                                 std::vector<GuiBlockPtr>& tiles, int numBlocks, int& row, int& column)
{
    panel->hide();
    RepositoryReader* reader = m_browser.getReader();
    int added = 0;
    for (; added < numBlocks && iterator.isValidIterator(); iterator.next()) {
        const TandrilObject object = iterator.current();
        const auto icon = m_icons.find(object);
        if (icon == m_icons.end())
            continue;
        GuiBlockPtr tile;
        int children = 0;
        if (object.isSubSystem()) {
            tile = std::make_shared<GuiSubsystem>(&m_browser, object.toBlock(), this);
            children = int(reader->getChildrenIterator(object).size());
        } else {
            tile = std::make_shared<GuiBlock>(&m_browser, object.toBlock(), this);
        }
        tile->createBlockGraphics(panel, icon->second, children);
        m_blocksByPath[tile->getDisplayPath()] = tile;
        tiles.push_back(tile);
        panel->addTile(tile.get(), row, column);
        if (++column >= std::max(1, m_maxNumIconCols)) {
            column = 0;
            ++row;
        }
        ++added;
    }
    panel->show();
    return added;
}

void BlocksPage::setSelectedBlock(GuiBlock* tile)
{
    if (!tile)
        return;
    if (m_selectedBlock && m_selectedBlock != tile) {
        m_selectedBlock->clearContextMenuFlag();
        if (m_selectedBlock->getPanel())
            m_selectedBlock->getPanel()->updateTile(m_selectedBlock);
    }
    if (m_selectedBlock != tile) {
        m_selectedBlock = tile;
        if (tile->getPanel())
            tile->getPanel()->updateTile(tile);
    }
    m_browser.internalUpdateDescription(tile);
    ensureSelectedBlockVisible();
}

GuiBlock* BlocksPage::takeSavedOrFirstBlock()
{
    GuiBlock* selection = nullptr;
    if (!m_savedBlockSelectionName.empty()) {
        selection = getBlockByPathName(m_savedBlockSelectionName);
        m_savedBlockSelectionName.clear();
    }
    if (!selection && !m_blocks.empty())
        selection = m_blocks.front().get();
    return selection;
}

int BlocksPage::selectedIndex() const
{
    for (std::size_t i = 0; i < m_blocks.size(); ++i)
        if (m_blocks[i].get() == m_selectedBlock)
            return int(i);
    return -1;
}

void BlocksPage::selectIndex(int index)
{
    if (index >= 0 && index < int(m_blocks.size()))
        setSelectedBlock(m_blocks[index].get());
}

void BlocksPage::selectBlockLeft() { selectIndex(SelectionMoves::left(selectedIndex())); }

void BlocksPage::selectBlockRight() { selectIndex(SelectionMoves::right(selectedIndex(), int(m_blocks.size()))); }

void BlocksPage::selectBlockUp()
{
    selectIndex(SelectionMoves::up(selectedIndex(), int(m_blocks.size()), m_numIconCols,
                                   m_layoutType == LayoutType::List));
}

void BlocksPage::selectBlockDown()
{
    selectIndex(SelectionMoves::down(selectedIndex(), int(m_blocks.size()), m_numIconCols,
                                     m_layoutType == LayoutType::List));
}

void BlocksPage::selectBlockHome() { selectIndex(SelectionMoves::home(selectedIndex())); }

void BlocksPage::selectBlockEnd() { selectIndex(SelectionMoves::end(selectedIndex(), int(m_blocks.size()))); }

void BlocksPage::selectBlockByInitial(char key)
{
    std::vector<std::string> names;
    names.reserve(m_blocks.size());
    for (const GuiBlockPtr& tile : m_blocks)
        names.push_back(tile->getDisplayName());
    selectIndex(SelectionMoves::byInitial(selectedIndex(), names, key));
}

GuiBlock* BlocksPage::getBlockByPathName(const std::string& displayPath) const
{
    const auto found = m_blocksByPath.find(displayPath);
    return found == m_blocksByPath.end() ? nullptr : found->second.get();
}

void BlocksPage::ensureSelectedBlockVisible()
{
    if (!m_selectedBlock)
        return;
    const QRectF rect = m_selectedBlock->getWidgetPosition();
    const int x = int(rect.x() + 0.5);
    const int y = int(rect.y() + 0.5);
    const int w = int(rect.width() + 0.5);
    const int h = int(rect.height() + 0.5);
    const int bottom = y + h;
    const QSize view = m_scrollView->viewport()->size();
    m_scrollView->ensureVisible(x, y, 10, 10);
    if (w + 20 <= view.width() && h + 20 <= view.height())
        m_scrollView->ensureVisible(x, bottom, 10, 10);
    else if (w + 10 <= view.width() && h + 10 <= view.height())
        m_scrollView->ensureVisible(x, bottom, 0, 0);
    else
        m_scrollView->ensureVisible(x, y + std::min(h + 10, view.height()), 10, 0);
}

std::vector<std::string> BlocksPage::getBlocksDisplayPathNames() const
{
    std::vector<std::string> names;
    names.reserve(m_blocks.size());
    for (const GuiBlockPtr& tile : m_blocks)
        names.push_back(tile->getDisplayPath());
    return names;
}

BlockIconPtr BlocksPage::getIconScene4GuiBlock(const GuiBlock* tile) const
{
    if (!tile)
        return nullptr;
    const auto found = m_icons.find(TandrilObject(tile->getBlock()));
    return found == m_icons.end() ? nullptr : found->second;
}

int BlocksPage::preComputeNumIconCols(LayoutType layout, IconSize size, double points, int numBlocks)
{
    if (layout == LayoutType::List) {
        m_maxNumIconCols = 1;
        return 1;
    }
    if (m_effectiveViewWidth < 0 || m_effectiveViewWidth > m_viewWidth)
        m_effectiveViewWidth = m_viewWidth;
    if (m_effectiveViewHeight < m_contentsHeight)
        m_effectiveViewWidth = m_viewWidth - internalGetUsableScrollbarThickness();
    m_maxNumIconCols = calculateMaxNumIconCols(layout, size, m_effectiveViewWidth, points);
    return std::max(1, std::min(m_maxNumIconCols, numBlocks));
}

int BlocksPage::preComputeListViewWidgetWidth(const std::string& text) const
{
    return getListIconWidth(m_layoutType, m_iconSize, getFontInfoStringWidth(m_font, text), m_font.pointSizeF());
}

void BlocksPage::preComputeMinMaxSizes4BlocksPanel(int numBlocks, int& minWidth, int& minHeight, int& maxWidth,
                                                   int& maxHeight)
{
    const int w = m_metrics.gridWidth;
    const int h = m_metrics.height;
    const int s = m_metrics.spacing;
    const int m = 2 * m_metrics.panelMargin;
    int columns = std::max(1, std::min(m_maxNumIconCols, numBlocks));
    minWidth = m;
    minHeight = m - s;
    maxHeight = minHeight + int(std::ceil(double(numBlocks) / columns)) * (h + s);
    if (m_layoutType == LayoutType::List) {
        minWidth = m + preComputeListViewWidgetWidth(m_longestName);
        maxWidth = std::max(m + m_listViewWidth, m_effectiveViewWidth);
        return;
    }
    if (maxHeight + m_contentsHeight > m_viewHeight && m_effectiveViewHeight < maxHeight + m_contentsHeight) {
        m_effectiveViewWidth = m_viewWidth - internalGetUsableScrollbarThickness();
        columns = std::max(1, std::min(calculateMaxNumIconCols(m_layoutType, m_iconSize, m_effectiveViewWidth,
                                                               m_font.pointSizeF()),
                                       numBlocks));
        maxHeight = minHeight + int(std::ceil(double(numBlocks) / columns)) * (h + s);
    }
    minWidth = w + m;
    maxWidth = minWidth + (columns - 1) * (w + s);
}

void BlocksPage::setPanelPosition()
{
    // The scroll view places the panel by its scroll bars; only the size is ours.
    if (m_mainPanel)
        m_mainPanel->resize(std::max(0, m_contentsWidth), std::max(0, m_contentsHeight));
}

int BlocksPage::internalGetUsableScrollbarThickness() const
{
    return m_scrollView->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_scrollView->verticalScrollBar());
}

} // namespace LibraryBrowser
