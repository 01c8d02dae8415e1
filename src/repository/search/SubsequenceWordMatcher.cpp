#include "repository/search/SubsequenceWordMatcher.h"

#include "repository/search/RankingText.h"
#include "repository/search/RankingWeights.h"

namespace LibraryBrowser {

int SubsequenceWordMatcher::ceiling() const { return RankingWeights::NameSubsequence; }

int SubsequenceWordMatcher::score(std::size_t entry, std::vector<NameSpan>* spans) const
{
    const std::string_view name = m_index.name(entry);
    std::size_t at = 0;
    std::size_t piece = 0;
    // Whole characters are compared, so that a byte of one character never
    // pairs with a byte of another.
    while (piece < m_word.size()) {
        std::size_t length = 1;
        while (piece + length < m_word.size() && RankingText::isContinuationByte(m_word[piece + length]))
            ++length;
        const std::size_t found = name.find(std::string_view(m_word).substr(piece, length), at);
        if (found == std::string_view::npos)
            return 0;
        if (spans) {
            if (!spans->empty() && std::size_t(spans->back().start + spans->back().length) == found)
                spans->back().length += int(length);
            else
                spans->push_back({int(found), int(length)});
        }
        at = found + length;
        piece += length;
    }
    return RankingWeights::NameSubsequence;
}

} // namespace LibraryBrowser
