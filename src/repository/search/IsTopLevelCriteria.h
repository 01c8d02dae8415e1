#pragma once

#include "repository/search/SearchCriteriaExpr.h"

namespace LibraryBrowser {

// A valid product that is shown at the top of the tree.
class IsTopLevelCriteria : public SearchCriteriaExpr {
public:
    bool matches(const TandrilObject& object) const override;
    std::unique_ptr<SearchCriteriaExpr> clone() const override;
};

} // namespace LibraryBrowser
