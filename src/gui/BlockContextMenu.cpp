#include "gui/BlockContextMenu.h"

#include "frame/MessageCatalogue.h"
#include "gui/BlockHistory.h"
#include "gui/BlocksPage.h"
#include "gui/BlocksPageHost.h"
#include "gui/BrowserHostCommands.h"
#include "gui/GuiSubsystem.h"

#include <QAction>
#include <QMenu>

namespace LibraryBrowser {

using namespace BrowserUtils;

OpenSystemState OpenSystemState::current()
{
    OpenSystemState state;
    getCurrentOpenSystemWithTypeAndLockState(state.name, state.type, state.locked);
    return state;
}

std::vector<BlockContextMenu::Entry> BlockContextMenu::entriesFor(const GuiBlock& tile, bool onResultsPage,
                                                                  bool nodeHasParent, const OpenSystemState& system)
{
    std::vector<Entry> entries;
    if (tile.isSubsystem()) {
        if (!onResultsPage && nodeHasParent)
            entries.push_back({Action::GoToParent, xlatedMessageFromId(MessageId::TDLB_GuiContextMenuGoToParent), {}});
        if (onResultsPage)
            entries.push_back({Action::SelectInLibraryView,
                               xlatedMessageFromId(MessageId::TDLB_GuiContextMenuSelectInLibraryView), "Ctrl+R"});
        entries.push_back({Action::OpenLibrary,
                           xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiContextMenuOpenLibrary,
                                                          escapeAmpersands(tile.getDisplayName())),
                           {}, !entries.empty()});
        return entries;
    }
    std::string add;
    if (system.isUsable() && system.type == ModelType::Library)
        add = xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiContextMenuAddBlockToLibrary, system.name);
    else if (system.isUsable() && system.type == ModelType::Model)
        add = xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiContextMenuAddBlockToModel, system.name);
    else
        add = xlatedMessageFromId(MessageId::TDLB_GuiContextMenuAddBlockToNewModel);
    entries.push_back({Action::AddToCurrentSystem, add, "Ctrl+I"});
    entries.push_back({Action::ShowHelp,
                       xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiContextMenuHelpForBlock, tile.getDisplayName()),
                       {}});
    if (!onResultsPage && nodeHasParent)
        entries.push_back({Action::GoToParent, xlatedMessageFromId(MessageId::TDLB_GuiContextMenuGoToParent), {}});
    if (onResultsPage)
        entries.push_back({Action::SelectInLibraryView,
                           xlatedMessageFromId(MessageId::TDLB_GuiContextMenuSelectInLibraryView), "Ctrl+R"});
    entries.push_back(
        {Action::ShowParams, xlatedMessageFromId(MessageId::TDLB_GuiContextMenuBlockParameters), {}, true});
    return entries;
}

BlockContextMenu::Entry BlockContextMenu::favouriteEntry(bool isFavourite)
{
    if (isFavourite)
        return {Action::RemoveFavourite, "Remove from Favorites", {}, true};
    return {Action::AddFavourite, "Add to Favorites", {}, true};
}

std::string BlockContextMenu::addEntryLabel(const OpenSystemState& system)
{
    if (!system.isUsable())
        return xlatedMessageFromId(MessageId::TDLB_GuiEditMenuAddBlockToNewModel);
    switch (system.type) {
    case ModelType::Library:
        return xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiEditMenuAddBlockToLibrary, system.name);
    case ModelType::Model:
        return xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiEditMenuAddBlockToModel, system.name);
    case ModelType::Unknown:
        break;
    }
    return {};
}

bool BlockContextMenu::canAddToCurrentOpenSystem(const GuiBlock* selection, ModelType type)
{
    if (!selection)
        return false;
    return !selection->isSubsystem() || type == ModelType::Library;
}

void BlockContextMenu::exec(QMenu& menu, GuiBlock& tile, BlocksPageHost& browser, const QPoint& globalPosition)
{
    const bool onResults = tile.getPage() && tile.getPage()->isResultsPage();
    const OpenSystemState system = OpenSystemState::current();
    menu.clear();
    std::vector<Entry> entries =
        entriesFor(tile, onResults, browser.nodeHasParent(browser.getCurrentNodeUID()), system);
    BlockHistory* history = browser.internalBlockHistory();
    if (history && !tile.isSubsystem())
        entries.push_back(favouriteEntry(history->isFavourite(tile.getPath())));
    for (const Entry& entry : entries) {
        if (entry.separatorBefore)
            menu.addSeparator();
        QAction* action = menu.addAction(QString::fromStdString(entry.label));
        action->setData(int(entry.action));
        if (!entry.accelerator.empty())
            action->setShortcut(QKeySequence(QString::fromStdString(entry.accelerator)));
    }
    const QAction* chosen = menu.exec(globalPosition);
    if (!chosen)
        return;
    switch (Action(chosen->data().toInt())) {
    case Action::AddToCurrentSystem:
        tile.addToCurrentOpenSystem();
        break;
    case Action::ShowHelp:
        tile.showBlockHelp();
        break;
    case Action::GoToParent:
        tile.goToParent();
        break;
    case Action::SelectInLibraryView:
        browser.internalSelectInLibraryView(&tile);
        break;
    case Action::ShowParams:
        tile.showBlockParams();
        break;
    case Action::AddFavourite:
    case Action::RemoveFavourite:
        if (history && !history->setFavourite(tile.getPath(), Action(chosen->data().toInt()) == Action::AddFavourite))
            browser.internalSetStatusBarMessage(history->saveFailureMessage().toStdString());
        break;
    case Action::OpenLibrary:
        if (tile.isSubsystem())
            static_cast<GuiSubsystem&>(tile).openTandrilLib();
        break;
    }
}

} // namespace LibraryBrowser
