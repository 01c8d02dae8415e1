#pragma once

#include "model/LibraryImpl.h"

namespace LibraryBrowser {

// A library whose children are other products, computed rather than stored.
class PaletteImpl : public LibraryImpl {
    TDLB_NODE_CLASS_BODY(PaletteImpl)
    TDLB_PaletteImpl_OWN(TDLB_DECLARE_PROPERTY)

public:
    PaletteImpl() = default;
    explicit PaletteImpl(Model* model) : LibraryImpl(model) {}
};

} // namespace LibraryBrowser
