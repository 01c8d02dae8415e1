#pragma once

#include "repository/TandrilObjectIterator.h"
#include "repository/search/SearchCriteriaExpr.h"

#include <memory>

namespace LibraryBrowser {

// An engine that filters another iterator lazily: it stands where the inner
// iterator stands, and only asking whether it is valid moves the inner one
// on to the next match. It owns its criteria and its copy of the inner walk.
class TandrilObjectSearchIterator : public TandrilObjectBaseIterator {
public:
    TandrilObjectSearchIterator(TandrilObjectIterator inner, std::unique_ptr<SearchCriteriaExpr> criteria);

    // The filtered iterator, ready to use.
    static TandrilObjectIterator filter(TandrilObjectIterator inner, std::unique_ptr<SearchCriteriaExpr> criteria);

    TandrilObject current() override;
    void next() override;
    bool isValid() override;
    void restart() override;
    std::unique_ptr<TandrilObjectBaseIterator> clone() const override;

private:
    std::unique_ptr<SearchCriteriaExpr> m_criteria;
    TandrilObjectIterator m_inner;
};

} // namespace LibraryBrowser
