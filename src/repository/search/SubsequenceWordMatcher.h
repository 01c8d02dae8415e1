#pragma once

#include "repository/search/WordMatcher.h"

namespace LibraryBrowser {

// The word's letters in order anywhere in the name, with gaps: "sqwv"
// finds "Square Wave". The weakest match a name can give.
class SubsequenceWordMatcher : public WordMatcher {
public:
    using WordMatcher::WordMatcher;
    int ceiling() const override;
    int score(std::size_t entry, std::vector<NameSpan>* spans) const override;
};

} // namespace LibraryBrowser
