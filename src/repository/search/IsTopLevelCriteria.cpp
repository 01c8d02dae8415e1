#include "repository/search/IsTopLevelCriteria.h"

#include "model/LibraryImpl.h"

namespace LibraryBrowser {

bool IsTopLevelCriteria::matches(const TandrilObject& object) const
{
    const Library library = object.toLibrary();
    if (!library.isValid())
        return false;
    const auto* node = static_cast<const LibraryImpl*>(library.getImpl());
    return node->getIsProduct() && node->getIsTopLevel();
}

std::unique_ptr<SearchCriteriaExpr> IsTopLevelCriteria::clone() const
{
    return std::make_unique<IsTopLevelCriteria>();
}

} // namespace LibraryBrowser
