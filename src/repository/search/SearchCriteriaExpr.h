#pragma once

#include "repository/TandrilObject.h"

#include <memory>

namespace LibraryBrowser {

// One yes-or-no test on an object: the filter that a search iterator lays
// over a walk.
class SearchCriteriaExpr {
public:
    virtual ~SearchCriteriaExpr() = default;

    virtual bool matches(const TandrilObject& object) const = 0;
    virtual std::unique_ptr<SearchCriteriaExpr> clone() const = 0;
};

} // namespace LibraryBrowser
