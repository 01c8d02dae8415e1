#pragma once

#include "platform/StringId.h"
#include "repository/search/SearchCriteriaExpr.h"
#include "repository/search/SearchPattern.h"

namespace LibraryBrowser {

// Passes an object whose string property (the shown name, for searches) has
// a match of the pattern anywhere in it. The expression is compiled once, in
// the constructor; each object costs a property lookup and one match.
class MatchStringCriteria : public SearchCriteriaExpr {
public:
    MatchStringCriteria(const std::string& pattern, SearchOptions::RegExp regExp,
                        SearchOptions::WholeWord wholeWord, SearchOptions::MatchCase matchCase,
                        const StringId& property);

    // The property that name searches look at.
    static const StringId& displayName();

    bool matches(const TandrilObject& object) const override;
    std::unique_ptr<SearchCriteriaExpr> clone() const override;
    std::optional<bool> matchesShown(const ShownName& shown) const override;

private:
    SearchPattern m_pattern;
    StringId m_property;
};

} // namespace LibraryBrowser
