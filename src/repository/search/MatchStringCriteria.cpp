#include "repository/search/MatchStringCriteria.h"

#include "model/BlockImpl.h"
#include "model/MetaNode.h"
#include "model/NodeCast.h"
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
    // The shown name, which every search asks of every object, is read in
    // place rather than copied out through the property table.
    if (m_property == displayName()) {
        const auto* block = nodeCast<const BlockImpl>(node);
        return block && m_pattern.matches(block->getDisplayName());
    }
    const PropertyBase* property = node->metaNode().findProperty(m_property);
    return property && m_pattern.matches(property->getPropAsString(*node));
}

std::optional<bool> MatchStringCriteria::matchesShown(const ShownName& shown) const
{
    if (m_property != displayName())
        return std::nullopt;
    return shown.isBlock && m_pattern.matches(shown.text);
}

std::unique_ptr<SearchCriteriaExpr> MatchStringCriteria::clone() const
{
    return std::make_unique<MatchStringCriteria>(*this);
}

} // namespace LibraryBrowser
