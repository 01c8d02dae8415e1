#pragma once

#include <pybind11/pybind11.h>

#include <string>

namespace LibraryBrowser {
class RepositoryReport;
}

namespace LibraryBrowser::Python {

// The parts of the extension module; each adds its classes to the module
// it is given. The package's classes go to the submodule "Repository".
void bindSession(pybind11::module_& tandril);
void bindErrors(pybind11::module_& tandril);
void bindHandles(pybind11::module_& repository);
void bindIterator(pybind11::module_& repository);
void bindReport(pybind11::module_& repository);
void bindRepository(pybind11::module_& repository);
void bindRanking(pybind11::module_& repository);
void bindBrowser(pybind11::module_& tandril);

// The docstring of a class of the package: its description, and its
// detailed description when it has one.
std::string classDoc(const std::string& className);

// "2 errors, 1 warning, 40 log lines": a report in a repr.
std::string describeReport(const RepositoryReport& report);

} // namespace LibraryBrowser::Python
