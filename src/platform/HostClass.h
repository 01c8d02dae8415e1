#pragma once

#include <string>

namespace LibraryBrowser {

// A class that the module makes known to the host's object system. The host
// marks a class whose interface it has loaded; the module clears the mark
// when it ends.
class HostClass {
public:
    explicit HostClass(std::string name) : m_name(std::move(name)) {}
    virtual ~HostClass() = default;

    const std::string& name() const { return m_name; }
    bool isInterfaceLoaded() const { return m_interfaceLoaded; }
    void setInterfaceLoaded(bool loaded) { m_interfaceLoaded = loaded; }

private:
    std::string m_name;
    bool m_interfaceLoaded = false;
};

} // namespace LibraryBrowser
