#pragma once

#include "platform/ShutdownObject.h"

#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

// The host's exit sequence. Owns the objects registered with it until they
// are unregistered by name.
class ShutdownRegistry {
public:
    void registerObject(std::unique_ptr<ShutdownObject> object);
    // Destroys the object of that name; unknown names are ignored.
    void unregisterObject(const std::string& name);
    bool contains(const std::string& name) const;
    std::size_t size() const { return m_objects.size(); }

    // Runs the exit: false if an object vetoes it, before anything was prepared.
    // Otherwise every object prepares, then pre-terminates, then terminates.
    bool runExitSequence();

private:
    std::vector<std::unique_ptr<ShutdownObject>> m_objects;
};

} // namespace LibraryBrowser
