#pragma once

#include <pybind11/pybind11.h>

#include "platform/HostValue.h"

namespace LibraryBrowser::Python {

// Python objects and the host values the module exchanges, both ways:
//
// | Python | host value |
// |---|---|
// | str | string |
// | bool | logical scalar |
// | int, float | double scalar |
// | non-empty sequence of numbers (no bools) | 1-by-n double matrix |
// | non-empty sequence of bools | 1-by-n logical matrix |
// | non-empty sequence of equally long non-empty sequences of numbers | m-by-n double matrix, one per row |
// | any other sequence | 1-by-n cell array of converted elements |
//
// A sequence is a list, a tuple or any other sequence but a text or bytes.
// | None, and anything else | empty value |
//
// Back to Python, a 1-by-1 matrix is a scalar, a row a list, a matrix of
// several rows a list of rows (cells alike), and an object the report it is
// (a Repository.RepositoryReport) or None.
//
// Lists within lists cross down to MaxDepth levels; a deeper value (or a
// list that holds itself) throws a ScriptingError (TooDeep) instead of
// running the process out of stack.
class PythonValues {
public:
    static constexpr int MaxDepth = 100;
    static constexpr const char* TooDeep = "Tandril:Host:ValueTooDeep";

    static HostValue toHostValue(pybind11::handle object);
    static pybind11::object toPython(const HostValue& value);
    // A list, tuple or other sequence but a text or bytes.
    static bool isSequence(pybind11::handle object);
    // A sequence that an argument must be, or a TypeError that names it.
    static HostValue fromList(pybind11::handle sequence, const char* argument);

private:
    static HostValue toHostValue(pybind11::handle object, int depth);
    static pybind11::object toPython(const HostValue& value, int depth);
};

} // namespace LibraryBrowser::Python
