#pragma once

namespace LibraryBrowser {

class HostEnvironment;
class HostFramework;
class HostInterpreter;

// Where the module finds its host. An embedding host installs its services
// before it initialises the module; whatever it leaves out is served by the
// standalone defaults (no interpreter, the process's own directories).
class Platform {
public:
    static HostFramework& framework();
    static HostEnvironment& environment();
    static HostInterpreter& interpreter();

    // Null puts the standalone default back. The services are not owned.
    static void setFramework(HostFramework* framework);
    static void setEnvironment(HostEnvironment* environment);
    static void setInterpreter(HostInterpreter* interpreter);
};

} // namespace LibraryBrowser
