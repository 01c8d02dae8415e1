#include "gui/BrowserActionTable.h"

#include "frame/MessageCatalogue.h"

namespace LibraryBrowser {

const std::vector<BrowserActionSpec>& browserActionTable()
{
    using A = BrowserAction;
    using M = BrowserMenu;
    namespace I = MessageId;
    static const std::vector<BrowserActionSpec> table{
        {A::NewModel, M::FileNew, I::TDLB_GuiFileMenuSubNewModel, "Ctrl+N", "/new.png",
         I::TDLB_GuiToolBarNewModelToolTip, false, false, false},
        {A::NewLibrary, M::FileNew, I::TDLB_GuiFileMenuSubNewLibrary, "", "", I::TDLB_GuiToolBarNewLibraryToolTip,
         false, false, false},
        {A::Open, M::File, I::TDLB_GuiFileMenuOpen, "Ctrl+O", "/open.png", I::TDLB_ToolBarOpenModelToolTip, false,
         false, false},
        {A::Close, M::File, I::TDLB_FileMenuClose, "", "", 0, false, false, false},
        {A::Preferences, M::File, I::TDLB_GuiFileMenuPreferences, "", "", 0, false, true, false},
        {A::Find, M::Edit, I::TDLB_GuiEditMenuFindNoString, "Ctrl+F", "", 0, false, false, true},
        {A::AddBlock, M::Edit, I::TDLB_GuiEditMenuAddBlockToNewModel, "Ctrl+I", "", 0, false, false, false},
        {A::SelectInLibrary, M::Edit, I::TDLB_GuiEditMenuSelectCurrentResultsBlockInLibraryView, "Ctrl+R", "", 0,
         false, false, false},
        {A::ShowDescription, M::View, I::TDLB_ViewMenuShowBlockDescriptions, "", "", 0, true, false, false},
        {A::SearchList, M::View, I::TDLB_ViewMenuSearchResults, "", "", 0, true, false, false},
        {A::StayOnTop, M::View, I::TDLB_GuiViewMenuStayOnTop, "", "", I::TDLB_GuiToolBarStayOnTopToolTip, true,
         true, true},
        {A::ListLayout, M::ViewLayout, I::TDLB_GuiViewMenuSubLayoutList, "Ctrl+L", "", I::TDLB_GuiListLayoutToolTip,
         true, false, false},
        {A::GridLayout, M::ViewLayout, I::TDLB_GuiViewMenuSubLayoutGrid, "Ctrl+G", "", I::TDLB_GuiGridLayoutToolTip,
         true, false, false},
        {A::CompactIcons, M::ViewIconSize, I::TDLB_GuiViewMenuSubIconSizeCompact, "Ctrl+1", "",
         I::TDLB_GuiCompactIconsToolTip, true, false, false},
        {A::SmallIcons, M::ViewIconSize, I::TDLB_GuiViewMenuSubIconSizeSmall, "Ctrl+2", "",
         I::TDLB_GuiSmallIconsToolTip, true, false, false},
        {A::MediumIcons, M::ViewIconSize, I::TDLB_GuiViewMenuSubIconSizeMedium, "Ctrl+3", "",
         I::TDLB_GuiMediumIconsToolTip, true, false, false},
        {A::LargeIcons, M::ViewIconSize, I::TDLB_GuiViewMenuIconSizeLarge, "Ctrl+4", "",
         I::TDLB_GuiLargeIconsToolTip, true, false, false},
        {A::IncreaseFont, M::View, I::TDLB_GuiViewMenuIncreaseFontSize, "Ctrl++|Ctrl+=", "", 0, false, false,
         false},
        {A::DecreaseFont, M::View, I::TDLB_GuiViewMenuDecreaseFontSize, "Ctrl+-|Ctrl+_", "", 0, false, false,
         true},
        {A::BlockParameters, M::View, I::TDLB_GuiViewMenuBlockParameters, "", "", 0, false, false, true},
        {A::Refresh, M::View, I::TDLB_GuiViewMenuRefreshTreeView, "", "", 0, false, false, false},
        {A::BlockHelp, M::Help, I::TDLB_GuiHelpMenuBlock, "", "", 0, false, false, false},
        {A::LibraryBrowserHelp, M::Help, I::TDLB_GuiHelpMenuLibBrowse, "", "", 0, false, false, false},
        {A::TandrilHelp, M::Help, I::TDLB_GuiHelpMenuTandril, "", "", 0, false, false, false},
        {A::RegularExpression, M::SearchOptions, I::TDLB_GuiSearchOptRegularExpression, "", "", 0, true, false,
         false},
        {A::MatchCase, M::SearchOptions, I::TDLB_GuiSearchOptMatchCase, "", "", 0, true, false, false},
        {A::WholeWord, M::SearchOptions, I::TDLB_GuiSearchOptWholeWord, "", "", 0, true, false, false},
    };
    return table;
}

const BrowserActionSpec& browserActionSpec(BrowserAction id)
{
    return browserActionTable()[std::size_t(id)];
}

std::uint32_t browserMenuTitle(BrowserMenu menu)
{
    switch (menu) {
    case BrowserMenu::File: return MessageId::TDLB_GuiFileMenuFile;
    case BrowserMenu::FileNew: return MessageId::TDLB_GuiFileMenuSubNew;
    case BrowserMenu::Edit: return MessageId::TDLB_GuiEditMenuEdit;
    case BrowserMenu::View: return MessageId::TDLB_ViewMenuView;
    case BrowserMenu::ViewLayout: return MessageId::TDLB_GuiViewMenuSubLayoutMenu;
    case BrowserMenu::ViewIconSize: return MessageId::TDLB_GuiViewMenuSubIconSize;
    case BrowserMenu::Help: return MessageId::TDLB_HelpMenuHelp;
    case BrowserMenu::SearchOptions: return MessageId::TDLB_GuiSearchOptionsToolTip;
    }
    return 0;
}

BrowserMenu browserMenuParent(BrowserMenu menu)
{
    switch (menu) {
    case BrowserMenu::FileNew: return BrowserMenu::File;
    case BrowserMenu::ViewLayout:
    case BrowserMenu::ViewIconSize: return BrowserMenu::View;
    default: return menu;
    }
}

} // namespace LibraryBrowser
