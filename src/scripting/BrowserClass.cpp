#include "scripting/BrowserClass.h"

#include "frame/ModuleEntry.h"

#include <memory>

namespace LibraryBrowser {

BrowserClass* BrowserClass::instance()
{
    static std::unique_ptr<BrowserClass> theBrowserClass;
    if (!theBrowserClass) {
        theBrowserClass.reset(new BrowserClass());
        load_td_lib_browse_application();
    }
    return theBrowserClass.get();
}

} // namespace LibraryBrowser
