#pragma once

#include "repository/Handle.h"

namespace LibraryBrowser {

class PaletteImpl;

// A handle on a palette. It widens to TandrilObject only.
class Palette : public Handle {
public:
    // The node class of this kind.
    using Impl = PaletteImpl;

    Palette() = default;
    Palette(TandrilObjectImpl* node, ReaderCache* cache);

private:
    // The conversions share the data with no second test.
    friend class TandrilObject;
    friend class Block;
    friend class SubSystem;
    explicit Palette(HandleData* data) : Handle(data) {}
};

} // namespace LibraryBrowser

template <>
struct std::hash<LibraryBrowser::Palette> : LibraryBrowser::HandleHash {};
