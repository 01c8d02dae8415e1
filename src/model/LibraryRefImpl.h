#pragma once

#include "model/SubSystemImpl.h"

namespace LibraryBrowser {

// A block that stands for another library (or a part of one), resolved by
// the unique path of its target.
class LibraryRefImpl : public SubSystemImpl {
    TDLB_NODE_CLASS_BODY(LibraryRefImpl)
    TDLB_LibraryRefImpl_OWN(TDLB_DECLARE_PROPERTY)

public:
    LibraryRefImpl() = default;
    explicit LibraryRefImpl(Model* model) : SubSystemImpl(model) {}
};

} // namespace LibraryBrowser
