#include "CallArguments.h"

namespace LibraryBrowser::Host {

bool CallArguments::fail(std::size_t index, const std::string& expected)
{
    m_error = m_call + ": argument " + std::to_string(index + 1) + " must be " + expected;
    return false;
}

bool CallArguments::string(std::size_t index, std::string& out)
{
    if (!has(index) || (!value(index).isString() && value(index).kind() != HostValue::Kind::Empty))
        return fail(index, "a string");
    out = value(index).toString();
    return true;
}

bool CallArguments::strings(std::size_t index, std::vector<std::string>& out)
{
    if (!has(index))
        return fail(index, "a cell of strings");
    const HostValue& v = value(index);
    if (v.isString()) {
        out = {v.toString()};
        return true;
    }
    if (v.kind() == HostValue::Kind::Empty || (v.isDouble() && v.isEmpty())) {
        out.clear();
        return true;
    }
    if (!v.isCell())
        return fail(index, "a cell of strings");
    out.clear();
    for (const HostValue& cell : v.cells()) {
        if (!cell.isString() && cell.kind() != HostValue::Kind::Empty)
            return fail(index, "a cell of strings");
        out.push_back(cell.toString());
    }
    return true;
}

bool CallArguments::scalar(std::size_t index, double& out)
{
    if (!has(index) || !value(index).isDouble() || value(index).numberOfElements() != 1)
        return fail(index, "a numeric scalar");
    out = value(index).scalar();
    return true;
}

bool CallArguments::row(std::size_t index, std::size_t length, std::vector<double>& out)
{
    if (!has(index) || !value(index).isDouble() || value(index).numberOfElements() != length)
        return fail(index, "a numeric row of " + std::to_string(length) + " elements");
    out = value(index).doubles();
    return true;
}

HostLogSink* CallArguments::report(std::size_t index) const
{
    if (!has(index) || !value(index).isObject())
        return nullptr;
    return dynamic_cast<HostLogSink*>(value(index).hostObject().get());
}

CallArguments::CallResult CallArguments::failure(const std::string& id) const
{
    return failure(id, m_error);
}

CallArguments::CallResult CallArguments::failure(const std::string& id, const std::string& message)
{
    CallResult result;
    result.errorId = id;
    result.errorMessage = message;
    return result;
}

CallArguments::CallResult CallArguments::success(const std::string& call, int outputCount,
                                                 std::vector<HostValue> outputs)
{
    if (outputCount > static_cast<int>(outputs.size()))
        return failure("Tandril:Host:TooManyOutputs",
                       call + ": asked for " + std::to_string(outputCount) + " outputs, gives "
                           + std::to_string(outputs.size()));
    outputs.resize(static_cast<std::size_t>(std::max(outputCount, 0)));
    CallResult result;
    result.ok = true;
    result.outputs = std::move(outputs);
    return result;
}

} // namespace LibraryBrowser::Host
