#pragma once

#include <QWidget>

#include <vector>

namespace LibraryBrowser {

class BlocksPage;
class GuiBlock;

// A panel of tiles in rows and columns. It paints only the tiles that the
// paint event exposes, finds the tile under the mouse and hands it the
// event, and shows a tile's tool tip. Tiles belong to the page; the panel
// only places them, so that a reflow moves tiles without making them anew.
class BlocksPanel : public QWidget {
    Q_OBJECT

public:
    BlocksPanel(BlocksPage* page, QWidget* parent);

    void setGrid(int spacing, int margin);
    // Puts the tile at row and column of cells of its size.
    void addTile(GuiBlock* tile, int row, int column);
    void clearTiles();
    const std::vector<GuiBlock*>& tiles() const { return m_tiles; }
    GuiBlock* tileAt(const QPoint& position) const;
    void updateTile(const GuiBlock* tile);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void setHovered(GuiBlock* tile);
    // The tiles whose rows meet the band from top to bottom.
    std::pair<std::size_t, std::size_t> tilesInBand(int top, int bottom) const;

    BlocksPage* m_page;
    std::vector<GuiBlock*> m_tiles;
    // Row of each tile, in the order added: rows never decrease, so a band
    // of rows is found by binary search.
    std::vector<int> m_rows;
    int m_spacing = 0;
    int m_margin = 0;
    GuiBlock* m_hovered = nullptr;
    GuiBlock* m_pressed = nullptr;
};

} // namespace LibraryBrowser
