#pragma once

#include "platform/HostInterpreter.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace LibraryBrowser::Testing {

// A host interpreter whose answers a test scripts. Handlers are keyed by the
// function name, or by "function:operation" for calls whose first input names
// an operation (as every "tdprivate" call does); the more specific key wins.
// Every call is recorded. An unscripted call fails like an unknown function.
class ScriptedHostInterpreter : public HostInterpreter {
public:
    using Handler = std::function<CallResult(int outputCount, const std::vector<HostValue>& inputs)>;

    struct Call {
        std::string function;
        int outputCount;
        std::vector<HostValue> inputs;
        // The first input if it is a string, else empty.
        std::string operation() const;
    };

    void on(const std::string& key, Handler handler);
    // Shorthand: answer with these outputs.
    void answer(const std::string& key, std::vector<HostValue> outputs);
    // Shorthand: fail with this message.
    void fail(const std::string& key, const std::string& message);

    CallResult callWithTrap(const std::string& function, int outputCount,
                            const std::vector<HostValue>& inputs) override;

    const std::vector<Call>& calls() const { return m_calls; }
    std::size_t callCount(const std::string& key) const;

private:
    std::map<std::string, Handler> m_handlers;
    std::vector<Call> m_calls;
};

} // namespace LibraryBrowser::Testing
