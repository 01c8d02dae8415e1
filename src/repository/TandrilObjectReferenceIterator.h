#pragma once

#include "repository/TandrilObjectIterator.h"

#include <memory>
#include <vector>

namespace LibraryBrowser {

class ReaderCache;

using TandrilObjectList = std::vector<TandrilObject>;
using TandrilObjectListPtr = std::shared_ptr<const TandrilObjectList>;

// An engine over objects a cache already holds. The list form runs over a
// shared, unchanging list (a cache's children list is handed out without a
// copy). The wrapping form runs over another iterator and gives its objects
// as handles of this iterator's cache, which moves them to that cache.
class TandrilObjectReferenceIterator : public TandrilObjectBaseIterator {
public:
    TandrilObjectReferenceIterator(ReaderCache* cache, TandrilObjectListPtr list);
    TandrilObjectReferenceIterator(ReaderCache* cache, TandrilObjectIterator wrapped);

    // The list form as a ready iterator.
    static TandrilObjectIterator overList(ReaderCache* cache, TandrilObjectListPtr list);
    static TandrilObjectIterator overList(ReaderCache* cache, TandrilObjectList list);
    // A list with the shown names of its objects, in its order.
    static TandrilObjectIterator overList(ReaderCache* cache, TandrilObjectListPtr list, ShownNamesPtr names);

    TandrilObject current() override;
    void next() override;
    bool isValid() override;
    void restart() override;
    std::unique_ptr<TandrilObjectBaseIterator> clone() const override;
    const ShownName* currentShownName() override;

private:
    ReaderCache* m_cache;
    TandrilObjectListPtr m_list;
    std::size_t m_cursor = 0;
    // Null, or one per element of the list.
    ShownNamesPtr m_names;
    TandrilObjectIterator m_wrapped;
    bool m_wrapping;
};

} // namespace LibraryBrowser
