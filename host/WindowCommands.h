#pragma once

#include "CallArguments.h"
#include "CommandLog.h"
#include "SystemRegistry.h"

#include <functional>
#include <string>
#include <vector>

namespace LibraryBrowser::Host {

class ModelWindows;

// The host commands of the browser's block actions, on the systems the host
// has open. Commands that would show a window record what they were asked
// and succeed or fail as a host with windows would: help for a block that
// does not exist fails, a dialog of an unknown kind fails.
class WindowCommands {
public:
    using CallResult = HostInterpreter::CallResult;

    struct BlockDialog {
        std::string path;
        std::string kind;
    };

    WindowCommands(SystemRegistry& systems, CommandLog& log, std::string root)
        : m_systems(systems), m_log(log), m_root(std::move(root)) {}

    static bool isCommand(const std::string& name);
    CallResult call(const std::string& command, int outputCount, const std::vector<HostValue>& inputs);
    // "tdprivate showprefs".
    CallResult showPreferences(int outputCount);

    // Windows for the shown systems and the dialogs; null (the default) for a
    // host without a screen, which only records. Not owned.
    void setWindows(ModelWindows* windows) { m_windows = windows; }

    // What "tdprivate showprefs" opens: the program that runs the browser
    // gives the browser's preferences dialog; without one the record is all.
    void setPreferencesPage(std::function<void()> page) { m_preferences = std::move(page); }

    // What private_td_sys_name_under_mouse answers in a host without windows;
    // with windows, the window under the cursor decides.
    void setSystemUnderMouse(std::string name) { m_systemUnderMouse = std::move(name); }
    const std::vector<BlockDialog>& openDialogs() const { return m_dialogs; }

private:
    CallResult dispatch(const std::string& command, int outputCount, CallArguments& args);
    CallResult openSystem(int outputCount, CallArguments& args);
    CallResult addBlock(const std::string& command, int outputCount, CallArguments& args);
    CallResult currentOpenSystem(int outputCount);
    CallResult blockCommand(const std::string& command, int outputCount, CallArguments& args);
    CallResult saveSystem(int outputCount, CallArguments& args);

    SystemRegistry& m_systems;
    CommandLog& m_log;
    std::string m_root;
    std::string m_systemUnderMouse;
    std::vector<BlockDialog> m_dialogs;
    ModelWindows* m_windows = nullptr;
    std::function<void()> m_preferences;
};

} // namespace LibraryBrowser::Host
