#include "Bindings.h"

#include "PythonSession.h"

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
    tandril.def("_finish", &PythonSession::finish);
}

} // namespace LibraryBrowser::Python
