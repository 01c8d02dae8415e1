#include "repository/search/MatchStringCriteria.h"

#include "model/MetaNode.h"
#include "model/TandrilObjectImpl.h"

namespace LibraryBrowser {

MatchStringCriteria::MatchStringCriteria(const std::string& pattern, SearchOptions::RegExp regExp,
                                         SearchOptions::WholeWord wholeWord, SearchOptions::MatchCase matchCase,
                                         const StringId& property)
    : m_pattern(pattern, regExp, wholeWord, matchCase), m_property(property)
{
}

const StringId& MatchStringCriteria::displayName()
{
    static const StringId name("displayName");
    return name;
}

bool MatchStringCriteria::matches(const TandrilObject& object) const
{
    const TandrilObjectImpl* node = object.getImpl();
    if (!node)
        return false;
    const PropertyBase* property = node->metaNode().findProperty(m_property);
    return property && m_pattern.matches(property->getPropAsString(*node));
}

std::unique_ptr<SearchCriteriaExpr> MatchStringCriteria::clone() const
{
    return std::make_unique<MatchStringCriteria>(*this);
}

} // namespace LibraryBrowser
