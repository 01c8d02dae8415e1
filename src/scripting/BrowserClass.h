#pragma once

#include "platform/HostClass.h"

namespace LibraryBrowser {

// The scripted class "StandaloneBrowser" through which scripts drive the
// browser window. One class object per process.
class BrowserClass : public HostClass {
public:
    // Made on first demand. Making it loads the application first, since the
    // class belongs to it.
    static BrowserClass* instance();

private:
    BrowserClass() : HostClass("StandaloneBrowser") {}
};

} // namespace LibraryBrowser
