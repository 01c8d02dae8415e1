#include "EmbeddedEnvironment.h"

#include <cstdio>

namespace LibraryBrowser::Host {

EmbeddedEnvironment::EmbeddedEnvironment(std::string root, std::string preferencesDirectory)
    : m_root(std::move(root)), m_preferences(std::move(preferencesDirectory))
{
}

void EmbeddedEnvironment::print(const std::string& text)
{
    if (m_console) {
        m_console(text);
        return;
    }
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

void EmbeddedEnvironment::setWarningMode(int mode, bool on)
{
    if (on)
        m_modesOn.insert(mode);
    else
        m_modesOn.erase(mode);
}

} // namespace LibraryBrowser::Host
