#pragma once

#include <functional>
#include <string>
#include <vector>

namespace LibraryBrowser::Host {

// What the host was asked to do where it has no window to do it in: each
// window command with its arguments, in order. Tests read it; a verbose
// host also echoes it to its console.
class CommandLog {
public:
    struct Entry {
        std::string command;
        std::vector<std::string> arguments;
        // "command(arg1, arg2)" with the arguments quoted.
        std::string text() const;
    };
    using Echo = std::function<void(const std::string&)>;

    void record(const std::string& command, std::vector<std::string> arguments);
    const std::vector<Entry>& entries() const { return m_entries; }
    void clear() { m_entries.clear(); }
    // Null stops the echo.
    void setEcho(Echo echo) { m_echo = std::move(echo); }

private:
    std::vector<Entry> m_entries;
    Echo m_echo;
};

} // namespace LibraryBrowser::Host
