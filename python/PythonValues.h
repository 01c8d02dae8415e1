#pragma once

#include "platform/HostValue.h"

#include <pybind11/pybind11.h>

namespace LibraryBrowser::Python {

// Python objects as the host values the module reads: str is a string, bool
// a logical scalar, int and float a double scalar, a list or tuple a 1-by-n
// cell array of converted elements. Anything else (None included) is an
// empty value, which the module's readers refuse as no string.
class PythonValues {
public:
    static HostValue toHostValue(pybind11::handle object);
};

} // namespace LibraryBrowser::Python
