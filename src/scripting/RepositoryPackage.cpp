#include "scripting/RepositoryPackage.h"

namespace LibraryBrowser {

std::vector<std::string> RepositoryPackage::classNames() const
{
    return {"RepositoryReport", "Repository", "RepositoryReader", "RepositoryWriter",
            "TandrilObject",    "Block",      "SubSystem",        "Library",
            "LibraryRef",       "Palette",    "TandrilObjectIterator"};
}

} // namespace LibraryBrowser
