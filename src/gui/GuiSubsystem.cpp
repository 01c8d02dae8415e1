#include "gui/GuiSubsystem.h"

#include "frame/MessageCatalogue.h"
#include "gui/BlocksPageHost.h"
#include "gui/BrowserHostCommands.h"

namespace LibraryBrowser {

void GuiSubsystem::respondToMouseDoubleClick()
{
    loadRootLibrary();
    browser()->internalOpenSubsystemInTree(getDisplayPath());
}

void GuiSubsystem::openTandrilLib()
{
    loadRootLibrary();
    const std::string status = browser()->getCurrentStatusBarMessage();
    browser()->internalSetStatusBarMessage(
        BrowserUtils::xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarLoading, getDisplayPath()));
    BrowserUtils::openSystem(BrowserUtils::tokenizeBlockPath(getPath(), TokenType::RootName), "loadOnly");
    BrowserUtils::openSystem(getPath(), nullptr);
    browser()->internalSetStatusBarMessage(status);
}

} // namespace LibraryBrowser
