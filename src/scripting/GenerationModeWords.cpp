#include "scripting/GenerationModeWords.h"

#include <unordered_map>

namespace LibraryBrowser {

GenerationMode GenerationModeWords::modeOf(const std::string& word)
{
    static std::unordered_map<std::string, GenerationMode> modes{
        {"Minimal", GenerationMode::Minimal},
        {"IgnoreTimestamp", GenerationMode::IgnoreTimestamp},
        {"Regenerate", GenerationMode::Regenerate},
    };
    // An unknown word is entered with the default, so it is looked up like
    // the others next time.
    return modes.emplace(word, GenerationMode::Minimal).first->second;
}

} // namespace LibraryBrowser
