#pragma once

#include "platform/StringId.h"
#include "repository/search/SearchCriteriaExpr.h"

namespace LibraryBrowser {

// An object whose node class is exactly the named one ("BlockImpl",
// "SubSystemImpl", "LibraryImpl", "LibraryRefImpl", "PaletteImpl"): no class
// above or below it counts.
class ExactBlockTypeCriteria : public SearchCriteriaExpr {
public:
    explicit ExactBlockTypeCriteria(const StringId& type) : m_type(type) {}

    bool matches(const TandrilObject& object) const override;
    std::unique_ptr<SearchCriteriaExpr> clone() const override;

private:
    StringId m_type;
};

} // namespace LibraryBrowser
