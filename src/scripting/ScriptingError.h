#pragma once

#include <stdexcept>
#include <string>

namespace LibraryBrowser {

// The one error that crosses the scripting boundary: an identifier a script
// can test ("Tandril:Repository:StringTypeExpected") and the catalogue's text.
// Repository work itself never throws; only argument checks of scripted calls
// do, before any work is started.
class ScriptingError : public std::runtime_error {
public:
    ScriptingError(std::string identifier, const std::string& message)
        : std::runtime_error(message), m_identifier(std::move(identifier))
    {
    }

    static constexpr const char* StringTypeExpected = "Tandril:Repository:StringTypeExpected";
    static constexpr const char* PairValueMismatch = "Tandril:Repository:PairValueMismatch";

    const std::string& identifier() const { return m_identifier; }

private:
    std::string m_identifier;
};

} // namespace LibraryBrowser
