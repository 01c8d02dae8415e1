#pragma once

namespace LibraryBrowser {

// A checked downcast of a manifest node through its meta model, which
// mirrors the class tree: a few pointer compares, where a dynamic_cast was
// the largest single cost of walking and searching the repository.
template <class Impl, class From>
Impl* nodeCast(From* node)
{
    return node && node->metaNode().isKindOf(Impl::staticMetaNode()) ? static_cast<Impl*>(node) : nullptr;
}

} // namespace LibraryBrowser
