#pragma once

#include <cstdint>
#include <vector>

namespace LibraryBrowser {

// Every command of the window's menus, tool bars and search options.
enum class BrowserAction {
    NewModel,
    NewLibrary,
    Open,
    Close,
    Preferences,
    Find,
    AddBlock,
    SelectInLibrary,
    ShowDescription,
    SearchList,
    StayOnTop,
    ListLayout,
    GridLayout,
    CompactIcons,
    SmallIcons,
    MediumIcons,
    LargeIcons,
    IncreaseFont,
    DecreaseFont,
    BlockParameters,
    Refresh,
    BlockHelp,
    LibraryBrowserHelp,
    TandrilHelp,
    RegularExpression,
    MatchCase,
    WholeWord,
};

// Where an action is listed. Sub-menus sit in their parent where their first
// action comes in the table.
enum class BrowserMenu { File, FileNew, Edit, View, ViewLayout, ViewIconSize, Help, SearchOptions };

struct BrowserActionSpec {
    BrowserAction id;
    BrowserMenu menu;
    std::uint32_t text;
    // Shortcuts separated by "|"; the first is shown in the menu.
    const char* shortcuts;
    // Below the tool-bar icon directory; empty for none.
    const char* icon;
    // 0 for none.
    std::uint32_t toolTip;
    bool checkable;
    bool separatorBefore;
    bool separatorAfter;
};

// The window's actions in menu order: one table makes the menus, the tool
// bars and the option popup.
const std::vector<BrowserActionSpec>& browserActionTable();
const BrowserActionSpec& browserActionSpec(BrowserAction id);
std::uint32_t browserMenuTitle(BrowserMenu menu);
// The menu a sub-menu sits in; the menu itself for a top-level one.
BrowserMenu browserMenuParent(BrowserMenu menu);

} // namespace LibraryBrowser
