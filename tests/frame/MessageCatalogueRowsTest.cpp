// The message catalogue pinned row by row: number, mnemonic and exact
// English text. Texts are what users and translators see; a change here is a
// change of the product's wording and must be deliberate.

#include "frame/MessageCatalogue.h"

#include <gtest/gtest.h>

#include <string>

using namespace LibraryBrowser;

namespace {

struct Row {
    std::uint32_t row;
    const char* mnemonic;
    const char* text;
};

const Row expectedRows[] = {
    {1, "TDLB_Error1", "Unknown Library Browser error."},
    {2, "TDLB_GuiLibraryBrowserTitle", "Tandril Library Browser"},
    {3, "TDLB_GuiLibraryBrowserShortTitle", "Library Browser"},
    {5, "TDLB_GuiTreeViewWidgetTitle", "Libraries"},
    {6, "TDLB_GuiSearchResultsWidgetTitle", "Search Results"},
    {7, "TDLB_GuiFileMenuFile", "&File"},
    {8, "TDLB_GuiFileMenuSubNew", "&New"},
    {9, "TDLB_GuiFileMenuSubNewModel", "&Model"},
    {10, "TDLB_GuiFileMenuSubNewLibrary", "&Library"},
    {11, "TDLB_GuiFileMenuOpen", "&Open"},
    {12, "TDLB_FileMenuClose", "&Close"},
    {13, "TDLB_GuiFileMenuPreferences", "&Preferences..."},
    {14, "TDLB_GuiEditMenuEdit", "&Edit"},
    {15, "TDLB_GuiEditMenuFindString", "&Find %s"},
    {16, "TDLB_GuiEditMenuFindNoString", "&Find"},
    {17, "TDLB_GuiEditMenuAddBlockToModel", "Add Selected &Block to %s"},
    {18, "TDLB_GuiEditMenuSelectCurrentResultsBlockInLibraryView", "Select Results &Block in Library View"},
    {19, "TDLB_GuiEditMenuSelectCurrentLibraryBlockInSearchResults", "Select Library Block in Search &Results"},
    {20, "TDLB_GuiEditMenuAddBlockToNewModel", "Add Selected &Block to a New Model"},
    {21, "TDLB_GuiEditMenuAddBlockToLibrary", "Add Selected &Block to Library: %s"},
    {22, "TDLB_GuiEditMenuSelectBlockLeft", "Select &Left"},
    {23, "TDLB_GuiEditMenuSelectBlockRight", "Select &Right"},
    {24, "TDLB_GuiEditMenuSelectBlockUp", "Select &Up"},
    {25, "TDLB_GuiEditMenuSelectBlockDown", "Select &Down"},
    {26, "TDLB_ViewMenuView", "&View"},
    {27, "TDLB_ViewMenuCycleBlocksPage", "&Other Blocks Page"},
    {28, "TDLB_ViewMenuShowBlockDescriptions", "Show Block &Descriptions"},
    {29, "TDLB_ViewMenuSearchResults", "Search Results List"},
    {30, "TDLB_GuiViewMenuStayOnTop", "Stay on Top"},
    {31, "TDLB_GuiViewMenuSubIconSize", "Icon &Size"},
    {32, "TDLB_GuiViewMenuSubIconSizeCompact", "&Compact"},
    {33, "TDLB_GuiViewMenuSubIconSizeSmall", "&Small"},
    {34, "TDLB_GuiViewMenuSubIconSizeMedium", "&Medium"},
    {35, "TDLB_GuiViewMenuIconSizeLarge", "&Large"},
    {36, "TDLB_GuiViewMenuSubLayoutMenu", "&Layout"},
    {37, "TDLB_GuiViewMenuSubLayoutGrid", "&Grid"},
    {38, "TDLB_GuiViewMenuSubLayoutList", "&List"},
    {39, "TDLB_GuiViewMenuSubLayoutModel", "&Model"},
    {40, "TDLB_GuiViewMenuIncreaseFontSize", "&Increase Font Size"},
    {41, "TDLB_GuiViewMenuDecreaseFontSize", "&Decrease Font Size"},
    {42, "TDLB_GuiViewMenuBlockParameters", "Show &Parameters for Selected Block"},
    {43, "TDLB_GuiViewMenuResetPanelPositions", "&Reset Panel Positions"},
    {44, "TDLB_GuiViewMenuRefreshTreeView", "Refresh &Tree View"},
    {45, "TDLB_HelpMenuHelp", "&Help"},
    {46, "TDLB_GuiHelpMenuBlock", "Help for the Selected &Block"},
    {47, "TDLB_GuiHelpMenuLibBrowse", "&Library Browser Help"},
    {48, "TDLB_GuiHelpMenuTandril", "&Tandril Help"},
    {49, "TDLB_GuiToolBarNewModelToolTip", "New model"},
    {50, "TDLB_GuiToolBarNewLibraryToolTip", "New library"},
    {51, "TDLB_ToolBarOpenModelToolTip", "Open model"},
    {52, "TDLB_FileMenuOpenLibraryToolTip", "Open library"},
    {53, "TDLB_GuiEditMenuSelectBlockLeftToolTip", "Select block to the left"},
    {54, "TDLB_GuiEditMenuSelectBlockRightToolTip", "Select block to the right"},
    {55, "TDLB_GuiEditMenuSelectBlockUpToolTip", "Select block upward"},
    {56, "TDLB_GuiEditMenuSelectBlockDownToolTip", "Select block downward"},
    {57, "TDLB_GuiToolBarStayOnTopToolTip", "Stay on top"},
    {58, "TDLB_GuiCompactIconsToolTip", "Icons proportional to font size"},
    {59, "TDLB_GuiSmallIconsToolTip", "Small icons"},
    {60, "TDLB_GuiMediumIconsToolTip", "Medium icons"},
    {61, "TDLB_GuiLargeIconsToolTip", "Large icons"},
    {62, "TDLB_GuiGridLayoutToolTip", "Grid layout"},
    {63, "TDLB_GuiListLayoutToolTip", "List layout"},
    {64, "TDLB_GuiModelLayoutToolTip", "Original library model layout"},
    {65, "TDLB_GuiSearchButtonToolTip", "Search for subsystems and blocks by name (enter at least 2 characters)"},
    {66, "TDLB_GuiSearchTextLabelToolTip", "Search toolbar"},
    {67, "TDLB_GuiSearchEditAreaToolTip", "Enter part of a block name (at least 2 characters)"},
    {68, "TDLB_GuiSearchComboBoxToolTip", "Pull down to see previous searches"},
    {69, "TDLB_GuiRefreshButtonToolTip", "Search the Numora path and refresh the tree view"},
    {70, "TDLB_GuiSearchTextLabel", "Search:"},
    {71, "TDLB_GuiSearchButtonLabel", "Go"},
    {72, "TDLB_GuiRefreshButtonLabel", "Refresh"},
    {73, "TDLB_GuiSearchOptionsToolTip", "Search options"},
    {74, "TDLB_GuiSearchOptMatchCase", "Match case"},
    {75, "TDLB_GuiSearchOptWholeWord", "Match whole word"},
    {76, "TDLB_GuiSearchOptRegularExpression", "Regular expression"},
    {77, "TDLB_GuiSearchBoxPrompt", "Enter search term"},
    {78, "TDLB_GuiBlockDescriptionWidgetTitle", "Block Description"},
    {79, "TDLB_WarningNoBlocksFoundForLibrary", "No blocks/libraries found for '%s'"},
    {80, "TDLB_WarningNoSearchResultsFoundForString", "No search results found for '%s'"},
    {81, "TDLB_WarningNoBlockSelected", "No block is selected"},
    {82, "TDLB_GuiHelpForBrowser", "Drag blocks from the Library Browser into your models.  To search, enter part of the name and press Find"},
    {83, "TDLB_GuiStatusBarReady", "Ready"},
    {84, "TDLB_GuiStatusBarBusy", "Busy"},
    {85, "TDLB_GuiStatusBarLoading", "Loading: %s"},
    {86, "TDLB_GuiStatusBarShowing", "Showing: %s"},
    {87, "TDLB_GuiStatusBarRefreshRepository", "Refreshing repository"},
    {88, "TDLB_GuiStatusBarSearchingForString", "Searching for '%s'"},
    {89, "TDLB_GuiStatusBarNoMatchesForString", "No matches for '%s'"},
    {90, "TDLB_GuiStatusBarNoSearchResults", "No search results"},
    {91, "TDLB_GuiStatusBarSearchResults", "Matches for '%s'    %d blocksets    %d subsystems    %d blocks"},
    {92, "TDLB_GuiStatusBarSearchResultsNowSearching", "Matches for '%s'    %d blocksets    %d subsystems    %d blocks    Searching %s"},
    {93, "TDLB_GuiStatusBarSearchResultsNowShowing", "Matches for '%s'    %d blocksets    %d subsystems    %d blocks    Showing %s"},
    {94, "TDLB_GuiStatusBarSearchResultsNowHiding", "Matches for '%s'    %d blocksets    %d subsystems    %d blocks    Hiding %s"},
    {95, "TDLB_GuiBlocksPageHeaderHideBlocks", "hide"},
    {96, "TDLB_GuiBlocksPageHeaderHideBlocksToolTip", "Hide the matches for this blockset"},
    {97, "TDLB_GuiBlocksPageHeaderShowBlocks", "show"},
    {98, "TDLB_GuiBlocksPageHeaderShowBlocksToolTip", "Show the matches for this blockset"},
    {99, "TDLB_GuiBlocksPageHeaderNumFoundToolTip", "Number of matches found in this blockset"},
    {100, "TDLB_GuiBlocksPageText_SearchOptions", "Search options:"},
    {101, "TDLB_GuiBlocksPageText_MatchWholeWord", "Match whole word"},
    {102, "TDLB_GuiBlocksPageText_MatchCase", "Match case"},
    {103, "TDLB_GuiBlocksPageText_RegularExpression", "Regular expression"},
    {104, "TDLB_GuiContextMenuAddBlockToNewModel", "Add to a new model"},
    {105, "TDLB_GuiContextMenuAddBlockToModel", "Add to %s"},
    {106, "TDLB_GuiContextMenuOpenLibrary", "Open %s library"},
    {107, "TDLB_GuiContextMenuAddBlockToLibrary", "Add to Library: %s"},
    {108, "TDLB_GuiContextMenuBlockParameters", "Block parameters"},
    {109, "TDLB_GuiContextMenuHelpForBlock", "Help for the %s block"},
    {110, "TDLB_GuiContextMenuGoToParent", "Go to parent"},
    {111, "TDLB_GuiContextMenuSelectInLibraryView", "Select in library view"},
    {112, "TDLB_GuiContextMenuSelectInSearchResults", "Select in search results"},
    {113, "TDLB_GuiLibraryBlocksTabLabel_Empty", "Library Blocks (none)"},
    {114, "TDLB_GuiLibraryBlocksTabLabel_Library", "Library: %s"},
    {115, "TDLB_GuiSearchResultsTabLabel_Empty", "Search Results: (none)"},
    {116, "TDLB_GuiSearchResultsTabLabel_Found", "Found: '%s'"},
    {117, "TDLB_GuiSearchResultsTabLabel_NotFound", "Not found: '%s'"},
    {118, "TDLB_GuiRefresh", "Refresh"},
    {119, "TDLB_GuiRefreshTreeViewFor", "Refresh tree view for %s"},
    {120, "TDLB_GuiRefreshBlocksViewFor", "Refresh block view for %s"},
    {121, "TDLB_GuiGeneratingRepositoryForProduct", "Generating repository for %s"},
    {122, "TDLB_GuiLibraryLinkToolTip", "Select %s in the tree view"},
    {123, "TDLB_WarningDialogTitle", "Library Browser Warning"},
    {124, "TDLB_PairValueMismatch", "Expected a cell array of pairs (Option, Value)"},
    {125, "TDLB_InvalidOption", "Option %s is invalid. Possible options are %s."},
    {126, "TDLB_InvalidValue", "Value %s is invalid. Possible values are %s."},
    {127, "TDLB_StringTypeExpected", "Expected a string argument."},
    {128, "TDLB_CycleInPalette", "A cycle was detected in palette %s."},
    {129, "TDLB_GuiStatusBarSearchCancelled", "Search cancelled: showing the matches found before it stopped"},
};

} // namespace

TEST(MessageCatalogueRows, EveryRowHasItsNumberMnemonicAndText)
{
    const MessageTable& table = MessageCatalogue::table();
    ASSERT_EQ(table.count, 129u);
    EXPECT_EQ(table.facility, 0x5Eu);
    std::uint32_t checked = 0;
    for (const Row& expected : expectedRows) {
        SCOPED_TRACE("row " + std::to_string(expected.row));
        const std::uint32_t i = expected.row - 1;
        EXPECT_EQ(table.numbers[i], 0x5E0000u + expected.row);
        EXPECT_STREQ(table.names[i], expected.mnemonic);
        ASSERT_NE(table.texts[i], nullptr);
        EXPECT_STREQ(table.texts[i], expected.text);
        ++checked;
    }
    EXPECT_EQ(checked, 128u) << "every row but the reserved one";
    // Row 4 is reserved: a number, and nothing else.
    EXPECT_EQ(table.numbers[3], 0x5E0004u);
    EXPECT_STREQ(table.names[3], "");
    EXPECT_EQ(table.texts[3], nullptr);
}
