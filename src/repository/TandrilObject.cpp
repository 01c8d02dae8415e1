#include "repository/TandrilObject.h"

#include "model/BlockImpl.h"
#include "model/LibraryImpl.h"
#include "model/LibraryRefImpl.h"
#include "model/PaletteImpl.h"
#include "model/SubSystemImpl.h"

namespace LibraryBrowser {

TandrilObject::TandrilObject(TandrilObjectImpl* node, ReaderCache* cache) : Handle(node, cache) {}

bool TandrilObject::isBlock() const
{
    return implAs<BlockImpl>() != nullptr;
}

bool TandrilObject::isSubSystem() const
{
    return implAs<SubSystemImpl>() != nullptr;
}

bool TandrilObject::isLibrary() const
{
    return implAs<LibraryImpl>() != nullptr;
}

bool TandrilObject::isLibraryRef() const
{
    return implAs<LibraryRefImpl>() != nullptr;
}

bool TandrilObject::isPalette() const
{
    return implAs<PaletteImpl>() != nullptr;
}

Block TandrilObject::toBlock() const
{
    return isBlock() ? Block(getData()) : Block();
}

SubSystem TandrilObject::toSubSystem() const
{
    return isSubSystem() ? SubSystem(getData()) : SubSystem();
}

Library TandrilObject::toLibrary() const
{
    return isLibrary() ? Library(getData()) : Library();
}

LibraryRef TandrilObject::toLibraryRef() const
{
    return isLibraryRef() ? LibraryRef(getData()) : LibraryRef();
}

Palette TandrilObject::toPalette() const
{
    return isPalette() ? Palette(getData()) : Palette();
}

} // namespace LibraryBrowser
