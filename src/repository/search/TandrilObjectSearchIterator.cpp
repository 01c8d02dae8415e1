#include "repository/search/TandrilObjectSearchIterator.h"

namespace LibraryBrowser {

TandrilObjectSearchIterator::TandrilObjectSearchIterator(TandrilObjectIterator inner,
                                                         std::unique_ptr<SearchCriteriaExpr> criteria)
    : m_criteria(std::move(criteria)), m_inner(std::move(inner))
{
}

TandrilObjectIterator TandrilObjectSearchIterator::filter(TandrilObjectIterator inner,
                                                          std::unique_ptr<SearchCriteriaExpr> criteria)
{
    return TandrilObjectIterator(std::make_unique<TandrilObjectSearchIterator>(std::move(inner), std::move(criteria)));
}

bool TandrilObjectSearchIterator::isValid()
{
    while (m_inner.isValidIterator()) {
        // The packed shown name answers most objects without their node.
        const ShownName* shown = m_inner.currentShownName();
        const std::optional<bool> known = shown ? m_criteria->matchesShown(*shown) : std::nullopt;
        if (known ? *known : m_criteria->matches(m_inner.current()))
            return true;
        m_inner.next();
    }
    return false;
}

TandrilObject TandrilObjectSearchIterator::current()
{
    isValid();
    return m_inner.current();
}

void TandrilObjectSearchIterator::next()
{
    isValid();
    m_inner.next();
}

void TandrilObjectSearchIterator::restart()
{
    m_inner.restart();
}

std::unique_ptr<TandrilObjectBaseIterator> TandrilObjectSearchIterator::clone() const
{
    return std::make_unique<TandrilObjectSearchIterator>(m_inner, m_criteria->clone());
}

} // namespace LibraryBrowser
