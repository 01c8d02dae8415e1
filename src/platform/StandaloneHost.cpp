#include "platform/StandaloneHost.h"

#include "platform/HostPackage.h"
#include "platform/MessageService.h"

#include <QDir>
#include <QStandardPaths>

#include <algorithm>
#include <cstdio>

namespace LibraryBrowser {

void StandaloneFramework::initializeDesignTools(ErrorHolder&) {}

void StandaloneFramework::terminateDesignTools() {}

void StandaloneFramework::loadToolkitBridge(const StringId&) {}

void StandaloneFramework::addMessageTable(const MessageTable& table)
{
    MessageService::instance().addPrimaryTable(table);
}

void StandaloneFramework::addPackage(std::shared_ptr<HostPackage> package)
{
    if (package)
        m_packages.push_back(std::move(package));
}

void StandaloneFramework::removePackage(const StringId& name)
{
    m_packages.erase(std::remove_if(m_packages.begin(), m_packages.end(),
                                    [&](const auto& p) { return p->name() == name.str(); }),
                     m_packages.end());
}

void StandaloneFramework::removeApplication(HostApplication*) {}

std::string StandaloneEnvironment::root() const
{
    return QDir::currentPath().toStdString();
}

std::string StandaloneEnvironment::preferencesDirectory() const
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation).toStdString();
}

void StandaloneEnvironment::print(const std::string& text)
{
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

bool StandaloneEnvironment::isWarningModeOn(int mode) const
{
    return std::find(m_warningModesOn.begin(), m_warningModesOn.end(), mode) != m_warningModesOn.end();
}

void StandaloneEnvironment::setWarningMode(int mode, bool on)
{
    m_warningModesOn.erase(std::remove(m_warningModesOn.begin(), m_warningModesOn.end(), mode),
                           m_warningModesOn.end());
    if (on)
        m_warningModesOn.push_back(mode);
}

HostInterpreter::CallResult StandaloneInterpreter::callWithTrap(const std::string& function, int,
                                                                const std::vector<HostValue>&)
{
    CallResult result;
    result.errorId = "Tandril:Host:NoInterpreter";
    result.errorMessage = "No host interpreter is attached; cannot call '" + function + "'";
    return result;
}

} // namespace LibraryBrowser
