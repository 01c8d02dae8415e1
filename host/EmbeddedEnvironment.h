#pragma once

#include "platform/HostEnvironment.h"

#include <functional>
#include <set>
#include <string>

namespace LibraryBrowser::Host {

// The embedded host's answers about its place: fixed directories, no
// translation (the host speaks one language), a console that goes to
// standard output unless a program or test takes it, and the warning
// switches, with command warnings (mode 3) on at start.
class EmbeddedEnvironment : public HostEnvironment {
public:
    using Console = std::function<void(const std::string&)>;

    EmbeddedEnvironment(std::string root, std::string preferencesDirectory);

    std::string root() const override { return m_root; }
    std::string preferencesDirectory() const override { return m_preferences; }
    std::string translate(const std::string& text) const override { return text; }
    void print(const std::string& text) override;
    bool isWarningModeOn(int mode) const override { return m_modesOn.count(mode) > 0; }
    void setWarningMode(int mode, bool on) override;

    // Null puts standard output back.
    void setConsole(Console console) { m_console = std::move(console); }

private:
    std::string m_root;
    std::string m_preferences;
    std::set<int> m_modesOn{3};
    Console m_console;
};

} // namespace LibraryBrowser::Host
