#pragma once

#include "platform/HostEnvironment.h"
#include "platform/HostFramework.h"
#include "platform/HostInterpreter.h"
#include "platform/ShutdownRegistry.h"

#include <memory>
#include <vector>

namespace LibraryBrowser {

// The services the module falls back on when no host has installed its own:
// enough to run the frame and the repository outside a host process.

class StandaloneFramework : public HostFramework {
public:
    void initializeDesignTools(ErrorHolder& errors) override;
    void terminateDesignTools() override;
    void loadToolkitBridge(const StringId& name) override;
    void addMessageTable(const MessageTable& table) override;
    void addPackage(std::shared_ptr<HostPackage> package) override;
    void removePackage(const StringId& name) override;
    void removeApplication(HostApplication* application) override;
    ShutdownRegistry& shutdownRegistry() override { return m_shutdown; }

    const std::vector<std::shared_ptr<HostPackage>>& packages() const { return m_packages; }

private:
    ShutdownRegistry m_shutdown;
    std::vector<std::shared_ptr<HostPackage>> m_packages;
};

// Root is the working directory, preferences the per-user configuration
// location; console output goes to standard output.
class StandaloneEnvironment : public HostEnvironment {
public:
    std::string root() const override;
    std::string preferencesDirectory() const override;
    std::string translate(const std::string& text) const override { return text; }
    void print(const std::string& text) override;
    bool isWarningModeOn(int mode) const override;
    void setWarningMode(int mode, bool on) override;

private:
    std::vector<int> m_warningModesOn;
};

// Without a host there is nobody to answer: every call fails, with a message.
class StandaloneInterpreter : public HostInterpreter {
public:
    CallResult callWithTrap(const std::string& function, int outputCount,
                            const std::vector<HostValue>& inputs) override;
};

} // namespace LibraryBrowser
