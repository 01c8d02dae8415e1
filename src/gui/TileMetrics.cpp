#include "gui/TileMetrics.h"

namespace LibraryBrowser {

using namespace BrowserUtils;

TileMetrics TileMetrics::compute(LayoutType layout, IconSize size, double points)
{
    TileMetrics m;
    m.layout = layout;
    m.size = size;
    m.points = points;
    m.height = getIconWidgetHeight(layout, size, points);
    m.gridWidth = getIconWidgetWidth(layout, size, points);
    m.iconWidgetWidth = m.gridWidth;
    if (layout == LayoutType::Grid && size == IconSize::Compact)
        m.iconWidgetWidth = int(getIconWidgetWidthSansName(layout, size, points) + 0.5);
    m.outsideMargin = getIconOutsideMargin(layout, size);
    m.insideMargin = getIconInsideMinMargin(layout, size);
    // The compact grid shifts the icon by one more margin, as the fitting does.
    const int boxX = layout == LayoutType::Grid && size == IconSize::Compact ? 2 * m.outsideMargin : m.outsideMargin;
    m.box = QRect(boxX, m.outsideMargin, getIconBoxWidth(layout, size, points), getIconBoxHeight(layout, size, points));
    m.spacing = getGridSpacing(layout, size);
    m.panelMargin = getBlockPanelMargin(layout, size);
    return m;
}

int TileMetrics::listWidthFor(int nameWidth) const { return getListIconWidth(layout, size, nameWidth, points); }

QRect TileMetrics::nameRect(int tileWidth) const
{
    const int iconHeight = getIconWidgetSize(layout, size, points);
    if (layout == LayoutType::List) {
        const int x = iconWidgetWidth + outsideMargin + insideMargin;
        return QRect(x, 0, std::max(0, tileWidth - x - outsideMargin), height);
    }
    if (size == IconSize::Compact) {
        const int x = box.width() + 2 * outsideMargin + ICON_NAME_OFFSET_COMPACT;
        return QRect(x, outsideMargin, std::max(0, tileWidth - x), height - 2 * outsideMargin);
    }
    return QRect(box.x(), iconHeight, box.width(), height - iconHeight);
}

QRect TileMetrics::stackedBox(int depth) const
{
    // Depth 2 is the back, 0 the front box.
    const int offset = 3 * depth;
    return QRect(box.x() + offset, box.y() + offset, box.width() - 6, box.height() - 6);
}

QSizeF TileMetrics::cornerRadii(int tileWidth) const
{
    constexpr double radius = 0.06;
    if (layout == LayoutType::List) {
        const double stretched = radius / ((tileWidth + 64) * 0.0078125) * 64;
        return {stretched, stretched};
    }
    return {radius * tileWidth, radius * height};
}

} // namespace LibraryBrowser
