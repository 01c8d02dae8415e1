#pragma once

#include "repository/RepositoryWriter.h"

#include <string>

namespace LibraryBrowser {

// The words a script names a generation mode with: "Minimal",
// "IgnoreTimestamp", "Regenerate". Any other word means Minimal, without
// an error: scripts have always been free to pass anything here.
class GenerationModeWords {
public:
    static GenerationMode modeOf(const std::string& word);
};

} // namespace LibraryBrowser
