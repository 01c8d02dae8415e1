#include "gui/BrowserUtils.h"

#include "frame/Messages.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <vector>

namespace LibraryBrowser::BrowserUtils {

namespace {

double& dpiOverride()
{
    static double dpi = 0;
    return dpi;
}

bool isGrid(LayoutType layout) { return layout == LayoutType::Grid; }

// Rows of the tables by layout; the model layout takes the "other" row.
int byLayoutAndSize(LayoutType layout, IconSize size, const int (&list)[4], const int (&grid)[4],
                    const int (&other)[4])
{
    const int column = int(size);
    switch (layout) {
    case LayoutType::List:
        return list[column];
    case LayoutType::Grid:
        return grid[column];
    case LayoutType::Model:
        break;
    }
    return other[column];
}

} // namespace

double getScreenDPI()
{
    if (dpiOverride() > 0)
        return dpiOverride();
    if (qGuiApp)
        if (const QScreen* screen = QGuiApplication::primaryScreen())
            return screen->logicalDotsPerInch();
    return 96.0;
}

void setScreenDPIOverride(double dotsPerInch) { dpiOverride() = dotsPerInch; }

int getIconOutsideMargin(LayoutType layout, IconSize size)
{
    return byLayoutAndSize(layout, size, {0, 2, 4, 4}, {4, 2, 4, 4}, {4, 4, 4, 4});
}

int getIconInsideMinMargin(LayoutType layout, IconSize size)
{
    return byLayoutAndSize(layout, size, {0, 3, 5, 5}, {0, 4, 5, 5}, {5, 5, 5, 5});
}

int getGridSpacing(LayoutType layout, IconSize size)
{
    return byLayoutAndSize(layout, size, {1, 2, 2, 2}, {2, 4, 6, 7}, {2, 4, 6, 7});
}

int getBlockPanelMargin(LayoutType layout, IconSize size)
{
    // BLOCK_PANEL_MARGIN_LIST_SMALL is exported but the list with small icons
    // takes the default margin: that is the product's look.
    return layout == LayoutType::List && size == IconSize::Compact ? BLOCK_PANEL_MARGIN_LIST_COMPACT
                                                                   : BLOCK_PANEL_MARGIN_DEFAULT;
}

int getHeaderPanelMargin() { return HEADER_PANEL_MARGIN; }
int getHeaderPanelSpacing() { return HEADER_PANEL_SPACING; }
int getHeaderIconSize() { return 16; }
double getTextHeightFactor() { return 7.0 / 6.0; }

double getFontPixelSize(double points) { return points / 72.0 * getScreenDPI(); }

int getIconDoubleLineNameHeight(double points, int margin)
{
    const double pixels = getFontPixelSize(points);
    return int(margin * 1.5 + 6.5 + 2 * (pixels * getTextHeightFactor() + 2.0));
}

int getMinimalBlockWidgetHeight4FontPointSize(double points, int minHeight, int margin)
{
    const double pixels = getFontPixelSize(points);
    return int(std::max(double(minHeight), pixels * getTextHeightFactor()) + 2 * (margin + 1) + 0.5);
}

int getIconWidgetSize(LayoutType layout, IconSize size, double points)
{
    if (layout == LayoutType::List) {
        switch (size) {
        case IconSize::Compact:
            return getMinimalBlockWidgetHeight4FontPointSize(points, ICON_HEIGHT_MINIMUM, 0);
        case IconSize::Small:
            return ICON_WIDGET_SIZE_LIST_SMALL;
        case IconSize::Medium:
            return ICON_WIDGET_SIZE_LIST_MEDIUM;
        case IconSize::Large:
            return ICON_WIDGET_SIZE_LIST_LARGE;
        }
    }
    switch (size) {
    case IconSize::Compact:
        return getIconDoubleLineNameHeight(points, getIconOutsideMargin(layout, size));
    case IconSize::Small:
        return ICON_WIDGET_SIZE_GRID_SMALL;
    case IconSize::Medium:
        return ICON_WIDGET_SIZE_GRID_MEDIUM;
    case IconSize::Large:
        break;
    }
    return ICON_WIDGET_SIZE_GRID_LARGE;
}

double getIconWidgetWidthSansName(LayoutType layout, IconSize size, double points)
{
    return getIconWidgetSize(layout, size, points) * GRID_VIEW_ASPECT_RATIO;
}

int getIconBoxWidth(LayoutType layout, IconSize size, double points)
{
    return int(getIconWidgetWidthSansName(layout, size, points) + 0.5) - 2 * getIconOutsideMargin(layout, size);
}

int getIconWidgetWidth(LayoutType layout, IconSize size, double points)
{
    double width = getIconWidgetWidthSansName(layout, size, points);
    if (isGrid(layout) && size == IconSize::Compact)
        width *= ICON_NAME_WIDTH_RATIO_GRID_COMPACT;
    return int(width + 0.5);
}

int getIconWidgetHeightSansName(LayoutType layout, IconSize size, double points)
{
    return getIconWidgetSize(layout, size, points);
}

int getIconBoxHeight(LayoutType layout, IconSize size, double points)
{
    return getIconWidgetHeightSansName(layout, size, points) - 2 * getIconOutsideMargin(layout, size);
}

int getIconWidgetHeight(LayoutType layout, IconSize size, double points)
{
    int height = getIconWidgetSize(layout, size, points);
    // Only the grid with real icons puts the name below the icon.
    if (isGrid(layout) && size != IconSize::Compact)
        height += getIconDoubleLineNameHeight(points, getIconOutsideMargin(layout, size));
    return height;
}

int getListIconWidth(LayoutType layout, IconSize size, int nameWidth, double points)
{
    return getIconWidgetWidth(layout, size, points) + 2 * getIconOutsideMargin(layout, size) +
           getIconInsideMinMargin(layout, size) + nameWidth;
}

int getHeaderHeight(const QFont& font)
{
    return getMinimalBlockWidgetHeight4FontPointSize(font.pointSizeF(), 16, 2);
}

int calculateMaxNumIconCols(LayoutType layout, IconSize size, int panelWidth, double points)
{
    if (layout == LayoutType::List)
        return 1;
    const int width = getIconWidgetWidth(layout, size, points);
    return (panelWidth - width - 2 * getBlockPanelMargin(layout, size)) / (width + getGridSpacing(layout, size)) +
           1;
}

double computeIconScaleFactor(double width, double height, double boxWidth, double boxHeight, double margin)
{
    if (width > 0 && height > 0)
        return std::min((boxWidth - 2 * margin) / (width + 6.0), (boxHeight - 2 * margin) / (height + 6.0));
    return 1.0;
}

IconPlacement fitBlockIconToBox(double iconWidth, double iconHeight, int stackDepth, LayoutType layout,
                                IconSize size, double points)
{
    const int boxWidth = getIconBoxWidth(layout, size, points);
    const int boxHeight = getIconBoxHeight(layout, size, points);
    // Room for the stacked look of a tile with children.
    const int extra = size != IconSize::Compact && stackDepth >= 1 ? 5 : 0;
    const int outside = getIconOutsideMargin(layout, size);
    IconPlacement placement;
    placement.scale = computeIconScaleFactor(iconWidth, iconHeight, boxWidth - extra, boxHeight - extra,
                                             getIconInsideMinMargin(layout, size));
    placement.x = (boxWidth - iconWidth * placement.scale - extra) * 0.5 + outside;
    if (isGrid(layout) && size == IconSize::Compact)
        placement.x += outside;
    placement.y = outside + (boxHeight - iconHeight * placement.scale - extra) * 0.5;
    return placement;
}

int getFontInfoStringWidth(const QFont& font, const std::string& text)
{
    // Measured with the size in pixels that the points give at 96 dots per
    // inch, which is what the width in points times 4/3 is.
    QFont measured(font);
    measured.setPixelSize(std::max(1, int(std::lround(font.pointSizeF() * 4.0 / 3.0))));
    return int(QFontMetricsF(measured).horizontalAdvance(QString::fromStdString(text)));
}

int getUniqueUID()
{
    static int counter = 0;
    return ++counter;
}

std::string getNumoraroot()
{
    static const std::string root = Platform::environment().root();
    return root;
}

std::string getToolBarIconDir(bool absolute)
{
    static const std::string relative = "toolbox/shared/ostrel/resources";
    return absolute ? getNumoraroot() + "/" + relative : relative;
}

void strReplace(std::string& text, const std::string& from, const std::string& to)
{
    if (from.empty())
        return;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

int computeLongestWordInString(const std::string& text, std::string& word)
{
    word.clear();
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(' ', start);
        if (end == std::string::npos)
            end = text.size();
        if (end - start > word.size())
            word = text.substr(start, end - start);
        start = end + 1;
    }
    return int(word.size());
}

std::string tokenizeBlockPath(const std::string& path, TokenType type)
{
    if (path.empty())
        return {};
    // A doubled slash belongs to a name; a run of odd length ends the name.
    std::vector<std::string> names(1);
    for (std::size_t i = 0; i < path.size();) {
        if (path[i] != '/') {
            names.back() += path[i++];
            continue;
        }
        std::size_t run = 0;
        while (i + run < path.size() && path[i + run] == '/')
            ++run;
        if (run % 2 == 0)
            names.back().append(run, '/');
        else
            names.emplace_back();
        i += run;
    }
    switch (type) {
    case TokenType::LastName:
        return names.back();
    case TokenType::RootName:
        return names.front();
    case TokenType::ParentPath:
        break;
    }
    std::string parent;
    for (std::size_t i = 0; i + 1 < names.size(); ++i)
        parent += (i ? "/" : "") + names[i];
    return parent;
}

std::string xlatedMessageFromId(std::uint32_t id) { return Messages::xlatedMessageFromId(id); }

std::string xlatedMessageFromIdAndCharStar(std::uint32_t id, const std::string& text)
{
    return Messages::xlatedMessageFromIdAndCharStar(id, text);
}

std::string xlatedMessageFromIdAndCharStarAndTwoInts(std::uint32_t id, const std::string& text, int first,
                                                     int second)
{
    return Messages::xlatedMessageFromIdAndCharStarAndTwoInts(id, text, first, second);
}

std::string xlatedMessageFromIdAndCharStarAndThreeInts(std::uint32_t id, const std::string& text, int first,
                                                       int second, int third)
{
    return Messages::xlatedMessageFromIdAndCharStarAndThreeInts(id, text, first, second, third);
}

std::string xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(std::uint32_t id, const std::string& text,
                                                                  int first, int second, int third,
                                                                  const std::string& last)
{
    return Messages::xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(id, text, first, second, third, last);
}

std::string escapeAmpersands(const std::string& text)
{
    std::string escaped = text;
    strReplace(escaped, "&", "&&");
    return escaped;
}

} // namespace LibraryBrowser::BrowserUtils
