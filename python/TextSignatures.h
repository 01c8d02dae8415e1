#pragma once

#include <pybind11/pybind11.h>

namespace LibraryBrowser::Python {

// Gives every function and method that pybind11 made below a module, its
// classes included, the text signature that inspect.signature reads
// ("getChildren(self, path)"), ahead of the docstring pybind11 wrote. A
// function of several overloads gets "(*args, **kwargs)": the forms are in
// its docstring and in the package's stubs.
class TextSignatures {
public:
    static void add(pybind11::module_& module);
};

} // namespace LibraryBrowser::Python
