#include "repository/SubSystem.h"

#include "model/LibraryImpl.h"
#include "model/LibraryRefImpl.h"

namespace LibraryBrowser {

SubSystem::SubSystem(TandrilObjectImpl* node, ReaderCache* cache) : Handle(node, cache) {}
SubSystem::SubSystem(const Library& other) : Handle(other.getData()) {}
SubSystem::SubSystem(const LibraryRef& other) : Handle(other.getData()) {}

bool SubSystem::isLibrary() const
{
    return implAs<LibraryImpl>() != nullptr;
}

bool SubSystem::isLibraryRef() const
{
    return implAs<LibraryRefImpl>() != nullptr;
}

Library SubSystem::toLibrary() const
{
    return isLibrary() ? Library(getData()) : Library();
}

LibraryRef SubSystem::toLibraryRef() const
{
    return isLibraryRef() ? LibraryRef(getData()) : LibraryRef();
}

} // namespace LibraryBrowser
