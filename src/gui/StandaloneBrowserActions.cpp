// What the window does with blocks: add to a model, help, parameters, new
// and open, and the selection as scripts move it.

#include "gui/StandaloneBrowser.h"

#include "gui/BlockContextMenu.h"
#include "gui/BlocksPage.h"
#include "gui/BrowserHostCommands.h"
#include "gui/GuiBlock.h"

namespace LibraryBrowser {

using namespace BrowserUtils;

GuiBlock* StandaloneBrowser::internalGetCurrentBlockSelection() const
{
    return const_cast<StandaloneBrowser*>(this)->internalGetCurrentBlocksPage()->getSelectedBlock();
}

void StandaloneBrowser::addSelectedBlockToCurrentOpenSystem()
{
    GuiBlock* selection = internalGetCurrentBlockSelection();
    if (!selection)
        return;
    // A subsystem tile stands for a library: it only goes into a library.
    if (selection->isSubsystem() && OpenSystemState::current().type != ModelType::Library)
        return;
    selection->addToCurrentOpenSystem();
}

void StandaloneBrowser::showSelectedBlockHelp()
{
    if (GuiBlock* selection = internalGetCurrentBlockSelection())
        selection->showBlockHelp();
}

void StandaloneBrowser::showSelectedBlockParams()
{
    if (GuiBlock* selection = internalGetCurrentBlockSelection())
        selection->showBlockParams();
}

void StandaloneBrowser::showTandrilHelp() { displayHTMLBlockHelp(nullptr); }

void StandaloneBrowser::showLibBrowseHelp() { displayLibBrowseHelp(); }

void StandaloneBrowser::showTandrilPrefs() { showPrefsDialog(); }

void StandaloneBrowser::openNewModel() { openNewSystem(ModelType::Model); }

void StandaloneBrowser::openNewLibrary() { openNewSystem(ModelType::Library); }

void StandaloneBrowser::doubleClickBlock(const std::string& displayPath)
{
    if (GuiBlock* tile = internalGetCurrentBlocksPage()->getBlockByPathName(displayPath))
        tile->respondToMouseDoubleClick();
}

void StandaloneBrowser::selectBlockByName(const std::string& displayPath)
{
    BlocksPage* page = internalGetCurrentBlocksPage();
    GuiBlock* tile = page->getBlockByPathName(displayPath);
    if (tile && tile != page->getSelectedBlock())
        page->setSelectedBlock(tile);
}

void StandaloneBrowser::selectBlockLeft() { internalGetCurrentBlocksPage()->selectBlockLeft(); }

void StandaloneBrowser::selectBlockRight() { internalGetCurrentBlocksPage()->selectBlockRight(); }

void StandaloneBrowser::selectBlockUp() { internalGetCurrentBlocksPage()->selectBlockUp(); }

void StandaloneBrowser::selectBlockDown() { internalGetCurrentBlocksPage()->selectBlockDown(); }

std::string StandaloneBrowser::getSelectedBlockName() const
{
    const GuiBlock* selection = internalGetCurrentBlockSelection();
    return selection ? selection->getDisplayPath() : std::string();
}

QRect StandaloneBrowser::getSelectedBlockPosition() const
{
    const GuiBlock* selection = internalGetCurrentBlockSelection();
    return selection ? selection->getWidgetPosition() : QRect();
}

} // namespace LibraryBrowser
