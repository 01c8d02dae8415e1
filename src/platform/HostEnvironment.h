#pragma once

#include <string>

namespace LibraryBrowser {

// What the host tells about the place the module runs in.
class HostEnvironment {
public:
    virtual ~HostEnvironment() = default;

    // The host's root directory; the shipped repository store lives below it.
    virtual std::string root() const = 0;
    // The user's preferences directory; the writable store lives below it.
    virtual std::string preferencesDirectory() const = 0;
    // Text translated for the user's language.
    virtual std::string translate(const std::string& text) const = 0;
    // Write to the host's console.
    virtual void print(const std::string& text) = 0;
    // The host's warning display switches (mode 3 is the command warnings).
    virtual bool isWarningModeOn(int mode) const = 0;
    virtual void setWarningMode(int mode, bool on) = 0;
    // The host's fatal assertion: reports where and why, then ends the process.
    // Reserved for states the build machines must never ship.
    [[noreturn]] virtual void assertionFailed(const std::string& source, int line, const std::string& message);
};

} // namespace LibraryBrowser
