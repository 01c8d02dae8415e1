#pragma once

// The module's message catalogue: X(row, mnemonic, English text). A full
// message number is 0x5E0000 plus the row. Row 4 is reserved and holds no
// message. Texts with placeholders are printf formats.

#define TDLB_MESSAGE_CATALOGUE(X) \
    X(1, TDLB_Error1, "Unknown Library Browser error.") \
    X(2, TDLB_GuiLibraryBrowserTitle, "Tandril Library Browser") \
    X(3, TDLB_GuiLibraryBrowserShortTitle, "Library Browser") \
    X(5, TDLB_GuiTreeViewWidgetTitle, "Libraries") \
    X(6, TDLB_GuiSearchResultsWidgetTitle, "Search Results") \
    X(7, TDLB_GuiFileMenuFile, "&File") \
    X(8, TDLB_GuiFileMenuSubNew, "&New") \
    X(9, TDLB_GuiFileMenuSubNewModel, "&Model") \
    X(10, TDLB_GuiFileMenuSubNewLibrary, "&Library") \
    X(11, TDLB_GuiFileMenuOpen, "&Open") \
    X(12, TDLB_FileMenuClose, "&Close") \
    X(13, TDLB_GuiFileMenuPreferences, "&Preferences...") \
    X(14, TDLB_GuiEditMenuEdit, "&Edit") \
    X(15, TDLB_GuiEditMenuFindString, "&Find %s") \
    X(16, TDLB_GuiEditMenuFindNoString, "&Find") \
    X(17, TDLB_GuiEditMenuAddBlockToModel, "Add Selected &Block to %s") \
    X(18, TDLB_GuiEditMenuSelectCurrentResultsBlockInLibraryView, "Select Results &Block in Library View") \
    X(19, TDLB_GuiEditMenuSelectCurrentLibraryBlockInSearchResults, "Select Library Block in Search &Results") \
    X(20, TDLB_GuiEditMenuAddBlockToNewModel, "Add Selected &Block to a New Model") \
    X(21, TDLB_GuiEditMenuAddBlockToLibrary, "Add Selected &Block to Library: %s") \
    X(22, TDLB_GuiEditMenuSelectBlockLeft, "Select &Left") \
    X(23, TDLB_GuiEditMenuSelectBlockRight, "Select &Right") \
    X(24, TDLB_GuiEditMenuSelectBlockUp, "Select &Up") \
    X(25, TDLB_GuiEditMenuSelectBlockDown, "Select &Down") \
    X(26, TDLB_ViewMenuView, "&View") \
    X(27, TDLB_ViewMenuCycleBlocksPage, "&Other Blocks Page") \
    X(28, TDLB_ViewMenuShowBlockDescriptions, "Show Block &Descriptions") \
    X(29, TDLB_ViewMenuSearchResults, "Search Results List") \
    X(30, TDLB_GuiViewMenuStayOnTop, "Stay on Top") \
    X(31, TDLB_GuiViewMenuSubIconSize, "Icon &Size") \
    X(32, TDLB_GuiViewMenuSubIconSizeCompact, "&Compact") \
    X(33, TDLB_GuiViewMenuSubIconSizeSmall, "&Small") \
    X(34, TDLB_GuiViewMenuSubIconSizeMedium, "&Medium") \
    X(35, TDLB_GuiViewMenuIconSizeLarge, "&Large") \
    X(36, TDLB_GuiViewMenuSubLayoutMenu, "&Layout") \
    X(37, TDLB_GuiViewMenuSubLayoutGrid, "&Grid") \
    X(38, TDLB_GuiViewMenuSubLayoutList, "&List") \
    X(39, TDLB_GuiViewMenuSubLayoutModel, "&Model") \
    X(40, TDLB_GuiViewMenuIncreaseFontSize, "&Increase Font Size") \
    X(41, TDLB_GuiViewMenuDecreaseFontSize, "&Decrease Font Size") \
    X(42, TDLB_GuiViewMenuBlockParameters, "Show &Parameters for Selected Block") \
    X(43, TDLB_GuiViewMenuResetPanelPositions, "&Reset Panel Positions") \
    X(44, TDLB_GuiViewMenuRefreshTreeView, "Refresh &Tree View") \
    X(45, TDLB_HelpMenuHelp, "&Help") \
    X(46, TDLB_GuiHelpMenuBlock, "Help for the Selected &Block") \
    X(47, TDLB_GuiHelpMenuLibBrowse, "&Library Browser Help") \
    X(48, TDLB_GuiHelpMenuTandril, "&Tandril Help") \
    X(49, TDLB_GuiToolBarNewModelToolTip, "New model") \
    X(50, TDLB_GuiToolBarNewLibraryToolTip, "New library") \
    X(51, TDLB_ToolBarOpenModelToolTip, "Open model") \
    X(52, TDLB_FileMenuOpenLibraryToolTip, "Open library") \
    X(53, TDLB_GuiEditMenuSelectBlockLeftToolTip, "Select block to the left") \
    X(54, TDLB_GuiEditMenuSelectBlockRightToolTip, "Select block to the right") \
    X(55, TDLB_GuiEditMenuSelectBlockUpToolTip, "Select block upward") \
    X(56, TDLB_GuiEditMenuSelectBlockDownToolTip, "Select block downward") \
    X(57, TDLB_GuiToolBarStayOnTopToolTip, "Stay on top") \
    X(58, TDLB_GuiCompactIconsToolTip, "Icons proportional to font size") \
    X(59, TDLB_GuiSmallIconsToolTip, "Small icons") \
    X(60, TDLB_GuiMediumIconsToolTip, "Medium icons") \
    X(61, TDLB_GuiLargeIconsToolTip, "Large icons") \
    X(62, TDLB_GuiGridLayoutToolTip, "Grid layout") \
    X(63, TDLB_GuiListLayoutToolTip, "List layout") \
    X(64, TDLB_GuiModelLayoutToolTip, "Original library model layout") \
    X(65, TDLB_GuiSearchButtonToolTip, "Search for subsystems and blocks by name (enter at least 2 characters)") \
    X(66, TDLB_GuiSearchTextLabelToolTip, "Search toolbar") \
    X(67, TDLB_GuiSearchEditAreaToolTip, "Enter part of a block name (at least 2 characters)") \
    X(68, TDLB_GuiSearchComboBoxToolTip, "Pull down to see previous searches") \
    X(69, TDLB_GuiRefreshButtonToolTip, "Search the Numora path and refresh the tree view") \
    X(70, TDLB_GuiSearchTextLabel, "Search:") \
    X(71, TDLB_GuiSearchButtonLabel, "Go") \
    X(72, TDLB_GuiRefreshButtonLabel, "Refresh") \
    X(73, TDLB_GuiSearchOptionsToolTip, "Search options") \
    X(74, TDLB_GuiSearchOptMatchCase, "Match case") \
    X(75, TDLB_GuiSearchOptWholeWord, "Match whole word") \
    X(76, TDLB_GuiSearchOptRegularExpression, "Regular expression") \
    X(77, TDLB_GuiSearchBoxPrompt, "Enter search term") \
    X(78, TDLB_GuiBlockDescriptionWidgetTitle, "Block Description") \
    X(79, TDLB_WarningNoBlocksFoundForLibrary, "No blocks/libraries found for '%s'") \
    X(80, TDLB_WarningNoSearchResultsFoundForString, "No search results found for '%s'") \
    X(81, TDLB_WarningNoBlockSelected, "No block is selected") \
    X(82, TDLB_GuiHelpForBrowser, "Drag blocks from the Library Browser into your models.  To search, enter part of the name and press Find") \
    X(83, TDLB_GuiStatusBarReady, "Ready") \
    X(84, TDLB_GuiStatusBarBusy, "Busy") \
    X(85, TDLB_GuiStatusBarLoading, "Loading: %s") \
    X(86, TDLB_GuiStatusBarShowing, "Showing: %s") \
    X(87, TDLB_GuiStatusBarRefreshRepository, "Refreshing repository") \
    X(88, TDLB_GuiStatusBarSearchingForString, "Searching for '%s'") \
    X(89, TDLB_GuiStatusBarNoMatchesForString, "No matches for '%s'") \
    X(90, TDLB_GuiStatusBarNoSearchResults, "No search results") \
    X(91, TDLB_GuiStatusBarSearchResults, "Matches for '%s'    %d blocksets    %d subsystems    %d blocks") \
    X(92, TDLB_GuiStatusBarSearchResultsNowSearching, "Matches for '%s'    %d blocksets    %d subsystems    %d blocks    Searching %s") \
    X(93, TDLB_GuiStatusBarSearchResultsNowShowing, "Matches for '%s'    %d blocksets    %d subsystems    %d blocks    Showing %s") \
    X(94, TDLB_GuiStatusBarSearchResultsNowHiding, "Matches for '%s'    %d blocksets    %d subsystems    %d blocks    Hiding %s") \
    X(95, TDLB_GuiBlocksPageHeaderHideBlocks, "hide") \
    X(96, TDLB_GuiBlocksPageHeaderHideBlocksToolTip, "Hide the matches for this blockset") \
    X(97, TDLB_GuiBlocksPageHeaderShowBlocks, "show") \
    X(98, TDLB_GuiBlocksPageHeaderShowBlocksToolTip, "Show the matches for this blockset") \
    X(99, TDLB_GuiBlocksPageHeaderNumFoundToolTip, "Number of matches found in this blockset") \
    X(100, TDLB_GuiBlocksPageText_SearchOptions, "Search options:") \
    X(101, TDLB_GuiBlocksPageText_MatchWholeWord, "Match whole word") \
    X(102, TDLB_GuiBlocksPageText_MatchCase, "Match case") \
    X(103, TDLB_GuiBlocksPageText_RegularExpression, "Regular expression") \
    X(104, TDLB_GuiContextMenuAddBlockToNewModel, "Add to a new model") \
    X(105, TDLB_GuiContextMenuAddBlockToModel, "Add to %s") \
    X(106, TDLB_GuiContextMenuOpenLibrary, "Open %s library") \
    X(107, TDLB_GuiContextMenuAddBlockToLibrary, "Add to Library: %s") \
    X(108, TDLB_GuiContextMenuBlockParameters, "Block parameters") \
    X(109, TDLB_GuiContextMenuHelpForBlock, "Help for the %s block") \
    X(110, TDLB_GuiContextMenuGoToParent, "Go to parent") \
    X(111, TDLB_GuiContextMenuSelectInLibraryView, "Select in library view") \
    X(112, TDLB_GuiContextMenuSelectInSearchResults, "Select in search results") \
    X(113, TDLB_GuiLibraryBlocksTabLabel_Empty, "Library Blocks (none)") \
    X(114, TDLB_GuiLibraryBlocksTabLabel_Library, "Library: %s") \
    X(115, TDLB_GuiSearchResultsTabLabel_Empty, "Search Results: (none)") \
    X(116, TDLB_GuiSearchResultsTabLabel_Found, "Found: '%s'") \
    X(117, TDLB_GuiSearchResultsTabLabel_NotFound, "Not found: '%s'") \
    X(118, TDLB_GuiRefresh, "Refresh") \
    X(119, TDLB_GuiRefreshTreeViewFor, "Refresh tree view for %s") \
    X(120, TDLB_GuiRefreshBlocksViewFor, "Refresh block view for %s") \
    X(121, TDLB_GuiGeneratingRepositoryForProduct, "Generating repository for %s") \
    X(122, TDLB_GuiLibraryLinkToolTip, "Select %s in the tree view") \
    X(123, TDLB_WarningDialogTitle, "Library Browser Warning") \
    X(124, TDLB_PairValueMismatch, "Expected a cell array of pairs (Option, Value)") \
    X(125, TDLB_InvalidOption, "Option %s is invalid. Possible options are %s.") \
    X(126, TDLB_InvalidValue, "Value %s is invalid. Possible values are %s.") \
    X(127, TDLB_StringTypeExpected, "Expected a string argument.") \
    X(128, TDLB_CycleInPalette, "A cycle was detected in palette %s.") \
    X(129, TDLB_GuiStatusBarSearchCancelled, "Search cancelled: showing the matches found before it stopped")
