#pragma once

#include "repository/Handle.h"

namespace LibraryBrowser {

class LibraryImpl;

// A handle on a library: a product's root, a library below one, or a palette.
class Library : public Handle {
public:
    // The node class of this kind.
    using Impl = LibraryImpl;

    Library() = default;
    Library(TandrilObjectImpl* node, ReaderCache* cache);

private:
    // The conversions share the data with no second test.
    friend class TandrilObject;
    friend class Block;
    friend class SubSystem;
    explicit Library(HandleData* data) : Handle(data) {}
};

} // namespace LibraryBrowser

template <>
struct std::hash<LibraryBrowser::Library> : LibraryBrowser::HandleHash {};
