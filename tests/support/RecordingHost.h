#pragma once

#include "platform/HostEnvironment.h"
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
    void terminateDesignTools() override;
    void loadToolkitBridge(const StringId& name) override;
    void addMessageTable(const MessageTable& table) override;
    void addPackage(std::shared_ptr<HostPackage> package) override;
    void removePackage(const StringId& name) override;
    void removeApplication(HostApplication* application) override;

    std::vector<std::string> events;
};

// An environment with fixed directories that keeps console output and counts
// how often the root was asked for.
class RecordingEnvironment : public HostEnvironment {
public:
    RecordingEnvironment(std::string root, std::string preferences)
        : m_root(std::move(root)), m_preferences(std::move(preferences)) {}

    std::string root() const override;
    std::string preferencesDirectory() const override { return m_preferences; }
    std::string translate(const std::string& text) const override { return text; }
    void print(const std::string& text) override { console += text; }
    bool isWarningModeOn(int mode) const override { return mode == 3 && commandWarnings; }
    void setWarningMode(int mode, bool on) override;

    std::string console;
    bool commandWarnings = true;
    mutable int rootQueries = 0;

private:
    std::string m_root;
    std::string m_preferences;
};

} // namespace LibraryBrowser::Testing
