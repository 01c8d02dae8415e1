#include "gui/BrowserHostCommands.h"

#include "platform/HostEnvironment.h"
#include "platform/HostInterpreter.h"
#include "platform/Platform.h"

#include <QString>

#include <vector>

namespace LibraryBrowser::BrowserUtils {

namespace {

constexpr int CommandWarnings = 3;

// Keeps the host's command warnings off the console for its lifetime.
class MutedWarnings {
public:
    MutedWarnings() : m_wasOn(Platform::environment().isWarningModeOn(CommandWarnings))
    {
        Platform::environment().setWarningMode(CommandWarnings, false);
    }
    ~MutedWarnings() { Platform::environment().setWarningMode(CommandWarnings, m_wasOn); }
    MutedWarnings(const MutedWarnings&) = delete;
    MutedWarnings& operator=(const MutedWarnings&) = delete;

private:
    bool m_wasOn;
};

HostInterpreter::CallResult call(const std::string& command, int outputs, const std::vector<HostValue>& inputs)
{
    return Platform::interpreter().callWithTrap(command, outputs, inputs);
}

HostInterpreter::CallResult mutedCall(const std::string& command, int outputs,
                                      const std::vector<HostValue>& inputs)
{
    MutedWarnings muted;
    return call(command, outputs, inputs);
}

std::string stringResult(const HostInterpreter::CallResult& result)
{
    if (!result.ok || result.outputs.empty() || !result.outputs.front().isString())
        return {};
    return result.outputs.front().toString();
}

} // namespace

void showPrefsDialog() { call("tdprivate", 0, {HostValue::string("showprefs")}); }

void displayHTMLBlockHelp(const char* path)
{
    if (path)
        mutedCall("private_td_show_block_help", 0, {HostValue::string(path)});
    else
        mutedCall("tdhelp", 0, {});
}

void dropBlock(const std::string& block, const std::string& target, double x, double y)
{
    mutedCall("private_td_drop_block", 0,
              {HostValue::string(block), HostValue::string(target), HostValue::doubleMatrix(1, 2, {x, y})});
}

void closeBlockDialogsOpenedByBrowser() { mutedCall("private_td_close_block_dialogs", 0, {}); }

void openBlockDialog(const std::string& path, BlockDialogType type)
{
    mutedCall("private_td_open_block_dialog", 0,
              {HostValue::string(path), HostValue::string(type == BlockDialogType::Parameters ? "params" : "default")});
}

bool isSystemLoaded(const std::string& name)
{
    const auto result = mutedCall("private_td_is_system_loaded", 1, {HostValue::string(name)});
    return result.ok && !result.outputs.empty() && result.outputs.front().scalar() == 1.0;
}

void openSystem(const std::string& name, const char* option)
{
    std::vector<HostValue> inputs{HostValue::string(name)};
    if (option)
        inputs.push_back(HostValue::string(option));
    mutedCall("open_system", 0, inputs);
}

void mdlFileOpenDialog() { mutedCall("uiopen", 0, {HostValue::string("*.mdl")}); }

void addBlockToModel(const std::string& source, const std::string& destination)
{
    if (source.empty())
        return;
    mutedCall("private_td_add_block", 0, {HostValue::string(source), HostValue::string(destination)});
}

std::string getCurrentOpenSystem() { return stringResult(call("private_td_get_current_open_mdl", 1, {})); }

std::string tdSysNameUnderMouse() { return stringResult(mutedCall("private_td_sys_name_under_mouse", 1, {})); }

std::string openNewSystem(ModelType type)
{
    const char* word = type == ModelType::Model ? "Model" : type == ModelType::Library ? "Library" : "";
    return stringResult(mutedCall("private_td_new_system", 1, {HostValue::string(word)}));
}

void getCurrentOpenSystemWithTypeAndLockState(std::string& name, ModelType& type, bool& locked)
{
    name.clear();
    type = ModelType::Unknown;
    locked = false;
    const auto result = call("private_td_get_current_open_mdl", 3, {});
    if (!result.ok || result.outputs.size() < 3)
        return;
    name = result.outputs[0].toString();
    const QString word = QString::fromStdString(result.outputs[1].toString());
    if (word.compare("Library", Qt::CaseInsensitive) == 0)
        type = ModelType::Library;
    else if (word.compare("Model", Qt::CaseInsensitive) == 0)
        type = ModelType::Model;
    locked = result.outputs[2].scalar() != 0;
}

std::string getDocPath() { return stringResult(call("docroot", 1, {})); }

void displayLibBrowseHelp()
{
    call("helpview", 0,
         {HostValue::string(getDocPath() + "/toolbox/tandril/helptargets.map"),
          HostValue::string("librarybrowsergui")});
}

} // namespace LibraryBrowser::BrowserUtils
