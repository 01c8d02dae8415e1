#pragma once

#include "gui/BrowserUtils.h"
#include "gui/TileMetrics.h"
#include "repository/RepositoryReader.h"
#include "repository/TandrilObjectIterator.h"

#include <QColor>
#include <QFont>
#include <QObject>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class QKeyEvent;
class QScrollArea;
class QWidget;

namespace LibraryBrowser {

class BlocksPageHost;
class BlocksPanel;
class GuiBlock;

using GuiBlockPtr = std::shared_ptr<GuiBlock>;

// The base of the window's two pages of tiles: a scroll view with one panel
// in it, the tiles in display order, the selected one, and the arithmetic of
// columns, sizes and keyboard moves. The window asks a page to show a tree
// node or a result set; the page asks the window for the look and the data.
class BlocksPage : public QObject {
    Q_OBJECT

public:
    BlocksPage(BlocksPageHost& browser, LayoutType layout, IconSize size, const QFont& font,
               const QColor& backgroundColor, QWidget* parent = nullptr);
    ~BlocksPage() override;

    // The page's widget in the window's tab container.
    QScrollArea* getScrollView() const { return m_scrollView; }
    QWidget* getMainPanel() const { return m_mainPanel; }
    virtual bool isResultsPage() const = 0;

    // The viewport's size, copied to the effective size.
    virtual void getViewSize();
    virtual void updateBlocks(int nodeId) = 0;
    virtual void preComputeContentsSize() = 0;
    virtual void adjustPageSizes() = 0;
    virtual void reflowBlocks() = 0;
    virtual void setDefaultSelectedBlock() = 0;
    virtual void handleOnResize();
    // A page resized while the other one was current is laid out now.
    void layOutIfResizedWhileHidden();
    // True when the key was the page's.
    virtual bool handleOnKeyPressEvent(QKeyEvent* event);
    virtual void handleShowContextMenuForSelectedBlock();
    // Return on the page: the selected tile does what a double click does.
    void openSelectedBlock();
    // The page has the keyboard: its selected tile shows the focus mark.
    bool hasFocusMark() const;
    virtual void showContextMenuForSelectedBlock();

    bool isValid() const;
    void setValid();
    bool isVisible() const;
    void hidePageBlocks();
    void showPageBlocks();
    virtual void clearBlocks();

    void setSelectedBlock(GuiBlock* tile);
    virtual void selectBlockLeft();
    virtual void selectBlockRight();
    virtual void selectBlockUp();
    virtual void selectBlockDown();
    void selectBlockHome();
    void selectBlockEnd();
    void selectBlockByInitial(char key);
    GuiBlock* getSelectedBlock() const { return m_selectedBlock; }
    GuiBlock* getBlockByPathName(const std::string& displayPath) const;
    void ensureSelectedBlockVisible();
    void setSavedBlockSelectionName(const std::string& displayPath) { m_savedBlockSelectionName = displayPath; }

    std::vector<std::string> getBlocksDisplayPathNames() const;
    BlockIconPtr getIconScene4GuiBlock(const GuiBlock* tile) const;
    const std::string& getStatusMessage() const { return m_statusMessage; }
    // The window's own texts for the page (a search's progress and result).
    void setStatusMessage(const std::string& text) { m_statusMessage = text; }

    // The look the tiles are made for, as last made valid.
    const TileMetrics& getTileMetrics() const { return m_metrics; }
    const QFont& getPageFont() const { return m_font; }
    // The page's font at the size in pixels that the screen gives its points.
    const QFont& getNameFont() const { return m_nameFont; }
    QColor getBackgroundColor() const { return m_backgroundColor; }
    // The view's background runs from the first colour at its top to the
    // second at its bottom, whatever is scrolled; the preferences dialog sets
    // them again.
    void setBackgroundColors(const QColor& top, const QColor& bottom);
    int getEffectiveListItemWidth() const { return m_effectiveListItemWidth; }
    int getNumIconCols() const { return m_numIconCols; }
    int getContentsWidth() const { return m_contentsWidth; }
    int getContentsHeight() const { return m_contentsHeight; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

    BlocksPageHost& browser() const { return m_browser; }
    virtual void createMainPanel();
    // A panel taken out of the view at clearBlocks, its tiles gone.
    virtual void disposePanel(QWidget* panel);
    // Makes a tile per object of the iterator that has an icon, up to
    // numBlocks, into the panel and the list; row and column run on.
    int addBlocksToPanel(TandrilObjectIterator iterator, BlocksPanel* panel, std::vector<GuiBlockPtr>& tiles,
                         int numBlocks, int& row, int& column);
    int preComputeNumIconCols(LayoutType layout, IconSize size, double points, int numBlocks);
    int preComputeListViewWidgetWidth(const std::string& text) const;
    void preComputeMinMaxSizes4BlocksPanel(int numBlocks, int& minWidth, int& minHeight, int& maxWidth,
                                           int& maxHeight);
    void setPanelPosition();
    int internalGetUsableScrollbarThickness() const;
    void selectIndex(int index);
    // After a fill: the tile of the kept selection name (which is used up),
    // else the first tile, as a kept name may belong to another node; null on
    // an empty page.
    GuiBlock* takeSavedOrFirstBlock();
    int selectedIndex() const;

    BlocksPageHost& m_browser;
    QScrollArea* m_scrollView = nullptr;
    QWidget* m_mainPanel = nullptr;
    LayoutType m_layoutType;
    IconSize m_iconSize;
    QFont m_font;
    QFont m_nameFont;
    TileMetrics m_metrics;
    QColor m_backgroundColor;
    std::unordered_map<std::string, GuiBlockPtr> m_blocksByPath;
    std::vector<GuiBlockPtr> m_blocks;
    IconTable m_icons;
    GuiBlock* m_selectedBlock = nullptr;
    std::string m_longestName;
    std::string m_savedBlockSelectionName;
    std::string m_statusMessage;
    int m_numIconCols = 0;
    int m_maxNumIconCols = -1;
    int m_listViewWidth = -1;
    int m_effectiveListItemWidth = -1;
    int m_numBlocks = -1;
    int m_minimumHeight = -1;
    int m_viewWidth = -1;
    int m_viewHeight = -1;
    int m_contentsWidth = -1;
    int m_contentsHeight = -1;
    int m_effectiveViewWidth = -1;
    int m_effectiveViewHeight = -1;
    bool m_viewMeasured = false;
    bool m_resizedWhileHidden = false;
};

} // namespace LibraryBrowser
