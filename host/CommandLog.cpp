#include "CommandLog.h"

namespace LibraryBrowser::Host {

std::string CommandLog::Entry::text() const
{
    std::string out = command + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i > 0)
            out += ", ";
        out += "'" + arguments[i] + "'";
    }
    return out + ")";
}

void CommandLog::record(const std::string& command, std::vector<std::string> arguments)
{
    m_entries.push_back({command, std::move(arguments)});
    if (m_echo)
        m_echo("host: " + m_entries.back().text() + "\n");
}

} // namespace LibraryBrowser::Host
