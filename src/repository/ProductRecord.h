#pragma once

#include "model/LibraryImpl.h"
#include "model/Model.h"

namespace LibraryBrowser {

// A product's entry in a store's top-level manifest, with the manifest that
// owns it, so that the entry stays valid for as long as the record is held.
// The handles of issue 4 are built on these records.
struct ProductRecord {
    ModelPtr manifest;
    LibraryImpl* library = nullptr;

    bool isNull() const { return library == nullptr; }
    bool operator==(const ProductRecord& o) const { return manifest == o.manifest && library == o.library; }
    bool operator!=(const ProductRecord& o) const { return !(*this == o); }
};

using ProductRecordList = std::vector<ProductRecord>;

} // namespace LibraryBrowser
