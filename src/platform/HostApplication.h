#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser {

class HostClass;

// An application in the host's object system: a named owner of local classes.
// The classes are not owned; they live as long as the module does.
class HostApplication {
public:
    HostApplication(std::string name, bool hasDefaultDatabase)
        : m_name(std::move(name)), m_defaultDatabase(hasDefaultDatabase) {}
    virtual ~HostApplication() = default;

    HostApplication(const HostApplication&) = delete;
    HostApplication& operator=(const HostApplication&) = delete;

    virtual bool isDynamic() const { return true; }
    virtual const std::string& getName() const { return m_name; }
    virtual bool getDefaultDatabase() const { return m_defaultDatabase; }

    void addLocalClass(HostClass* cls);
    void removeLocalClass(HostClass* cls);
    HostClass* getLocalClass(const std::string& name) const;
    const std::vector<HostClass*>& localClasses() const { return m_classes; }

    bool isClassLoaded() const { return m_classLoaded; }
    void setClassLoaded(bool loaded) { m_classLoaded = loaded; }

private:
    std::string m_name;
    bool m_defaultDatabase;
    bool m_classLoaded = false;
    std::vector<HostClass*> m_classes;
};

} // namespace LibraryBrowser
