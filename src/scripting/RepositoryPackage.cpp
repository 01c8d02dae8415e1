#include "scripting/RepositoryPackage.h"

#include <algorithm>
#include <cassert>

namespace LibraryBrowser {

std::vector<std::string> RepositoryPackage::classNames() const
{
    std::vector<std::string> names;
    for (const ScriptedClassInfo& info : classes())
        names.push_back(info.name);
    return names;
}

const std::vector<ScriptedClassInfo>& RepositoryPackage::classes()
{
    static const std::vector<ScriptedClassInfo> table{
        {"Repository", {"Writer", "Reader"}, "Library Browser Repository", ""},
        {"Reader", {}, "Library Browser Repository Reader", ""},
        {"Writer", {}, "Library Browser Repository Writer", ""},
        {"RepositoryReport", {}, "Library Browser Repository Report", ""},
        {"Util", {}, "Repository utility functions", ""},
        // The detailed text is the block's, as it has always been.
        {"TandrilObjectIterator", {}, "Repository iterator.", "Repository block data type."},
        {"Handle", {}, "Repository handle type.", ""},
        {"Block", {"Handle"}, "Repository block data type.", ""},
        {"SubSystem", {"Handle"}, "Repository subsystem data type.", ""},
        {"Library", {"Handle"}, "Repository library data type.", ""},
        {"LibraryRef", {"Handle"}, "Repository library reference data type.", ""},
        {"Palette", {"Handle"}, "Repository palette data type.", ""},
        {"TandrilObject", {"Handle"}, "Repository abstract data type.", ""},
    };
    return table;
}

const ScriptedClassInfo& RepositoryPackage::classInfo(const std::string& name)
{
    const std::vector<ScriptedClassInfo>& table = classes();
    const auto it = std::find_if(table.begin(), table.end(),
                                 [&](const ScriptedClassInfo& info) { return info.name == name; });
    assert(it != table.end());
    return it != table.end() ? *it : table.front();
}

} // namespace LibraryBrowser
