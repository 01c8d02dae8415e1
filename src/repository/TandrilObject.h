#pragma once

#include "repository/Handle.h"
#include "repository/Block.h"
#include "repository/SubSystem.h"
#include "repository/Library.h"
#include "repository/LibraryRef.h"
#include "repository/Palette.h"

namespace LibraryBrowser {

class TandrilObjectImpl;

// A handle on any repository object; it tests and converts to every kind.
class TandrilObject : public Handle {
public:
    // The node class of this kind.
    using Impl = TandrilObjectImpl;

    TandrilObject() = default;
    TandrilObject(TandrilObjectImpl* node, ReaderCache* cache);
    // Every kind widens to this one, sharing the data.
    TandrilObject(const Handle& other) : Handle(other) {}
    // A handle on data a cache has found; for the repository store's use.
    static TandrilObject fromData(HandleData* data) { return TandrilObject(data); }

    // True when the node, once found, is of the kind or below it; the
    // placeholder of a missing object counts by its class.
    bool isBlock() const;
    bool isSubSystem() const;
    bool isLibrary() const;
    bool isLibraryRef() const;
    bool isPalette() const;
    // A handle of the target class on the same data, or a null one.
    Block toBlock() const;
    SubSystem toSubSystem() const;
    Library toLibrary() const;
    LibraryRef toLibraryRef() const;
    Palette toPalette() const;

private:
    // The conversions share the data with no second test.
    friend class Block;
    friend class SubSystem;
    explicit TandrilObject(HandleData* data) : Handle(data) {}
};

} // namespace LibraryBrowser

template <>
struct std::hash<LibraryBrowser::TandrilObject> : LibraryBrowser::HandleHash {};
