#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser {

// A package of scripted classes offered to the host language.
class HostPackage {
public:
    explicit HostPackage(std::string name) : m_name(std::move(name)) {}
    virtual ~HostPackage() = default;

    const std::string& name() const { return m_name; }
    // Names of the classes the package provides, as scripts spell them.
    virtual std::vector<std::string> classNames() const = 0;

private:
    std::string m_name;
};

} // namespace LibraryBrowser
