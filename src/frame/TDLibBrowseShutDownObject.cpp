#include "frame/TDLibBrowseShutDownObject.h"

#include "gui/StandaloneBrowser.h"

namespace LibraryBrowser {

bool TDLibBrowseShutDownObject::prepareToExit()
{
    StandaloneBrowser::destroyInstance();
    return true;
}

} // namespace LibraryBrowser
