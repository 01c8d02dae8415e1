#pragma once

#include <string>

namespace LibraryBrowser {

// Short names for the directories and files of generated subsystems and
// icons. The counters are process-wide and never reset, so a name is not
// given twice while the process lives, whichever writer asks.
class GeneratedNames {
public:
    // "d" + the next number.
    static std::string directoryName();
    // "f" + the next number.
    static std::string fileName();
};

} // namespace LibraryBrowser
