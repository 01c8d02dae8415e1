#pragma once

#include "platform/HostInterpreter.h"
#include "platform/HostObject.h"

#include <string>
#include <vector>

namespace LibraryBrowser::Host {

// The inputs of one host call, read with checks: a wrong kind or a missing
// input gives a message that names the call and the input, kept for the
// failure the call then returns.
class CallArguments {
public:
    using CallResult = HostInterpreter::CallResult;

    CallArguments(std::string call, const std::vector<HostValue>& inputs, std::size_t first)
        : m_call(std::move(call)), m_inputs(inputs), m_first(first) {}

    bool has(std::size_t index) const { return m_first + index < m_inputs.size(); }
    const HostValue& value(std::size_t index) const { return m_inputs[m_first + index]; }

    // Each reads the input at an index counted from the first argument of the
    // call (the operation name not counted) and says false on a mismatch.
    bool string(std::size_t index, std::string& out);
    bool strings(std::size_t index, std::vector<std::string>& out);
    bool scalar(std::size_t index, double& out);
    bool row(std::size_t index, std::size_t length, std::vector<double>& out);
    // The report object at the index, if it is one that takes log lines.
    HostLogSink* report(std::size_t index) const;

    const std::string& error() const { return m_error; }
    CallResult failure(const std::string& id) const;

    static CallResult failure(const std::string& id, const std::string& message);
    // Success with the outputs asked for; asking for more than the call has
    // fails as the interpreter would.
    static CallResult success(const std::string& call, int outputCount, std::vector<HostValue> outputs);

private:
    bool fail(std::size_t index, const std::string& expected);

    std::string m_call;
    const std::vector<HostValue>& m_inputs;
    std::size_t m_first;
    std::string m_error;
};

} // namespace LibraryBrowser::Host
