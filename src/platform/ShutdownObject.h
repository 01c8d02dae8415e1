#pragma once

#include <string>

namespace LibraryBrowser {

// A participant in the host's exit sequence. The registry asks each object in
// turn whether the exit may go on, lets it prepare, then runs the two
// termination stages.
class ShutdownObject {
public:
    explicit ShutdownObject(std::string name) : m_name(std::move(name)) {}
    virtual ~ShutdownObject() = default;

    const std::string& name() const { return m_name; }

    virtual bool isOkToExit() { return true; }
    virtual bool prepareToExit() { return true; }
    virtual void preTerminate() {}
    virtual void terminate() {}

private:
    std::string m_name;
};

} // namespace LibraryBrowser
