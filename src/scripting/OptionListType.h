#pragma once

#include <string>
#include <unordered_set>

namespace LibraryBrowser {

// What an option row may hold: the allowed option names and the allowed
// values, one set for all names.
struct OptionListType {
    std::unordered_set<std::string> values;
    std::unordered_set<std::string> names;
};

} // namespace LibraryBrowser
