#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace LibraryBrowser {

// What a name search needs of one object of a child list, kept beside the
// list in its order: a search then runs over packed names and reaches an
// object's node only when it matches or is a subsystem to enter.
struct ShownName {
    QString text;
    // Blocks (subsystems included) are what name searches match.
    bool isBlock = false;
    bool isSubSystem = false;
};

using ShownNames = std::vector<ShownName>;
using ShownNamesPtr = std::shared_ptr<const ShownNames>;

} // namespace LibraryBrowser
