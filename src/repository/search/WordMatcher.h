#pragma once

#include "repository/search/RankedBlock.h"
#include "repository/search/RankingIndex.h"

#include <cstddef>
#include <string>
#include <vector>

namespace LibraryBrowser {

// One way in which a word of a query can match a block of the index. A
// matcher is made for one word of one query, so that it can prepare what
// serves every block (a table over the vocabulary, say) once.
class WordMatcher {
public:
    WordMatcher(const RankingIndex& index, std::string word) : m_index(index), m_word(std::move(word)) {}
    virtual ~WordMatcher() = default;

    // The highest score this matcher can give: the ranker asks no matcher
    // whose ceiling the word has already reached.
    virtual int ceiling() const = 0;
    // The word's score on the entry, 0 when it doesn't match this way. With
    // `spans`, the matched runs of the lower-cased name are added, in bytes.
    virtual int score(std::size_t entry, std::vector<NameSpan>* spans) const = 0;

protected:
    const RankingIndex& m_index;
    // Lower-cased, UTF-8.
    const std::string m_word;
};

} // namespace LibraryBrowser
