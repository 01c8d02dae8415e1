#pragma once

#include "repository/TandrilObject.h"

#include <vector>

namespace LibraryBrowser {

class RepositoryReader;
class RepositoryReport;

// The members of a palette, found by the names in its children list: each
// name that gives a valid product other than the palette gives that object.
// A palette that lists itself gets a warning for each time it does and no
// child; a longer cycle is not looked for.
std::vector<TandrilObject> paletteChildren(RepositoryReport& report, const Library& palette, RepositoryReader& reader);

} // namespace LibraryBrowser
