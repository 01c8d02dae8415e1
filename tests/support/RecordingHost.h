#pragma once

#include "platform/StandaloneHost.h"

#include <string>
#include <vector>

namespace LibraryBrowser::Testing {

// A framework that keeps every call it gets, in order, as short lines such as
// "initializeDesignTools" or "addPackage Repository", and otherwise behaves as
// the standalone one.
class RecordingHostFramework : public StandaloneFramework {
public:
    void initializeDesignTools(ErrorHolder& errors) override;
    void terminateDesignTools() override { events.push_back("terminateDesignTools"); }
    void loadToolkitBridge(const StringId& name) override { events.push_back("loadToolkitBridge " + name.str()); }
    void addMessageTable(const MessageTable& table) override;
    void addPackage(std::shared_ptr<HostPackage> package) override;
    void removePackage(const StringId& name) override;
    void removeApplication(HostApplication* application) override;

    std::vector<std::string> events;
};

// An environment with fixed directories and command warnings on, as a host
// starts, that keeps console output and counts how often the root was asked for.
class RecordingEnvironment : public StandaloneEnvironment {
public:
    RecordingEnvironment(std::string root, std::string preferences)
        : m_root(std::move(root)), m_preferences(std::move(preferences))
    {
        setWarningMode(3, true);
    }

    std::string root() const override
    {
        ++rootQueries;
        return m_root;
    }
    std::string preferencesDirectory() const override { return m_preferences; }
    void print(const std::string& text) override { console += text; }

    std::string console;
    mutable int rootQueries = 0;

private:
    std::string m_root;
    std::string m_preferences;
};

} // namespace LibraryBrowser::Testing
