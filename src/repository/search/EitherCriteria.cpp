#include "repository/search/EitherCriteria.h"

namespace LibraryBrowser {

EitherCriteria::EitherCriteria(std::unique_ptr<SearchCriteriaExpr> first, std::unique_ptr<SearchCriteriaExpr> second)
    : m_first(std::move(first)), m_second(std::move(second))
{
}

bool EitherCriteria::matches(const TandrilObject& object) const
{
    return m_first->matches(object) || m_second->matches(object);
}

std::unique_ptr<SearchCriteriaExpr> EitherCriteria::clone() const
{
    return std::make_unique<EitherCriteria>(m_first->clone(), m_second->clone());
}

std::optional<bool> EitherCriteria::matchesShown(const ShownName& shown) const
{
    const std::optional<bool> first = m_first->matchesShown(shown);
    if (first == true)
        return true;
    const std::optional<bool> second = m_second->matchesShown(shown);
    if (second == true)
        return true;
    if (first && second)
        return false;
    return std::nullopt;
}

} // namespace LibraryBrowser
