#include "gui/LibraryBlocksPage.h"

#include "frame/MessageCatalogue.h"
#include "gui/BlocksPageHost.h"
#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"
#include "repository/search/BlockTypeCriteria.h"
#include "repository/search/TandrilObjectSearchIterator.h"
#include "model/BlockImpl.h"

#include <QScrollArea>

#include <cmath>

namespace LibraryBrowser {

using namespace BrowserUtils;

void LibraryBlocksPage::updateBlocks(int nodeId)
{
    if (nodeId < 1)
        return;
    const Block node = m_browser.getTreeNodeBlock(nodeId);
    if (node.isNull())
        return;
    RepositoryReader* reader = m_browser.getReader();
    if (!reader)
        return;
    const TandrilObject object(node);
    getViewSize();
    const LayoutType layout = m_browser.getLayoutType();
    const IconSize size = m_browser.getIconSize();
    const double points = m_browser.getGuiFont().pointSizeF();
    if (nodeId != m_shownNodeId) {
        // The count walks every child: only for another node.
        m_longestName.clear();
        if (layout == LayoutType::List || size == IconSize::Compact) {
            int widest = -1;
            for (TandrilObjectIterator children = reader->getChildrenIterator(object); children.isValidIterator();
                 children.next()) {
                const TandrilObject child = children.current();
                if (!child.isValid())
                    continue;
                const std::string name = child.getDisplayName();
                const int width = getFontInfoStringWidth(m_browser.getGuiFont(), name);
                if (width > widest) {
                    widest = width;
                    m_longestName = name;
                }
            }
        }
        m_numBlocks = int(reader->getChildrenIterator(object).size());
    }
    const int columns = preComputeNumIconCols(layout, size, points, m_numBlocks);
    if (layout == LayoutType::List)
        m_listViewWidth = getListIconWidth(layout, size, getFontInfoStringWidth(m_browser.getGuiFont(), m_longestName),
                                           points);
    if (isValid() && m_iconSize == size) {
        if (nodeId == m_shownNodeId && columns == m_numIconCols) {
            if (GuiBlock* saved = getBlockByPathName(m_savedBlockSelectionName)) {
                m_savedBlockSelectionName.clear();
                setSelectedBlock(saved);
            }
            return;
        }
        if (nodeId == m_shownNodeId) {
            m_numIconCols = columns;
            reflowBlocks();
            return;
        }
    } else {
        setValid();
    }
    m_numIconCols = columns;

    m_shownNodeId = nodeId;
    clearBlocks();
    preComputeContentsSize();
    setPanelPosition();
    m_statusMessage = xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarLoading, node.getDisplayPath());
    m_browser.internalSetStatusBarMessage(m_statusMessage);

    m_icons = reader->getIcons(object);
    auto* panel = static_cast<BlocksPanel*>(m_mainPanel);
    int row = 0;
    int column = 0;
    TandrilObjectIterator subsystems(
        std::make_unique<TandrilObjectSearchIterator>(reader->getChildrenIterator(object),
                                                      std::make_unique<BlockTypeCriteria<SubSystem>>()));
    addBlocksToPanel(subsystems, panel, m_blocks, m_numBlocks, row, column);
    addBlocksToPanel(reader->getChildrenIterator(object, BlockImpl::staticGetTypeName()), panel, m_blocks,
                     m_numBlocks, row, column);
    if (layout == LayoutType::List)
        adjustListItemSizes();

    m_browser.internalSetTabLabel(this, xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiLibraryBlocksTabLabel_Library,
                                                                       escapeAmpersands(node.getDisplayPath())));
    GuiBlock* selection = takeSavedOrFirstBlock();
    showPageBlocks();
    if (selection)
        setSelectedBlock(selection);
    else
        m_browser.internalWarnAboutEmptyLibrary(node.getDisplayName());
    m_statusMessage = xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarShowing, node.getDisplayPath());
    m_browser.internalSetStatusBarMessage(m_statusMessage);
}

void LibraryBlocksPage::preComputeContentsSize()
{
    if (m_layoutType == LayoutType::List) {
        postComputeEffectiveSizeOfListViewPanel();
        return;
    }
    const int w = m_metrics.gridWidth;
    const int h = m_metrics.height;
    const int s = m_metrics.spacing;
    const int m = m_metrics.panelMargin;
    const int c = std::max(1, m_numIconCols);
    m_contentsWidth = (w + s) * c + 2 * m - s;
    m_contentsHeight = 2 * m + int(std::ceil(double(std::max(0, m_numBlocks)) / c)) * (h + s) - s;
}

void LibraryBlocksPage::postComputeEffectiveSizeOfListViewPanel()
{
    const int h = m_metrics.height;
    const int s = m_metrics.spacing;
    const int m = m_metrics.panelMargin;
    const int minimum = std::max(0, m_minimumHeight);
    m_contentsHeight = std::max(minimum, 2 * m + (h + s) * std::max(0, m_numBlocks) - s + minimum);
    m_effectiveViewWidth = m_viewWidth;
    m_effectiveViewHeight = m_viewHeight;
    const int thickness = internalGetUsableScrollbarThickness();
    if (2 * m + m_listViewWidth > m_effectiveViewWidth)
        m_effectiveViewHeight -= thickness;
    if (m_effectiveViewHeight < m_contentsHeight)
        m_effectiveViewWidth -= thickness;
    m_effectiveListItemWidth = std::max(m_effectiveViewWidth - 2 * m, m_listViewWidth);
    m_contentsWidth = std::max(m_effectiveViewWidth, 2 * m + m_listViewWidth);
}

void LibraryBlocksPage::adjustPageSizes()
{
    if (m_layoutType == LayoutType::List)
        adjustListItemSizes();
}

void LibraryBlocksPage::adjustListItemSizes()
{
    postComputeEffectiveSizeOfListViewPanel();
    for (const GuiBlockPtr& tile : m_blocks)
        tile->adjustListItemSize(m_effectiveListItemWidth);
    setPanelPosition();
    if (m_mainPanel)
        m_mainPanel->update();
}

void LibraryBlocksPage::reflowBlocks()
{
    auto* panel = static_cast<BlocksPanel*>(m_mainPanel);
    panel->clearTiles();
    const int columns = std::max(1, m_numIconCols);
    for (std::size_t i = 0; i < m_blocks.size(); ++i)
        panel->addTile(m_blocks[i].get(), int(i) / columns, int(i) % columns);
    preComputeContentsSize();
    setPanelPosition();
    showPageBlocks();
    panel->update();
    ensureSelectedBlockVisible();
}

} // namespace LibraryBrowser
