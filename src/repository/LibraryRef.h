#pragma once

#include "repository/Handle.h"

namespace LibraryBrowser {

class LibraryRefImpl;

// A handle on a library reference.
class LibraryRef : public Handle {
public:
    // The node class of this kind.
    using Impl = LibraryRefImpl;

    LibraryRef() = default;
    LibraryRef(TandrilObjectImpl* node, ReaderCache* cache);

private:
    // The conversions share the data with no second test.
    friend class TandrilObject;
    friend class Block;
    friend class SubSystem;
    explicit LibraryRef(HandleData* data) : Handle(data) {}
};

} // namespace LibraryBrowser

template <>
struct std::hash<LibraryBrowser::LibraryRef> : LibraryBrowser::HandleHash {};
