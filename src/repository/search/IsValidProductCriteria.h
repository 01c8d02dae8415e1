#pragma once

#include "repository/search/SearchCriteriaExpr.h"

namespace LibraryBrowser {

// A valid library that is a product's root.
class IsValidProductCriteria : public SearchCriteriaExpr {
public:
    bool matches(const TandrilObject& object) const override;
    std::unique_ptr<SearchCriteriaExpr> clone() const override;
};

} // namespace LibraryBrowser
