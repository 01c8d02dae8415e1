#pragma once

#include "repository/ShownName.h"
#include "repository/TandrilObject.h"

#include <memory>
#include <optional>

namespace LibraryBrowser {

// One yes-or-no test on an object: the filter that a search iterator lays
// over a walk.
class SearchCriteriaExpr {
public:
    virtual ~SearchCriteriaExpr() = default;

    virtual bool matches(const TandrilObject& object) const = 0;
    virtual std::unique_ptr<SearchCriteriaExpr> clone() const = 0;
    // The answer from an object's shown name and kind alone, where this test
    // can give one; empty where it needs the object itself.
    virtual std::optional<bool> matchesShown(const ShownName&) const { return std::nullopt; }
};

} // namespace LibraryBrowser
