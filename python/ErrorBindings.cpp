#include "Bindings.h"

#include "BrowserArrays.h"
#include "BrowserHandle.h"
#include "PythonHostFunctions.h"
#include "PythonSession.h"
#include "PythonValues.h"

#include "scripting/ScriptingError.h"

#include <map>
#include <string>

namespace py = pybind11;

namespace LibraryBrowser::Python {

namespace {

// One class of tandril.Error per identifier the package raises; what a host
// function says fails with, whatever its identifier, is a HostCallFailed.
struct ErrorClass {
    const char* name;
    const char* identifier;
    const char* doc;
};

const char* const HostCallFailed = "Tandril:Host:CallFailed";

const ErrorClass ErrorClasses[] = {
    {"StringTypeExpected", ScriptingError::StringTypeExpected,
     "An element of an option list or of a list of directories is no string."},
    {"PairValueMismatch", ScriptingError::PairValueMismatch,
     "An option list of findBlocks is faulty: no pairs, an unknown option or an unknown value."},
    {"BadArgument", BrowserArrays::BadArgument,
     "The browser window refuses an array argument, or a screenshot can't be written."},
    {"Destroyed", BrowserHandle::Destroyed, "The browser window of the handle has been destroyed."},
    {"Busy", BrowserHandle::Busy,
     "The browser window is being built, or waits for the host function that called: it can't be reached "
     "or destroyed from there."},
    {"WrongThread", PythonSession::WrongThread,
     "A call from a thread other than the one that started the package."},
    {"SessionEnded", PythonSession::Ended, "The package has ended at the interpreter's exit."},
    {"ValueTooDeep", PythonValues::TooDeep, "A value nests lists too deep to cross between Python and the host."},
    {"CallsTooDeep", PythonHostFunctions::TooDeep,
     "Host functions served from Python call the host again, one inside the other, too deep."},
    {"HostCallFailed", HostCallFailed,
     "A host function failed; identifier is the host's, or Tandril:Host:CallFailed when it gave none."},
};

} // namespace

void bindErrors(py::module_& tandril)
{
    // Made once and kept for the life of the process, as the translator
    // below uses them whenever a call fails.
    static py::exception<ScriptingError> errorType(tandril, "Error");
    errorType.doc() = "An error of a scripted call. identifier names it (\"Tandril:Repository:StringTypeExpected\","
                      " \"Tandril:Repository:PairValueMismatch\"...), and each identifier has a subclass of its "
                      "own; the message is the catalogue's text.";
    errorType.attr("identifier") = "";
    errorType.attr("__module__") = "tandril";
    static auto* classes = new std::map<std::string, py::object>();
    for (const ErrorClass& error : ErrorClasses) {
        const std::string qualified = "tandril." + std::string(error.name);
        py::object cls = py::reinterpret_steal<py::object>(
            PyErr_NewExceptionWithDoc(qualified.c_str(), error.doc, errorType.ptr(), nullptr));
        if (!cls)
            throw py::error_already_set();
        cls.attr("identifier") = error.identifier;
        tandril.attr(error.name) = cls;
        (*classes)[error.identifier] = cls;
    }
    py::register_exception_translator([](std::exception_ptr failure) {
        try {
            if (failure)
                std::rethrow_exception(failure);
        } catch (const ScriptingError& error) {
            auto found = classes->find(error.identifier());
            if (found == classes->end())
                found = classes->find(HostCallFailed);
            py::object instance = found->second(error.what());
            instance.attr("identifier") = error.identifier();
            PyErr_SetObject(found->second.ptr(), instance.ptr());
        }
    });
}

} // namespace LibraryBrowser::Python
