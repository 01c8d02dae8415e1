#pragma once

#include "gui/BrowserUtils.h"

#include <QRect>
#include <QSizeF>

namespace LibraryBrowser {

// Where the parts of a tile go, for one layout, icon size and font size: the
// arithmetic of the tile's look, kept apart from painting so that it can be
// checked on its own. Coordinates are relative to the tile.
struct TileMetrics {
    LayoutType layout = LayoutType::Grid;
    IconSize size = IconSize::Compact;
    double points = 10;

    // The tile's height, and its width in the grid (a list item's width
    // depends on its name and the view).
    int height = 0;
    int gridWidth = 0;
    // The part of the tile the icon takes, the box inside it and its margin.
    int iconWidgetWidth = 0;
    int outsideMargin = 0;
    int insideMargin = 0;
    QRect box;
    int spacing = 0;
    int panelMargin = 0;

    static TileMetrics compute(LayoutType layout, IconSize size, double points);

    // The width a list item needs to show a name of that width whole.
    int listWidthFor(int nameWidth) const;
    // The rectangle of the name in a tile of the given width.
    QRect nameRect(int tileWidth) const;
    // Two lines of name (below the icon, or beside it in the compact grid).
    bool twoLineName() const { return layout != LayoutType::List; }
    // Whether the icon box is drawn, and the three stacked boxes of a tile
    // with children (back to front).
    bool drawsBox() const { return size != IconSize::Compact; }
    QRect stackedBox(int depth) const;
    // The x and y radii in pixels of the corners of the selection mark and
    // the hover frame: 0.06 of a tile's width and height; a list item
    // stretched to the view's width keeps them as round as a narrow one.
    QSizeF cornerRadii(int tileWidth) const;
};

} // namespace LibraryBrowser
