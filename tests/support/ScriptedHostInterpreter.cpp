#include "support/ScriptedHostInterpreter.h"

#include <algorithm>

namespace LibraryBrowser::Testing {

std::string ScriptedHostInterpreter::Call::operation() const
{
    return !inputs.empty() && inputs.front().isString() ? inputs.front().toString() : std::string();
}

void ScriptedHostInterpreter::on(const std::string& key, Handler handler)
{
    m_handlers[key] = std::move(handler);
}

void ScriptedHostInterpreter::answer(const std::string& key, std::vector<HostValue> outputs)
{
    on(key, [outputs](int, const std::vector<HostValue>&) { return CallResult{true, outputs}; });
}

void ScriptedHostInterpreter::fail(const std::string& key, const std::string& message)
{
    on(key, [message](int, const std::vector<HostValue>&) { return CallResult{false, {}, message}; });
}

HostInterpreter::CallResult ScriptedHostInterpreter::callWithTrap(const std::string& function, int outputCount,
                                                                  const std::vector<HostValue>& inputs)
{
    Call call{function, outputCount, inputs};
    m_calls.push_back(call);
    const std::string op = call.operation();
    auto it = op.empty() ? m_handlers.end() : m_handlers.find(function + ":" + op);
    if (it == m_handlers.end())
        it = m_handlers.find(function);
    return it == m_handlers.end() ? CallResult{false, {}, "Undefined function '" + function + "'"}
                                  : it->second(outputCount, inputs);
}

std::size_t ScriptedHostInterpreter::callCount(const std::string& key) const
{
    return std::size_t(std::count_if(m_calls.begin(), m_calls.end(), [&](const Call& c) {
        return c.function == key || c.function + ":" + c.operation() == key;
    }));
}

} // namespace LibraryBrowser::Testing
