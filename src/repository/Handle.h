#pragma once

#include "model/NodeCast.h"
#include "repository/BlockIcon.h"
#include "repository/HandleData.h"

#include <QRectF>

#include <cstddef>
#include <cstdint>
#include <string>

namespace LibraryBrowser {

class ReaderCache;
class TandrilObjectImpl;

// A value that stands for one repository object: two words (the virtual
// table and one counted pointer to the shared HandleData), cheap to copy and
// usable as a hash key. It holds no object data: every attribute finds the
// node through the data on demand, so a handle survives the reloading of its
// product and outlives its reader safely (it then reads as invalid). The
// typed classes derived from it are siblings; their conversions test the
// kind of the node.
class Handle {
public:
    Handle() = default;
    // Shares the cache's data for the node's id; null if either is null.
    Handle(TandrilObjectImpl* node, ReaderCache* cache);
    Handle(const Handle& other) : m_data(other.m_data)
    {
        if (m_data)
            m_data->ref();
    }
    Handle(Handle&& other) noexcept : m_data(other.m_data) { other.m_data = nullptr; }
    Handle& operator=(const Handle& other);
    Handle& operator=(Handle&& other) noexcept;
    virtual ~Handle()
    {
        if (m_data)
            m_data->unref();
    }

    // Data present, node found and not a placeholder.
    bool isValid() const;
    // "Block", "SubSystem", "Library", "LibraryRef", "Palette" after the
    // node's class; "InvalidBlock" when there is no node.
    std::string getType() const;
    std::string getPath() const;
    std::string getName() const;
    std::string getDisplayName() const;
    // Where the tree and the pages know the object by: its path as shown.
    std::string getDisplayPath() const;
    // The block's rectangle in its library; empty for anything else.
    QRectF getBlockPosition() const;
    std::string getProductName() const;
    std::string getDescription() const;
    // The icon the cache gives for a valid object, else null.
    BlockIconPtr getIcon() const;
    // True on anything that is no subsystem: a walker sees nothing below it.
    bool getIsEmpty() const;
    bool getIsFlat() const;
    bool getIsProduct() const;
    std::string getLibraryRefName() const;
    std::string getLibraryRefPath() const;

    bool isNull() const { return m_data == nullptr; }
    // The object's unique path; the empty id for a null handle.
    const StringId& id() const { return m_data ? m_data->id() : emptyId(); }
    // The numeric identity of the id, folded to 32 bits. Reads nothing else,
    // so hashing never loads a product.
    std::uint32_t hash() const
    {
        const std::uint64_t value = idValue();
        return std::uint32_t(value ^ (value >> 31));
    }
    std::uint64_t idValue() const { return std::uint64_t(reinterpret_cast<std::uintptr_t>(&id().str())); }

    HandleData* getData() const { return m_data; }
    // The node after resolution, or null; for the repository store's own use.
    TandrilObjectImpl* getImpl() const { return m_data ? m_data->resolve() : nullptr; }

protected:
    explicit Handle(HandleData* data) : m_data(data)
    {
        if (m_data)
            m_data->ref();
    }
    template <class Impl>
    Impl* implAs() const
    {
        return nodeCast<Impl>(getImpl());
    }

private:
    static const StringId& emptyId();

    HandleData* m_data = nullptr;
};

// Handles of any classes compare by the identity of their ids: a stable
// order for one run, not an alphabetical one.
inline bool operator==(const Handle& a, const Handle& b) { return a.idValue() == b.idValue(); }
inline bool operator!=(const Handle& a, const Handle& b) { return a.idValue() != b.idValue(); }
inline bool operator<(const Handle& a, const Handle& b) { return a.idValue() < b.idValue(); }
inline bool operator>(const Handle& a, const Handle& b) { return a.idValue() > b.idValue(); }
inline bool operator<=(const Handle& a, const Handle& b) { return a.idValue() <= b.idValue(); }
inline bool operator>=(const Handle& a, const Handle& b) { return a.idValue() >= b.idValue(); }

inline std::size_t qHash(const Handle& handle, std::size_t seed = 0) { return handle.hash() ^ seed; }

struct HandleHash {
    std::size_t operator()(const Handle& handle) const { return handle.hash(); }
};

} // namespace LibraryBrowser
