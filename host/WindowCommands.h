#pragma once

#include "CallArguments.h"
#include "CommandLog.h"
#include "SystemRegistry.h"

#include <string>
#include <vector>

namespace LibraryBrowser::Host {

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

    // What private_td_sys_name_under_mouse answers; with no window under the
    // mouse it is empty.
    void setSystemUnderMouse(std::string name) { m_systemUnderMouse = std::move(name); }
    const std::vector<BlockDialog>& openDialogs() const { return m_dialogs; }

private:
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
};

} // namespace LibraryBrowser::Host
