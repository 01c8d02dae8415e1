#include "repository/search/ExactBlockTypeCriteria.h"

#include "model/TandrilObjectImpl.h"

namespace LibraryBrowser {

bool ExactBlockTypeCriteria::matches(const TandrilObject& object) const
{
    const TandrilObjectImpl* node = object.getImpl();
    return node && node->getTypeName() == m_type;
}

std::unique_ptr<SearchCriteriaExpr> ExactBlockTypeCriteria::clone() const
{
    return std::make_unique<ExactBlockTypeCriteria>(m_type);
}

} // namespace LibraryBrowser
