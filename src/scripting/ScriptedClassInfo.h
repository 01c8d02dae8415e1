#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser {

// What the host language is told of one scripted class of a package.
struct ScriptedClassInfo {
    std::string name;
    // Names of its bases in the same package, most derived first.
    std::vector<std::string> bases;
    std::string description;
    // Empty when the class says no more than its description.
    std::string detailedDescription;
};

} // namespace LibraryBrowser
