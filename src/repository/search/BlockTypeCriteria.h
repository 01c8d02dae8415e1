#pragma once

#include "model/LibraryRefImpl.h"
#include "model/PaletteImpl.h"
#include "repository/search/SearchCriteriaExpr.h"

namespace LibraryBrowser {

// An object of kind T or of a kind below it. BlockTypeCriteria<SubSystem>
// lets subsystems, libraries, library references and palettes through.
template <class T>
class BlockTypeCriteria : public SearchCriteriaExpr {
public:
    bool matches(const TandrilObject& object) const override
    {
        return dynamic_cast<const typename T::Impl*>(object.getImpl()) != nullptr;
    }
    std::unique_ptr<SearchCriteriaExpr> clone() const override { return std::make_unique<BlockTypeCriteria<T>>(); }
};

} // namespace LibraryBrowser
