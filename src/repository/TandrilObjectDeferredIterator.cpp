#include "repository/TandrilObjectDeferredIterator.h"

namespace LibraryBrowser {

TandrilObjectIterator TandrilObjectDeferredIterator::defer(Make make)
{
    return TandrilObjectIterator(std::make_unique<TandrilObjectDeferredIterator>(std::move(make)));
}

TandrilObjectIterator& TandrilObjectDeferredIterator::made()
{
    if (!m_made)
        m_made = m_make();
    return *m_made;
}

std::unique_ptr<TandrilObjectBaseIterator> TandrilObjectDeferredIterator::clone() const
{
    // A copy made before the first use stays deferred too.
    auto copy = std::make_unique<TandrilObjectDeferredIterator>(m_make);
    copy->m_made = m_made;
    return copy;
}

} // namespace LibraryBrowser
