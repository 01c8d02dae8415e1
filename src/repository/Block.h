#pragma once

#include "repository/Handle.h"
#include "repository/SubSystem.h"
#include "repository/Library.h"
#include "repository/LibraryRef.h"

namespace LibraryBrowser {

class BlockImpl;

// A handle on a block; subsystems, libraries and references widen to it.
class Block : public Handle {
public:
    // The node class of this kind.
    using Impl = BlockImpl;

    Block() = default;
    Block(TandrilObjectImpl* node, ReaderCache* cache);
    Block(const SubSystem& other);
    Block(const Library& other);
    Block(const LibraryRef& other);

    // True when the node, once found, is of the kind or below it; the
    // placeholder of a missing object counts by its class.
    bool isSubSystem() const;
    bool isLibrary() const;
    bool isLibraryRef() const;
    // A handle of the target class on the same data, or a null one.
    SubSystem toSubSystem() const;
    Library toLibrary() const;
    LibraryRef toLibraryRef() const;

private:
    // The conversions share the data with no second test.
    friend class TandrilObject;
    friend class SubSystem;
    explicit Block(HandleData* data) : Handle(data) {}
};

} // namespace LibraryBrowser

template <>
struct std::hash<LibraryBrowser::Block> : LibraryBrowser::HandleHash {};
