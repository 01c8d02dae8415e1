#pragma once

#include <string>

namespace LibraryBrowser {

// An object of the module handed to the host as a call argument, for example
// the report that host operations log to. The host recognises it by class
// name and casts it to the interface it expects.
class HostObject {
public:
    virtual ~HostObject() = default;
    virtual std::string hostClassName() const = 0;
};

// What a host operation may say about its work: the report passed to every
// repository operation implements this.
class HostLogSink : public HostObject {
public:
    virtual void logAction(const std::string& message) = 0;
    virtual void logWarning(const std::string& id, const std::string& message) = 0;
    virtual void logError(const std::string& id, const std::string& message) = 0;
};

} // namespace LibraryBrowser
