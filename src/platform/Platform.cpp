#include "platform/Platform.h"

#include "platform/StandaloneHost.h"

namespace LibraryBrowser {

namespace {
struct Services {
    StandaloneFramework defaultFramework;
    StandaloneEnvironment defaultEnvironment;
    StandaloneInterpreter defaultInterpreter;
    HostFramework* framework = nullptr;
    HostEnvironment* environment = nullptr;
    HostInterpreter* interpreter = nullptr;
};

Services& services()
{
    static Services s;
    return s;
}
} // namespace

HostFramework& Platform::framework()
{
    Services& s = services();
    return s.framework ? *s.framework : s.defaultFramework;
}

HostEnvironment& Platform::environment()
{
    Services& s = services();
    return s.environment ? *s.environment : s.defaultEnvironment;
}

HostInterpreter& Platform::interpreter()
{
    Services& s = services();
    return s.interpreter ? *s.interpreter : s.defaultInterpreter;
}

void Platform::setFramework(HostFramework* framework)
{
    services().framework = framework;
}

void Platform::setEnvironment(HostEnvironment* environment)
{
    services().environment = environment;
}

void Platform::setInterpreter(HostInterpreter* interpreter)
{
    services().interpreter = interpreter;
}

} // namespace LibraryBrowser
