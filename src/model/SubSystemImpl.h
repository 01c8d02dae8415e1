#pragma once

#include "model/BlockImpl.h"

namespace LibraryBrowser {

// A block that holds other blocks; its children live in a manifest of their own.
class SubSystemImpl : public BlockImpl {
    TDLB_NODE_CLASS_BODY(SubSystemImpl)
    TDLB_SubSystemImpl_OWN(TDLB_DECLARE_PROPERTY)

public:
    SubSystemImpl() = default;
    explicit SubSystemImpl(Model* model) : BlockImpl(model) {}
};

} // namespace LibraryBrowser
