#pragma once

#include "repository/search/WordMatcher.h"

#include <cstdint>

namespace LibraryBrowser {

// The word against the words of a block's description or of its library
// path: a whole word there is a keyword and scores higher than a word that
// only begins so. Which words of the vocabulary match is worked out once per
// query, so that each block costs a look at its few word ids.
class VocabularyWordMatcher : public WordMatcher {
public:
    enum class Field { Description, LibraryPath };

    VocabularyWordMatcher(const RankingIndex& index, std::string word, Field field, int keyword, int prefix);
    int ceiling() const override { return m_ceiling; }
    int score(std::size_t entry, std::vector<NameSpan>* spans) const override;

private:
    Field m_field;
    // The score of each word of the vocabulary: keyword, prefix or 0.
    std::vector<std::uint16_t> m_scores;
    // For the library path, the score of each library: blocks share few.
    std::vector<std::uint16_t> m_libraryScores;
    int m_ceiling = 0;
};

} // namespace LibraryBrowser
