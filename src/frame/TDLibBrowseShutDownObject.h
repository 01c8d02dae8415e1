#pragma once

#include "platform/ShutdownObject.h"

namespace LibraryBrowser {

// Ties the module to the host's exit: the browser window is closed while the
// host prepares to exit, and never blocks it.
class TDLibBrowseShutDownObject : public ShutdownObject {
public:
    TDLibBrowseShutDownObject() : ShutdownObject("TDLibBrowse") {}

    bool prepareToExit() override;
};

} // namespace LibraryBrowser
