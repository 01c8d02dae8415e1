#pragma once

#include "model/TandrilObjectImpl.h"

namespace LibraryBrowser {

// A block of a library: what the browser shows as one tile.
class BlockImpl : public TandrilObjectImpl {
    TDLB_NODE_CLASS_BODY(BlockImpl)
    TDLB_BlockImpl_OWN(TDLB_DECLARE_PROPERTY)

public:
    BlockImpl() = default;
    explicit BlockImpl(Model* model) : TandrilObjectImpl(model) {}
};

} // namespace LibraryBrowser
