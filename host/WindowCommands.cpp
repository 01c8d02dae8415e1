#include "WindowCommands.h"

#include "BlockPath.h"
#include "HelpText.h"
#include "ModelWindows.h"

#include <QCursor>
#include <QFileInfo>

#include <QDir>
#include <QString>

#include <algorithm>

namespace LibraryBrowser::Host {

namespace {
constexpr const char* commandFailed = "Tandril:Host:CommandFailed";
constexpr const char* badArguments = "Tandril:Host:BadArguments";

const char* commands[] = {"open_system",
                          "save_system",
                          "close_system",
                          "private_td_is_system_loaded",
                          "private_td_new_system",
                          "private_td_add_block",
                          "private_td_drop_block",
                          "private_td_get_current_open_mdl",
                          "private_td_sys_name_under_mouse",
                          "private_td_open_block_dialog",
                          "private_td_close_block_dialogs",
                          "private_td_show_block_help",
                          "uiopen",
                          "tdhelp",
                          "docroot",
                          "helpview"};

std::vector<std::string> textsOf(const std::vector<HostValue>& inputs)
{
    std::vector<std::string> texts;
    for (const HostValue& input : inputs) {
        if (input.isString()) {
            texts.push_back(input.toString());
        } else if (input.isDouble()) {
            std::string numbers;
            for (double d : input.doubles())
                numbers += (numbers.empty() ? "" : " ") + QString::number(d).toStdString();
            texts.push_back("[" + numbers + "]");
        } else {
            texts.push_back("<value>");
        }
    }
    return texts;
}
} // namespace

bool WindowCommands::isCommand(const std::string& name)
{
    return std::any_of(std::begin(commands), std::end(commands), [&](const char* c) { return name == c; });
}

WindowCommands::CallResult WindowCommands::call(const std::string& command, int outputCount,
                                                const std::vector<HostValue>& inputs)
{
    m_log.record(command, textsOf(inputs));
    CallArguments args(command, inputs, 0);
    const CallResult result = dispatch(command, outputCount, args);
    // Whatever a command changed shows in the windows at once.
    if (m_windows && result.ok)
        m_windows->sync();
    return result;
}

WindowCommands::CallResult WindowCommands::dispatch(const std::string& command, int outputCount,
                                                    CallArguments& args)
{
    if (command == "open_system")
        return openSystem(outputCount, args);
    if (command == "save_system")
        return saveSystem(outputCount, args);
    if (command == "close_system") {
        std::string name;
        if (!args.string(0, name))
            return args.failure(badArguments);
        if (!m_systems.close(name))
            return CallArguments::failure(commandFailed, "close_system: no open system \"" + name + "\"");
        return CallArguments::success(command, outputCount, {});
    }
    if (command == "private_td_is_system_loaded") {
        std::string name;
        if (!args.string(0, name))
            return args.failure(badArguments);
        return CallArguments::success(command, outputCount, {HostValue::doubleScalar(m_systems.isLoaded(name))});
    }
    if (command == "private_td_new_system") {
        std::string type;
        if (!args.string(0, type) || (type != "Model" && type != "Library"))
            return CallArguments::failure(badArguments, command + ": argument 1 must be \"Model\" or \"Library\"");
        const std::string name = m_systems.newSystem(type == "Model" ? SystemType::Model : SystemType::Library);
        return CallArguments::success(command, outputCount, {HostValue::string(name)});
    }
    if (command == "private_td_add_block" || command == "private_td_drop_block")
        return addBlock(command, outputCount, args);
    if (command == "private_td_get_current_open_mdl")
        return currentOpenSystem(outputCount);
    if (command == "private_td_sys_name_under_mouse") {
        const std::string name = m_windows ? m_windows->systemAt(QCursor::pos()) : m_systemUnderMouse;
        return CallArguments::success(command, outputCount, {HostValue::string(name)});
    }
    if (command == "private_td_close_block_dialogs") {
        if (m_windows)
            m_windows->closeDialogs();
        m_dialogs.clear();
        return CallArguments::success(command, outputCount, {});
    }
    if (command == "private_td_open_block_dialog" || command == "private_td_show_block_help")
        return blockCommand(command, outputCount, args);
    if (command == "docroot")
        return CallArguments::success(command, outputCount,
                                      {HostValue::string(QDir(QString::fromStdString(m_root))
                                                             .filePath(QStringLiteral("help"))
                                                             .toStdString())});
    if (command == "uiopen" && m_windows) {
        std::string error;
        if (!m_windows->open(nullptr, error))
            return CallArguments::failure(commandFailed, "uiopen: " + error);
    }
    if (command == "tdhelp" && m_windows)
        m_windows->showHelp(QStringLiteral("Tandril Help"), HelpText::generalHelp());
    if (command == "helpview" && m_windows)
        m_windows->showHelp(QStringLiteral("Library Browser Help"), HelpText::browserHelp());
    // Without windows the record is all.
    return CallArguments::success(command, outputCount, {});
}

WindowCommands::CallResult WindowCommands::showPreferences(int outputCount)
{
    m_log.record("tdprivate", {"showprefs"});
    if (m_preferences)
        m_preferences();
    return CallArguments::success("tdprivate showprefs", outputCount, {});
}

WindowCommands::CallResult WindowCommands::openSystem(int outputCount, CallArguments& args)
{
    std::string path, mode;
    if (!args.string(0, path) || (args.has(1) && !args.string(1, mode)))
        return args.failure(badArguments);
    if (!mode.empty() && mode != "loadOnly")
        return CallArguments::failure(badArguments, "open_system: argument 2 must be \"loadOnly\"");
    std::string error;
    // A model saved as a file opens from that file.
    if (mode.empty() && QFileInfo(QString::fromStdString(path)).isFile()) {
        if (!m_systems.openFile(QString::fromStdString(path), error))
            return CallArguments::failure(commandFailed, error);
        return CallArguments::success("open_system", outputCount, {});
    }
    if (!m_systems.open(path, mode == "loadOnly", error))
        return CallArguments::failure(commandFailed, error);
    return CallArguments::success("open_system", outputCount, {});
}

WindowCommands::CallResult WindowCommands::saveSystem(int outputCount, CallArguments& args)
{
    std::string name, file;
    if (!args.string(0, name) || (args.has(1) && !args.string(1, file)))
        return args.failure(badArguments);
    std::string error;
    if (!m_systems.save(name, QString::fromStdString(file), error))
        return CallArguments::failure(commandFailed, "save_system: " + error);
    return CallArguments::success("save_system", outputCount, {});
}

WindowCommands::CallResult WindowCommands::addBlock(const std::string& command, int outputCount,
                                                    CallArguments& args)
{
    std::string source, destination;
    if (!args.string(0, source) || !args.string(1, destination))
        return args.failure(badArguments);
    std::optional<SystemRegistry::Point> at;
    if (command == "private_td_drop_block") {
        std::vector<double> point;
        if (!args.row(2, 2, point))
            return args.failure(badArguments);
        at = SystemRegistry::Point{point[0], point[1]};
        // The browser gives a point of the screen; the model's window knows
        // where that is in the model.
        if (m_windows) {
            const QPoint screen{qRound(point[0]), qRound(point[1])};
            if (const auto inModel = m_windows->toModel(BlockPath::split(destination).front(), screen))
                at = SystemRegistry::Point{inModel->x(), inModel->y()};
        }
    }
    std::string added, error;
    if (!m_systems.addBlock(source, destination, at, added, error))
        return CallArguments::failure(commandFailed, command + ": " + error);
    return CallArguments::success(command, outputCount, {});
}

WindowCommands::CallResult WindowCommands::currentOpenSystem(int outputCount)
{
    const OpenSystem* system = m_systems.current();
    if (!system)
        return CallArguments::success("private_td_get_current_open_mdl", outputCount,
                                      {HostValue::string(""), HostValue::string(""), HostValue::logicalScalar(false)});
    return CallArguments::success("private_td_get_current_open_mdl", outputCount,
                                  {HostValue::string(system->name),
                                   HostValue::string(system->type == SystemType::Library ? "Library" : "Model"),
                                   HostValue::logicalScalar(system->locked)});
}

WindowCommands::CallResult WindowCommands::blockCommand(const std::string& command, int outputCount,
                                                        CallArguments& args)
{
    std::string path, kind;
    if (!args.string(0, path))
        return args.failure(badArguments);
    if (command == "private_td_open_block_dialog") {
        if (!args.string(1, kind))
            return args.failure(badArguments);
        if (kind != "default" && kind != "params")
            return CallArguments::failure(badArguments, command + ": argument 2 must be \"default\" or \"params\"");
    }
    BlockRecord block;
    std::string error;
    if (!m_systems.findBlock(path, block, error))
        return CallArguments::failure(commandFailed, command + ": no block \"" + path + "\"");
    if (!kind.empty())
        m_dialogs.push_back({path, kind});
    if (m_windows) {
        if (kind.empty())
            m_windows->showBlockHelp(path, block);
        else
            m_windows->showBlockDialog(path, block, kind);
    }
    return CallArguments::success(command, outputCount, {});
}

} // namespace LibraryBrowser::Host
