#include "frame/Module.h"

#include "frame/MessageCatalogue.h"
#include "frame/TDLBApp.h"
#include "frame/TDLibBrowseShutDownObject.h"
#include "platform/ErrorHolder.h"
#include "platform/HostClass.h"
#include "platform/HostEnvironment.h"
#include "platform/HostFramework.h"
#include "platform/Platform.h"
#include "platform/ShutdownRegistry.h"
#include "scripting/BrowserClass.h"
#include "scripting/RepositoryPackage.h"

#include <memory>

namespace LibraryBrowser {

namespace {
bool initialized = false;
bool terminated = false;
bool applicationLoaded = false;
TDLBApp* theApplication = nullptr;
// Keeps the application alive until the process ends or it is destroyed.
std::unique_ptr<TDLBApp>& applicationOwner()
{
    static std::unique_ptr<TDLBApp> owner;
    return owner;
}
} // namespace

bool Module::isInitialized() { return initialized; }
bool Module::isTerminated() { return terminated; }
bool Module::isApplicationLoaded() { return applicationLoaded; }
TDLBApp* Module::application() { return theApplication; }

TDLBApp& Module::getApplication()
{
    if (!theApplication) {
        applicationOwner() = std::make_unique<TDLBApp>();
        theApplication = applicationOwner().get();
    }
    return *theApplication;
}

void Module::forgetApplication(TDLBApp* application)
{
    if (theApplication == application) {
        theApplication = nullptr;
        if (applicationOwner().get() == application)
            applicationOwner().release();
    }
}

void Module::initialize()
{
    if (initialized)
        return;
    initialized = true;

    HostFramework& host = Platform::framework();
    // A failure of the design tools is not examined: the module comes up
    // regardless, as it always has.
    ErrorHolder errors;
    host.initializeDesignTools(errors);
    host.loadToolkitBridge(StringId("qt"));
    host.addMessageTable(MessageCatalogue::table());
    host.addPackage(std::make_shared<RepositoryPackage>());
    loadApplication();
    // Fills the root while still in the start-up context, so later callers
    // only read it.
    Platform::environment().root();
    host.shutdownRegistry().registerObject(std::make_unique<TDLibBrowseShutDownObject>());
}

void Module::loadApplication()
{
    // Set first: getting the browser class comes back here.
    if (applicationLoaded)
        return;
    applicationLoaded = true;
    TDLBApp& application = getApplication();
    application.addLocalClass(BrowserClass::instance());
}

void Module::terminate()
{
    if (terminated)
        return;
    terminated = true;

    HostFramework& host = Platform::framework();
    TDLBApp& application = getApplication();
    application.setClassLoaded(false);
    for (HostClass* cls : application.localClasses())
        cls->setInterfaceLoaded(false);
    host.removeApplication(&application);
    host.removePackage(StringId("Repository"));
    host.shutdownRegistry().unregisterObject("TDLibBrowse");
    host.terminateDesignTools();
}

} // namespace LibraryBrowser
