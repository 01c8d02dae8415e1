#include "frame/TDLBApp.h"

#include "frame/Module.h"

namespace LibraryBrowser {

TDLBApp::TDLBApp() : HostApplication("LibraryBrowser", true) {}

TDLBApp::~TDLBApp()
{
    Module::forgetApplication(this);
}

} // namespace LibraryBrowser
