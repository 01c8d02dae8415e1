#pragma once

#include "repository/Handle.h"
#include "repository/Library.h"
#include "repository/LibraryRef.h"

namespace LibraryBrowser {

class SubSystemImpl;

// A handle on a subsystem; libraries and references widen to it.
class SubSystem : public Handle {
public:
    // The node class of this kind.
    using Impl = SubSystemImpl;

    SubSystem() = default;
    SubSystem(TandrilObjectImpl* node, ReaderCache* cache);
    SubSystem(const Library& other);
    SubSystem(const LibraryRef& other);

    // True when the node, once found, is of the kind or below it; the
    // placeholder of a missing object counts by its class.
    bool isLibrary() const;
    bool isLibraryRef() const;
    // A handle of the target class on the same data, or a null one.
    Library toLibrary() const;
    LibraryRef toLibraryRef() const;

private:
    // The conversions share the data with no second test.
    friend class TandrilObject;
    friend class Block;
    explicit SubSystem(HandleData* data) : Handle(data) {}
};

} // namespace LibraryBrowser

template <>
struct std::hash<LibraryBrowser::SubSystem> : LibraryBrowser::HandleHash {};
