#include "repository/search/NameWordMatcher.h"

#include "repository/search/RankingWeights.h"

#include <algorithm>

namespace LibraryBrowser {

int NameWordMatcher::ceiling() const { return RankingWeights::ExactName; }

int NameWordMatcher::score(std::size_t entry, std::vector<NameSpan>* spans) const
{
    const std::string_view name = m_index.name(entry);
    std::size_t at = name.find(m_word);
    if (at == std::string_view::npos)
        return 0;
    int found = RankingWeights::InsideName;
    if (name.size() == m_word.size()) {
        found = RankingWeights::ExactName;
    } else if (at == 0) {
        found = RankingWeights::NamePrefix;
    } else {
        const std::uint32_t* starts = m_index.wordStartsBegin(entry);
        const std::uint32_t* end = m_index.wordStartsEnd(entry);
        for (std::size_t next = at; next != std::string_view::npos; next = name.find(m_word, next + 1)) {
            if (std::binary_search(starts, end, std::uint32_t(next))) {
                found = RankingWeights::NameWordStart;
                at = next;
                break;
            }
        }
    }
    if (spans)
        spans->push_back({int(at), int(m_word.size())});
    return found;
}

} // namespace LibraryBrowser
