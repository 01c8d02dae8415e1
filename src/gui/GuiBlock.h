#pragma once

#include "gui/TileMetrics.h"
#include "repository/Block.h"
#include "repository/BlockIcon.h"

#include <QRect>

#include <string>

class QMouseEvent;
class QPainter;
class QPoint;
class QPointF;

namespace LibraryBrowser {

class BlocksPage;
class BlocksPageHost;
class BlocksPanel;

// One tile on a page: a block's icon, its name, the hover frame and the
// selection mark, and the mouse gestures that select, drag into a model,
// open and ask for the menu. A tile holds no block data but the handle; its
// texts come from there. It is no widget: its panel paints it and hands it
// the mouse events that fall on it.
class GuiBlock {
public:
    GuiBlock(BlocksPageHost* browser, Block block, BlocksPage* page);
    virtual ~GuiBlock();
    GuiBlock(const GuiBlock&) = delete;
    GuiBlock& operator=(const GuiBlock&) = delete;

    // Tiles made so far in the process; pages must not make them on a resize.
    static long long instancesCreated();

    const Block& getBlock() const { return m_block; }
    std::string getName() const { return m_block.getName(); }
    std::string getPath() const { return m_block.getPath(); }
    std::string getDisplayName() const { return m_block.getDisplayName(); }
    std::string getDisplayPath() const;
    std::string getDescription() const { return m_block.getDescription(); }
    virtual bool isSubsystem() const { return false; }
    BlocksPage* getPage() const { return m_page; }
    bool isFromLibraryBlocksPage() const;

    // Takes the icon and the number of children, and gives the tile's width
    // for the page's look (a list item is as wide as its name needs, at
    // least the width the page gives all items).
    int createBlockGraphics(BlocksPanel* panel, BlockIconPtr icon, int children);
    const BlockIconPtr& getIcon() const { return m_icon; }
    int getChildCount() const { return m_children; }
    BlocksPanel* getPanel() const { return m_panel; }

    // The rectangle in the panel; getWidgetPosition is the same in the page.
    QRect geometry() const { return m_geometry; }
    void setGeometry(const QRect& rect) { m_geometry = rect; }
    QRect getWidgetPosition() const;
    // A list item stretched to the view's width.
    void adjustListItemSize(int width);
    int getWidgetWidth() const { return m_widgetWidth; }

    void paint(QPainter& painter, const TileMetrics& metrics, bool selected, bool hovered) const;
    QString toolTip() const;

    // Mouse events in the tile's own coordinates; global positions for the drop.
    void mousePressEvent(QMouseEvent* event);
    void mouseMoveEvent(QMouseEvent* event);
    void mouseReleaseEvent(QMouseEvent* event);
    void mouseDoubleClickEvent(QMouseEvent* event);
    // The right-drag flag that makes the following context-menu event a no-op.
    bool takeContextMenuFlag();
    // The menu asked for at a right press waits for the release, which
    // shows it unless the press became a drag.
    void deferContextMenuToRelease() { m_menuAtRelease = true; }
    void clearContextMenuFlag() { m_rightDragged = false; }

    virtual void respondToMouseDoubleClick();
    void showBlockHelp();
    void showBlockParams();
    void addToCurrentOpenSystem();
    void goToParent();

protected:
    BlocksPageHost* browser() const { return m_browser; }
    void loadRootLibrary();
    // Remembers the block among those added to a model last.
    void noteAdded();

private:
    bool actsOnEvents() const;
    void drop(const QPointF& globalPosition);

    BlocksPageHost* m_browser;
    Block m_block;
    BlocksPage* m_page;
    BlocksPanel* m_panel = nullptr;
    BlockIconPtr m_icon;
    QRect m_geometry;
    int m_children = 0;
    int m_widgetWidth = -1;
    bool m_leftPressed = false;
    bool m_leftDragged = false;
    bool m_rightPressed = false;
    bool m_rightDragged = false;
    bool m_menuAtRelease = false;
};

} // namespace LibraryBrowser
