#pragma once

#include "platform/HostPackage.h"

namespace LibraryBrowser {

// The scripting package "Repository": the repository's classes as the host
// language sees them.
class RepositoryPackage : public HostPackage {
public:
    RepositoryPackage() : HostPackage("Repository") {}

    std::vector<std::string> classNames() const override;
};

} // namespace LibraryBrowser
