#include "Bindings.h"

#include "scripting/ScriptingError.h"

namespace py = pybind11;

namespace LibraryBrowser::Python {

void bindErrors(py::module_& tandril)
{
    // Made once and kept for the life of the process, as the translator
    // below uses it whenever a call fails.
    static py::exception<ScriptingError> errorType(tandril, "Error");
    errorType.doc() = "An error of a scripted call. identifier names it (\"Tandril:Repository:StringTypeExpected\","
                      " \"Tandril:Repository:PairValueMismatch\"); the message is the catalogue's text.";
    errorType.attr("identifier") = "";
    py::register_exception_translator([](std::exception_ptr failure) {
        try {
            if (failure)
                std::rethrow_exception(failure);
        } catch (const ScriptingError& error) {
            py::object instance = py::reinterpret_borrow<py::object>(errorType)(error.what());
            instance.attr("identifier") = error.identifier();
            PyErr_SetObject(errorType.ptr(), instance.ptr());
        }
    });
}

} // namespace LibraryBrowser::Python
