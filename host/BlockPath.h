#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser::Host {

// The host's path notation: "library/Subsystem/Block". A slash inside a name
// is written doubled. Names may hold line feeds; a caller may write a blank
// where a name has a line feed, so names compare through matchKey.
class BlockPath {
public:
    // Cuts at slashes: a run of odd length separates and is dropped, a run of
    // even length stands for half as many slashes inside the name.
    static std::vector<std::string> split(const std::string& path);
    // A name as one path segment: its slashes doubled.
    static std::string escape(const std::string& name);
    static std::string join(const std::vector<std::string>& names);
    // The form in which names compare: line feeds as blanks.
    static std::string matchKey(const std::string& name);
    // A name the notation can address: not empty, no slash at either end.
    static bool isAddressable(const std::string& name);
};

} // namespace LibraryBrowser::Host
