#pragma once

#include "model/SubSystemImpl.h"

namespace LibraryBrowser {

class LibraryImpl;
using LibraryImplList = NodeList<LibraryImpl>;
using LibraryImplPointer = LibraryImpl*;

// A library: a product's root or a library below one. Also the record of a
// product in the top-level manifest, with the files it depends on.
class LibraryImpl : public SubSystemImpl {
    TDLB_NODE_CLASS_BODY(LibraryImpl)
    TDLB_LibraryImpl_OWN(TDLB_DECLARE_PROPERTY)

public:
    LibraryImpl() = default;
    explicit LibraryImpl(Model* model) : SubSystemImpl(model) {}

    // The live containers, for code that edits them in place.
    FileInfoVector* getFileDependenciesPtr() { markDirty(); return &m_fileDependencies; }
    StringVector* getChildrenPtr() { markDirty(); return &m_children; }
    LibraryImplList* getDependenciesPtr() { markDirty(); return &m_dependencies; }

    void internalSwizzleNodePointers(const NodeMap& map) override;
};

} // namespace LibraryBrowser
