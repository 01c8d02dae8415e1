#include "Bindings.h"

#include "PythonHostFunctions.h"
#include "PythonSession.h"
#include "PythonValues.h"

#include "platform/Platform.h"
#include "scripting/ScriptingError.h"

#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <vector>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

std::optional<QString> qtText(const std::optional<std::string>& text)
{
    if (!text)
        return std::nullopt;
    return QString::fromStdString(*text);
}

std::vector<std::string> stdTexts(const QStringList& texts)
{
    std::vector<std::string> result;
    for (const QString& text : texts)
        result.push_back(text.toStdString());
    return result;
}

} // namespace

void bindSession(py::module_& tandril)
{
    tandril.def(
        "start",
        [](const std::optional<std::string>& root, const std::optional<std::string>& prefdir,
           const std::optional<std::vector<std::string>>& path) {
            PythonSession::Settings settings;
            settings.root = qtText(root);
            settings.preferencesDirectory = qtText(prefdir);
            if (path) {
                QStringList directories;
                for (const std::string& directory : *path)
                    directories << QString::fromStdString(directory);
                settings.path = directories;
            }
            PythonSession::start(settings);
        },
        py::kw_only(), py::arg("root") = py::none(), py::arg("prefdir") = py::none(), py::arg("path") = py::none(),
        "Starts the library browser and its embedded host. root is the host's root directory, prefdir the\n"
        "preferences directory (the writable store lives there), path the directories searched first for\n"
        "tdblocks data. What is not given comes from NUMORA_ROOT, NUMORA_PREFDIR and NUMORA_PATH, else the\n"
        "defaults. Call it at most once, before the first repository call; without it the first call starts\n"
        "with the environment's settings.");
    tandril.def("is_started", &PythonSession::isStarted, "Whether the library browser has started.");
    tandril.def(
        "root", [] { return PythonSession::root().toStdString(); },
        "The host's root directory; empty before the start.");
    tandril.def(
        "preferences_directory", [] { return PythonSession::preferencesDirectory().toStdString(); },
        "The preferences directory; empty before the start.");
    tandril.def(
        "path", [] { return stdTexts(PythonSession::path()); },
        "The directories searched first for tdblocks data.");
    tandril.def("register_host_function", &PythonHostFunctions::registerFunction, py::arg("name"),
                py::arg("function"),
                "Serves the host function or operation of that name by a Python callable instead of the embedded\n"
                "host: \"tdprivate\" as a whole, one of its operations (\"lb_getTdBlocksData\",\n"
                "\"lb_getBlockData\", \"lb_getChildrenHandles\", \"lb_getLibraryData\", \"lb_createSubSystemIcons\",\n"
                "\"rmdir\"), or a window command (\"private_td_add_block\"...). The callable is called as\n"
                "function(nargout, *inputs), an operation without its name, so that its first input is the report to\n"
                "log to. It returns None or a list or tuple of its outputs; an exception is a failed call, which the\n"
                "library browser survives.\n"
                "None as the function hands the name back to the embedded host.");
    tandril.def("registered_host_functions", &PythonHostFunctions::registeredNames,
                "The names served by Python callables.");
    tandril.def(
        "call_host",
        [](const std::string& function, int outputCount, const py::args& inputs) {
            PythonSession::ensureStarted();
            std::vector<HostValue> values;
            for (const py::handle input : inputs)
                values.push_back(PythonValues::toHostValue(input));
            const HostInterpreter::CallResult result =
                Platform::interpreter().callWithTrap(function, outputCount, values);
            if (!result.ok)
                throw ScriptingError(result.errorId.empty() ? "Tandril:Host:CallFailed" : result.errorId,
                                     result.errorMessage);
            py::list outputs;
            for (const HostValue& output : result.outputs)
                outputs.append(PythonValues::toPython(output));
            return outputs;
        },
        py::arg("function"), py::arg("nargout"),
        "Calls a host function as the library browser does, through the registered callables and then the\n"
        "embedded host, and gives the list of its outputs. A failed call raises tandril.Error with the host's\n"
        "identifier and message.");
    tandril.def("_finish", &PythonSession::finish);
}

} // namespace LibraryBrowser::Python
