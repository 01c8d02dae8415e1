#pragma once

#include "repository/search/WordMatcher.h"

namespace LibraryBrowser {

// The word as one run of the name: the whole name, its beginning, the
// beginning of one of its words, or anywhere inside it, in falling order.
class NameWordMatcher : public WordMatcher {
public:
    using WordMatcher::WordMatcher;
    int ceiling() const override;
    int score(std::size_t entry, std::vector<NameSpan>* spans) const override;
};

} // namespace LibraryBrowser
