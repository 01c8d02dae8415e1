#pragma once

#include "platform/StringId.h"

#include <memory>

namespace LibraryBrowser {

class ErrorHolder;
class HostApplication;
class HostPackage;
class ShutdownRegistry;
struct MessageTable;

// The parts of the host that the module's start and end talk to: its
// design-tools framework, the toolkit bridge, the message service, the
// scripting package registry, the application manager and the exit sequence.
class HostFramework {
public:
    virtual ~HostFramework() = default;

    virtual void initializeDesignTools(ErrorHolder& errors) = 0;
    virtual void terminateDesignTools() = 0;
    // Makes the toolkit load its bridge of that name before any window exists.
    virtual void loadToolkitBridge(const StringId& name) = 0;
    virtual void addMessageTable(const MessageTable& table) = 0;
    virtual void addPackage(std::shared_ptr<HostPackage> package) = 0;
    virtual void removePackage(const StringId& name) = 0;
    virtual void removeApplication(HostApplication* application) = 0;
    virtual ShutdownRegistry& shutdownRegistry() = 0;
};

} // namespace LibraryBrowser
