#pragma once

namespace LibraryBrowser {

class TDLBApp;

// The module's process-wide state. It moves one way only: unloaded,
// initialised, terminated; a module cannot be brought up twice in a process.
class Module {
public:
    static bool isInitialized();
    static bool isTerminated();
    static bool isApplicationLoaded();

    // The application object, or null when none lives.
    static TDLBApp* application();
    // The application object, built on demand.
    static TDLBApp& getApplication();
    // Called by the application's destructor.
    static void forgetApplication(TDLBApp* application);

    // The start, end and application-loading sequences behind the exported
    // entry points.
    static void initialize();
    static void terminate();
    static void loadApplication();
};

} // namespace LibraryBrowser
