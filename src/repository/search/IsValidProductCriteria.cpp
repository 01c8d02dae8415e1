#include "repository/search/IsValidProductCriteria.h"

namespace LibraryBrowser {

bool IsValidProductCriteria::matches(const TandrilObject& object) const
{
    const Library library = object.toLibrary();
    return library.isValid() && library.getIsProduct();
}

std::unique_ptr<SearchCriteriaExpr> IsValidProductCriteria::clone() const
{
    return std::make_unique<IsValidProductCriteria>();
}

} // namespace LibraryBrowser
