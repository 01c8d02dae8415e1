#pragma once

#include <pybind11/pybind11.h>

#include "platform/HostInterpreter.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace LibraryBrowser::Python {

// Host functions served by Python callables, in front of another host: a
// script can stand in for the embedded host wholly ("tdprivate") or for one
// operation of it ("lb_getBlockData"), or answer a window command
// ("private_td_add_block"). What no callable is registered for goes on to
// the host behind.
//
// A callable is called as function(nargout, *inputs), the operations of
// "tdprivate" without the operation's name (their first input is then the
// report to log to). It returns None or a list or tuple of the outputs.
// Values cross as PythonValues converts them. An exception is a trapped
// failure, as any failed host call: it never reaches the module.
class PythonHostFunctions : public HostInterpreter {
public:
    // Callables may call the host again, one inside the other, this deep;
    // the next one fails with TooDeep.
    static constexpr int MaxNesting = 32;
    static constexpr const char* TooDeep = "Tandril:Host:CallsTooDeep";

    explicit PythonHostFunctions(HostInterpreter& behind) : m_behind(behind) {}

    CallResult callWithTrap(const std::string& function, int outputCount,
                            const std::vector<HostValue>& inputs) override;

    // None unregisters. Registrations are process-wide and may come before
    // the start.
    static void registerFunction(const std::string& name, pybind11::object function);
    static std::vector<std::string> registeredNames();
    // Lets go of every callable while the interpreter still runs.
    static void clear();

private:
    static std::map<std::string, pybind11::object>& functions();
    // The callable's answer; nothing when no callable serves the call.
    static std::optional<CallResult> callRegistered(const std::string& function, int outputCount,
                                     const std::vector<HostValue>& inputs);
    static void reportFailure(const CallResult& failure, const std::vector<HostValue>& inputs);
    static CallResult callPython(const pybind11::object& function, const std::string& name, int outputCount,
                                 const std::vector<HostValue>& inputs, std::size_t firstInput);

    HostInterpreter& m_behind;
};

} // namespace LibraryBrowser::Python
