#include "repository/search/VocabularyWordMatcher.h"

#include <algorithm>

namespace LibraryBrowser {

VocabularyWordMatcher::VocabularyWordMatcher(const RankingIndex& index, std::string word, Field field, int keyword,
                                             int prefix)
    : WordMatcher(index, std::move(word)), m_field(field)
{
    const std::vector<std::string>& vocabulary = m_index.vocabulary();
    m_scores.resize(vocabulary.size(), 0);
    for (std::size_t i = 0; i < vocabulary.size(); ++i) {
        const std::string& known = vocabulary[i];
        if (known == m_word)
            m_scores[i] = std::uint16_t(keyword);
        else if (known.compare(0, m_word.size(), m_word) == 0)
            m_scores[i] = std::uint16_t(prefix);
        m_ceiling = std::max(m_ceiling, int(m_scores[i]));
    }
    if (m_field == Field::LibraryPath) {
        for (const std::vector<std::uint32_t>& words : m_index.libraries()) {
            std::uint16_t best = 0;
            for (const std::uint32_t word : words)
                best = std::max(best, m_scores[word]);
            m_libraryScores.push_back(best);
        }
    }
}

int VocabularyWordMatcher::score(std::size_t entry, std::vector<NameSpan>*) const
{
    if (m_field == Field::LibraryPath)
        return m_libraryScores[m_index.entry(entry).library];
    int best = 0;
    const std::uint32_t* end = m_index.descriptionEnd(entry);
    for (const std::uint32_t* word = m_index.descriptionBegin(entry); word != end && best < m_ceiling; ++word)
        best = std::max(best, int(m_scores[*word]));
    return best;
}

} // namespace LibraryBrowser
