#pragma once

#include "platform/HostApplication.h"

namespace LibraryBrowser {

// The module's application object in the host's object system. At most one
// lives at a time; when it dies, the next demand builds a new one.
class TDLBApp : public HostApplication {
public:
    TDLBApp();
    ~TDLBApp() override;

    bool isDynamic() const override { return false; }
};

} // namespace LibraryBrowser
