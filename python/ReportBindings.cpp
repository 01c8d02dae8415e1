#include "Bindings.h"

#include "PythonSession.h"

#include "repository/RepositoryReport.h"

#include <pybind11/stl.h>

#include <tuple>
#include <vector>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

using IssueTuples = std::vector<std::tuple<std::string, std::string>>;

std::string counted(std::size_t count, const char* what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

IssueTuples tuples(const RepositoryReport::IssueList& issues)
{
    IssueTuples result;
    for (const RepositoryReport::Issue& issue : issues)
        result.emplace_back(issue.id, issue.message);
    return result;
}

} // namespace

std::string describeReport(const RepositoryReport& report)
{
    return counted(report.getErrors().size(), "error") + ", " + counted(report.getWarnings().size(), "warning") +
           ", " + counted(report.getLog().size(), "log line");
}

void bindReport(py::module_& repository)
{
    using Report = RepositoryReport;
    py::class_<Report, RepositoryReportPtr> report(repository, "RepositoryReport",
                                                   classDoc("RepositoryReport").c_str());
    report.def_static(
        "create",
        [] {
            PythonSession::ensureStarted();
            return Report::create();
        },
        "A new, empty report.");
    report.def("log", &Report::log, py::arg("message"), "Adds a line to the log.");
    report.def("logToConsoleInteractively", &Report::logToConsoleInteractively, py::arg("echo").noconvert(),
               "Whether lines are also printed on the console as they are written.");
    report.def("hasError", &Report::hasError, "Whether an error was logged since the flag was last cleared.");
    report.def("hasWarning", &Report::hasWarning, "Whether a warning was logged since the flag was last cleared.");
    report.def("clearError", &Report::clearError, "Clears the error flag.");
    report.def("clearWarning", &Report::clearWarning, "Clears the warning flag.");
    report.def("logError", py::overload_cast<const std::string&>(&Report::logError), py::arg("message"),
               "Logs an error.");
    report.def("logError", py::overload_cast<const std::string&, const std::string&>(&Report::logError),
               py::arg("identifier"), py::arg("message"), "Logs an error with its identifier.");
    report.def("logWarning", py::overload_cast<const std::string&>(&Report::logWarning), py::arg("message"),
               "Logs a warning.");
    report.def("logWarning", py::overload_cast<const std::string&, const std::string&>(&Report::logWarning),
               py::arg("identifier"), py::arg("message"), "Logs a warning with its identifier.");
    // Reading what was logged, for scripts that show or check it.
    report.def(
        "getLog",
        [](const Report& self) { return std::vector<std::string>(self.getLog().begin(), self.getLog().end()); },
        "The log's lines, oldest first, each ending in a line feed.");
    report.def(
        "getErrors", [](const Report& self) { return tuples(self.getErrors()); },
        "The errors kept, as (identifier, message) pairs.");
    report.def(
        "getWarnings", [](const Report& self) { return tuples(self.getWarnings()); },
        "The warnings kept, as (identifier, message) pairs.");
    report.def("__repr__", [](const Report& self) {
        return "<tandril.Repository.RepositoryReport: " + describeReport(self) + ">";
    });
}

} // namespace LibraryBrowser::Python
