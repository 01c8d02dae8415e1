#include "PythonHostFunctions.h"

#include "PythonValues.h"
#include "ScopedCount.h"

#include "repository/RepositoryReport.h"
#include "scripting/ScriptingError.h"

#include <string>

namespace py = pybind11;

namespace LibraryBrowser::Python {

std::map<std::string, py::object>& PythonHostFunctions::functions()
{
    // Never destroyed: the objects must go while the interpreter runs, which
    // clear() sees to at its exit.
    static auto* registered = new std::map<std::string, py::object>();
    return *registered;
}

void PythonHostFunctions::registerFunction(const std::string& name, py::object function)
{
    if (function.is_none())
        functions().erase(name);
    else
        functions()[name] = std::move(function);
}

std::vector<std::string> PythonHostFunctions::registeredNames()
{
    std::vector<std::string> names;
    for (const auto& entry : functions())
        names.push_back(entry.first);
    return names;
}

void PythonHostFunctions::clear()
{
    functions().clear();
}

HostInterpreter::CallResult PythonHostFunctions::callWithTrap(const std::string& function, int outputCount,
                                                              const std::vector<HostValue>& inputs)
{
    std::optional<CallResult> result = callRegistered(function, outputCount, inputs);
    if (!result)
        return m_behind.callWithTrap(function, outputCount, inputs);
    if (!result->ok)
        reportFailure(*result, inputs);
    return *result;
}

void PythonHostFunctions::reportFailure(const CallResult& failure, const std::vector<HostValue>& inputs)
{
    // The caller sees only that the call failed; what the callable said goes
    // to the report the call carries, if it carries one. A warning:
    // what the failure costs (a block left out...) is the caller's to judge,
    // and a host may fail a call on purpose.
    for (const HostValue& input : inputs) {
        if (auto report = std::dynamic_pointer_cast<RepositoryReport>(input.hostObject())) {
            report->logWarning(failure.errorId, failure.errorMessage);
            return;
        }
    }
}

std::optional<HostInterpreter::CallResult> PythonHostFunctions::callRegistered(const std::string& function, int outputCount,
                                                                const std::vector<HostValue>& inputs)
{
    const std::map<std::string, py::object>& registered = functions();
    if (!registered.empty()) {
        py::gil_scoped_acquire gil;
        const auto whole = registered.find(function);
        if (whole != registered.end())
            return callPython(whole->second, function, outputCount, inputs, 0);
        if (function == "tdprivate" && !inputs.empty() && inputs.front().isString()) {
            const auto operation = registered.find(inputs.front().toString());
            if (operation != registered.end())
                return callPython(operation->second, operation->first, outputCount, inputs, 1);
        }
    }
    return std::nullopt;
}

namespace {

// Callables under way, one inside the other: a callable may call the host
// again (call_host, a window method), and one that reaches itself that way
// would otherwise go on until the stack runs out.
int nestedCalls = 0;

} // namespace

HostInterpreter::CallResult PythonHostFunctions::callPython(const py::object& function, const std::string& name,
                                                            int outputCount, const std::vector<HostValue>& inputs,
                                                            std::size_t firstInput)
{
    CallResult result;
    if (nestedCalls >= MaxNesting) {
        result.errorId = TooDeep;
        result.errorMessage = name + ": host functions served from Python nest more than " +
                              std::to_string(MaxNesting) + " deep; one that calls itself never ends";
        return result;
    }
    const ScopedCount nested(nestedCalls);
    try {
        py::tuple arguments(1 + inputs.size() - firstInput);
        arguments[0] = py::int_(outputCount);
        for (std::size_t i = firstInput; i < inputs.size(); ++i)
            arguments[1 + i - firstInput] = PythonValues::toPython(inputs[i]);
        const py::object answer = function(*arguments);
        if (!answer.is_none()) {
            if (!PythonValues::isSequence(answer)) {
                result.errorId = "Tandril:Host:PythonResult";
                result.errorMessage = name + ": a host function returns None or a list or tuple of its outputs";
                return result;
            }
            for (const py::handle output : answer)
                result.outputs.push_back(PythonValues::toHostValue(output));
        }
        result.ok = true;
    } catch (py::error_already_set& error) {
        result.errorId = "Tandril:Host:PythonError";
        // What the exception says, without the traceback that what() adds.
        result.errorMessage = name + ": " + py::str(error.type().attr("__name__")).cast<std::string>() + ": " +
                              py::str(error.value()).cast<std::string>();
        if (py::hasattr(error.value(), "identifier")) {
            result.errorId = py::str(error.value().attr("identifier"));
            // A failure from further in already names where it came from.
            if (py::isinstance(error.value(), py::module_::import("tandril").attr("Error")))
                result.errorMessage = py::str(error.value());
        }
    } catch (const ScriptingError& error) {
        // A value that can't cross, either way.
        result.errorId = error.identifier();
        result.errorMessage = name + ": " + error.what();
    }
    return result;
}

} // namespace LibraryBrowser::Python
