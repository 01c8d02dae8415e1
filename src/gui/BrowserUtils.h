#pragma once

#include <QFont>

#include <cstdint>
#include <string>

namespace LibraryBrowser {

enum class LayoutType { List = 0, Grid = 1, Model = 2 };
enum class IconSize { Compact = 0, Small = 1, Medium = 2, Large = 3 };
enum class BlockDialogType { Default = 0, Parameters = 1 };
enum class ModelType { Unknown = 0, Model = 1, Library = 2 };
enum class TokenType { ParentPath = 0, LastName = 1, RootName = 2 };

// What the pages and the window share: the numbers that make the look of a
// tile, the arithmetic from font and icon size to pixels, and text helpers.
// The host commands live in BrowserHostCommands.h.
namespace BrowserUtils {

constexpr int HEADER_PANEL_SPACING = 4;
constexpr int HEADER_PANEL_MARGIN = 2;
constexpr int BLOCK_PANEL_MARGIN_LIST_COMPACT = 1;
constexpr int BLOCK_PANEL_MARGIN_LIST_SMALL = 3;
constexpr int BLOCK_PANEL_MARGIN_DEFAULT = 5;
constexpr int ICON_SPACING_LIST_COMPACT = 1;
constexpr int ICON_SPACING_LIST_DEFAULT = 2;
constexpr int ICON_SPACING_GRID_COMPACT = 2;
constexpr int ICON_SPACING_GRID_SMALL = 4;
constexpr int ICON_SPACING_GRID_MEDIUM = 6;
constexpr int ICON_SPACING_GRID_LARGE = 7;
constexpr int ICON_HEIGHT_MINIMUM = 18;
constexpr int ICON_NAME_OFFSET_COMPACT = 14;
constexpr int ICON_NAME_HEIGHT_DEFAULT = 18;
constexpr double LIST_VIEW_ASPECT_RATIO = 1.570796325;
constexpr double GRID_VIEW_ASPECT_RATIO = 1.570796325;
constexpr double ICON_NAME_WIDTH_RATIO_GRID_COMPACT = 2.414213562373095;
constexpr int ICON_WIDGET_SIZE_LIST_SMALL = 40;
constexpr int ICON_WIDGET_SIZE_LIST_MEDIUM = 56;
constexpr int ICON_WIDGET_SIZE_LIST_LARGE = 84;
constexpr int ICON_WIDGET_SIZE_GRID_SMALL = 54;
constexpr int ICON_WIDGET_SIZE_GRID_MEDIUM = 84;
constexpr int ICON_WIDGET_SIZE_GRID_LARGE = 112;
constexpr int ICON_INSIDE_MARGIN_LIST_COMPACT = 0;
constexpr int ICON_INSIDE_MARGIN_LIST_SMALL = 3;
constexpr int ICON_INSIDE_MARGIN_GRID_SMALL = 4;
constexpr int ICON_INSIDE_MARGIN_DEFAULT = 5;
constexpr int ICON_OUTSIDE_MARGIN_LIST_COMPACT = 0;
constexpr int ICON_OUTSIDE_MARGIN_LIST_SMALL = 2;
constexpr int ICON_OUTSIDE_MARGIN_GRID_SMALL = 2;
constexpr int ICON_OUTSIDE_MARGIN_DEFAULT = 4;
constexpr int SEARCH_HISTORY_LIMIT = 24;

// The screen's logical dots per inch. An override (above 0) fixes it, so that
// pictures and checks made offscreen don't depend on the screen at hand.
double getScreenDPI();
void setScreenDPIOverride(double dotsPerInch);

int getIconOutsideMargin(LayoutType layout, IconSize size);
int getIconInsideMinMargin(LayoutType layout, IconSize size);
int getGridSpacing(LayoutType layout, IconSize size);
int getBlockPanelMargin(LayoutType layout, IconSize size);
int getHeaderPanelMargin();
int getHeaderPanelSpacing();
int getHeaderIconSize();
double getTextHeightFactor();

double getFontPixelSize(double points);
int getIconDoubleLineNameHeight(double points, int margin);
int getMinimalBlockWidgetHeight4FontPointSize(double points, int minHeight, int margin);
int getIconWidgetSize(LayoutType layout, IconSize size, double points);
double getIconWidgetWidthSansName(LayoutType layout, IconSize size, double points);
int getIconBoxWidth(LayoutType layout, IconSize size, double points);
int getIconWidgetWidth(LayoutType layout, IconSize size, double points);
int getIconWidgetHeightSansName(LayoutType layout, IconSize size, double points);
int getIconBoxHeight(LayoutType layout, IconSize size, double points);
int getIconWidgetHeight(LayoutType layout, IconSize size, double points);
int getListIconWidth(LayoutType layout, IconSize size, int nameWidth, double points);
int getHeaderHeight(const QFont& font);
// May be 0 or below for a panel narrower than one tile; callers clamp.
int calculateMaxNumIconCols(LayoutType layout, IconSize size, int panelWidth, double points);
double computeIconScaleFactor(double width, double height, double boxWidth, double boxHeight, double margin);

// Where and how large an icon of the given size is drawn in its tile.
struct IconPlacement {
    double x = 0;
    double y = 0;
    double scale = 1;
};
IconPlacement fitBlockIconToBox(double iconWidth, double iconHeight, int stackDepth, LayoutType layout,
                                IconSize size, double points);

// Pixel width of a text as the pages measure names: the font's width in
// points at 96 dots per inch, whatever the screen.
int getFontInfoStringWidth(const QFont& font, const std::string& text);

int getUniqueUID();
std::string getNumoraroot();
std::string getToolBarIconDir(bool absolute);

void strReplace(std::string& text, const std::string& from, const std::string& to);
int computeLongestWordInString(const std::string& text, std::string& word);
std::string tokenizeBlockPath(const std::string& path, TokenType type);

std::string xlatedMessageFromId(std::uint32_t id);
std::string xlatedMessageFromIdAndCharStar(std::uint32_t id, const std::string& text);
std::string xlatedMessageFromIdAndCharStarAndTwoInts(std::uint32_t id, const std::string& text, int first,
                                                     int second);
std::string xlatedMessageFromIdAndCharStarAndThreeInts(std::uint32_t id, const std::string& text, int first,
                                                       int second, int third);
std::string xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(std::uint32_t id, const std::string& text,
                                                                  int first, int second, int third,
                                                                  const std::string& last);

// "&" doubled, so that a label shows it instead of taking it as a shortcut.
std::string escapeAmpersands(const std::string& text);

} // namespace BrowserUtils
} // namespace LibraryBrowser
