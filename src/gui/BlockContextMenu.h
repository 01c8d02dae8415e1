#pragma once

#include "gui/BrowserUtils.h"

#include <string>
#include <vector>

class QMenu;
class QPoint;

namespace LibraryBrowser {

class BlocksPageHost;
class GuiBlock;

// The system a block would be added to: what the host says is in front.
struct OpenSystemState {
    std::string name;
    ModelType type = ModelType::Unknown;
    bool locked = false;

    // Asks the host; the empty state when the call fails.
    static OpenSystemState current();
    // Open and unlocked: a block can go straight in.
    bool isUsable() const { return !name.empty() && !locked; }
};

// The entries of a tile's context menu and of the Edit menu's add entry,
// decided from the tile, its page and the system in front; the window turns
// them into a menu. A subsystem tile stands for a library: it only goes into
// a library.
class BlockContextMenu {
public:
    enum class Action {
        AddToCurrentSystem,
        ShowHelp,
        GoToParent,
        SelectInLibraryView,
        ShowParams,
        OpenLibrary,
        AddFavourite,
        RemoveFavourite
    };

    struct Entry {
        Action action;
        std::string label;
        // "Ctrl+I" and the like; empty for none.
        std::string accelerator;
        // A separator comes before the entry.
        bool separatorBefore = false;
    };

    static std::vector<Entry> entriesFor(const GuiBlock& tile, bool onResultsPage, bool nodeHasParent,
                                         const OpenSystemState& system);
    // After the design's entries of a block's menu, behind a separator.
    static Entry favouriteEntry(bool isFavourite);
    // The Edit menu's label of the add entry.
    static std::string addEntryLabel(const OpenSystemState& system);
    static bool canAddToCurrentOpenSystem(const GuiBlock* selection, ModelType type);

    // Fills the menu with the tile's entries and runs the chosen one.
    static void exec(QMenu& menu, GuiBlock& tile, BlocksPageHost& browser, const QPoint& globalPosition);
};

} // namespace LibraryBrowser
