#pragma once

#include "platform/HostPackage.h"
#include "scripting/ScriptedClassInfo.h"

#include <vector>

namespace LibraryBrowser {

// The scripting package "Repository": the repository's classes as the host
// language sees them. The binding of each class reads its name, bases and
// descriptions from here.
class RepositoryPackage : public HostPackage {
public:
    RepositoryPackage() : HostPackage("Repository") {}

    std::vector<std::string> classNames() const override;

    static const std::vector<ScriptedClassInfo>& classes();
    // The class of that name; a programming error for any other name.
    static const ScriptedClassInfo& classInfo(const std::string& name);
};

} // namespace LibraryBrowser
