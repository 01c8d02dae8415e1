#pragma once

#include "platform/HostValue.h"

#include <string>
#include <vector>

namespace LibraryBrowser {

// A script's cell vector of strings, read into texts.
class StringCells {
public:
    // The strings in order, walking the cells by the array's column count.
    // An element that is no string throws ScriptingError with the identifier
    // StringTypeExpected. An empty value reads as no strings; a value that is
    // no cell array at all is no string either.
    static std::vector<std::string> read(const HostValue& cells);
};

} // namespace LibraryBrowser
