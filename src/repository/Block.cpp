#include "repository/Block.h"

#include "model/LibraryImpl.h"
#include "model/LibraryRefImpl.h"
#include "model/SubSystemImpl.h"

namespace LibraryBrowser {

Block::Block(TandrilObjectImpl* node, ReaderCache* cache) : Handle(node, cache) {}
Block::Block(const SubSystem& other) : Handle(other.getData()) {}
Block::Block(const Library& other) : Handle(other.getData()) {}
Block::Block(const LibraryRef& other) : Handle(other.getData()) {}

bool Block::isSubSystem() const
{
    return implAs<SubSystemImpl>() != nullptr;
}

bool Block::isLibrary() const
{
    return implAs<LibraryImpl>() != nullptr;
}

bool Block::isLibraryRef() const
{
    return implAs<LibraryRefImpl>() != nullptr;
}

SubSystem Block::toSubSystem() const
{
    return isSubSystem() ? SubSystem(getData()) : SubSystem();
}

Library Block::toLibrary() const
{
    return isLibrary() ? Library(getData()) : Library();
}

LibraryRef Block::toLibraryRef() const
{
    return isLibraryRef() ? LibraryRef(getData()) : LibraryRef();
}

} // namespace LibraryBrowser
