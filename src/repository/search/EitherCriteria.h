#pragma once

#include "repository/search/SearchCriteriaExpr.h"

namespace LibraryBrowser {

// Passes an object that either of two tests passes; the first is asked
// first, so the cheaper one goes there.
class EitherCriteria : public SearchCriteriaExpr {
public:
    EitherCriteria(std::unique_ptr<SearchCriteriaExpr> first, std::unique_ptr<SearchCriteriaExpr> second);

    bool matches(const TandrilObject& object) const override;
    std::unique_ptr<SearchCriteriaExpr> clone() const override;
    std::optional<bool> matchesShown(const ShownName& shown) const override;

private:
    std::unique_ptr<SearchCriteriaExpr> m_first;
    std::unique_ptr<SearchCriteriaExpr> m_second;
};

} // namespace LibraryBrowser
