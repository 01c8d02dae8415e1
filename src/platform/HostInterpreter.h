#pragma once

#include "platform/HostValue.h"

#include <string>
#include <vector>

namespace LibraryBrowser {

// The host's interpreter, reached by a trapped call: a function by name with
// input values and a number of outputs wanted. A failure of the called code
// comes back as false (with a message for the curious), never as an exception.
class HostInterpreter {
public:
    struct CallResult {
        bool ok = false;
        std::vector<HostValue> outputs;
        std::string errorMessage;
        std::string errorId;
    };

    virtual ~HostInterpreter() = default;

    virtual CallResult callWithTrap(const std::string& function, int outputCount,
                                    const std::vector<HostValue>& inputs) = 0;
};

} // namespace LibraryBrowser
