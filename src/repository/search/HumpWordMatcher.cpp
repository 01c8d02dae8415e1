#include "repository/search/HumpWordMatcher.h"

#include "repository/search/RankingText.h"
#include "repository/search/RankingWeights.h"

namespace LibraryBrowser {

int HumpWordMatcher::ceiling() const { return m_word.size() > 1 ? RankingWeights::NameHumps : 0; }

int HumpWordMatcher::score(std::size_t entry, std::vector<NameSpan>* spans) const
{
    m_starts = m_index.wordStartsBegin(entry);
    m_startCount = std::size_t(m_index.wordStartsEnd(entry) - m_starts);
    if (m_startCount < 2 || m_word.size() < 2)
        return 0;
    m_name = m_index.name(entry);
    // Most names have no word that begins with the word's first letter.
    bool anyFirst = false;
    for (std::size_t i = 0; i < m_startCount && !anyFirst; ++i)
        anyFirst = m_name[m_starts[i]] == m_word[0];
    if (!anyFirst)
        return 0;
    m_failed.assign((m_word.size() + 1) * (m_startCount + 1), 0);
    std::vector<NameSpan> chosen;
    if (!lay(0, 0, 0, chosen))
        return 0;
    if (spans)
        spans->insert(spans->end(), chosen.begin(), chosen.end());
    return RankingWeights::NameHumps;
}

bool HumpWordMatcher::lay(std::size_t piece, std::size_t start, int pieces, std::vector<NameSpan>& chosen) const
{
    // A single piece is a word start, which the name matcher scores higher;
    // so the state is also keyed by whether a piece was laid already.
    char& failed = m_failed[piece * (m_startCount + 1) + start];
    if (pieces > 0 && failed)
        return false;
    for (std::size_t s = start; s < m_startCount; ++s) {
        const std::size_t at = m_starts[s];
        std::size_t common = 0;
        while (piece + common < m_word.size() && at + common < m_name.size() &&
               m_word[piece + common] == m_name[at + common])
            ++common;
        for (std::size_t length = common; length > 0; --length) {
            const std::size_t rest = piece + length;
            if (rest < m_word.size() && RankingText::isContinuationByte(m_word[rest]))
                continue;
            if (rest == m_word.size()) {
                if (pieces == 0)
                    continue;
                chosen.push_back({int(at), int(length)});
                return true;
            }
            std::size_t following = s + 1;
            while (following < m_startCount && m_starts[following] < at + length)
                ++following;
            chosen.push_back({int(at), int(length)});
            if (lay(rest, following, pieces + 1, chosen))
                return true;
            chosen.pop_back();
        }
    }
    if (pieces > 0)
        failed = 1;
    return false;
}

} // namespace LibraryBrowser
