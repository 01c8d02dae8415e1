#include "repository/search/BlockRanker.h"

#include "repository/search/HumpWordMatcher.h"
#include "repository/search/NameWordMatcher.h"
#include "repository/search/RankingText.h"
#include "repository/search/RankingWeights.h"
#include "repository/search/SubsequenceWordMatcher.h"
#include "repository/search/VocabularyWordMatcher.h"

#include <QStringList>

#include <algorithm>
#include <memory>

namespace LibraryBrowser {

namespace {

enum Boost : std::uint8_t { Favourite = 1, Recent = 2 };

struct Candidate {
    int score;
    std::uint32_t characters;
    std::uint32_t entry;
    std::uint8_t boosts;
};

bool better(const Candidate& a, const Candidate& b)
{
    if (a.score != b.score)
        return a.score > b.score;
    if (a.characters != b.characters)
        return a.characters < b.characters;
    return a.entry < b.entry;
}

using Matchers = std::vector<std::unique_ptr<WordMatcher>>;

// The ways one word may match, highest ceiling first.
Matchers matchersFor(const RankingIndex& index, const std::string& word)
{
    using Field = VocabularyWordMatcher::Field;
    Matchers matchers;
    matchers.push_back(std::make_unique<NameWordMatcher>(index, word));
    matchers.push_back(std::make_unique<HumpWordMatcher>(index, word));
    matchers.push_back(std::make_unique<SubsequenceWordMatcher>(index, word));
    matchers.push_back(std::make_unique<VocabularyWordMatcher>(index, word, Field::Description,
                                                               RankingWeights::DescriptionKeyword,
                                                               RankingWeights::DescriptionPrefix));
    matchers.push_back(std::make_unique<VocabularyWordMatcher>(index, word, Field::LibraryPath,
                                                               RankingWeights::LibraryKeyword,
                                                               RankingWeights::LibraryPrefix));
    std::stable_sort(matchers.begin(), matchers.end(),
                     [](const auto& a, const auto& b) { return a->ceiling() > b->ceiling(); });
    while (!matchers.empty() && matchers.back()->ceiling() == 0)
        matchers.pop_back();
    return matchers;
}

int bestScore(const Matchers& matchers, std::size_t entry, std::vector<NameSpan>* spans)
{
    int best = 0;
    const WordMatcher* winner = nullptr;
    for (const auto& matcher : matchers) {
        if (matcher->ceiling() <= best)
            break;
        const int score = matcher->score(entry, nullptr);
        if (score > best) {
            best = score;
            winner = matcher.get();
        }
    }
    if (spans && winner)
        winner->score(entry, spans);
    return best;
}

// Byte runs of the lower-cased name, merged, as character runs.
std::vector<NameSpan> characterSpans(std::vector<NameSpan> bytes, std::string_view name)
{
    std::sort(bytes.begin(), bytes.end(), [](const NameSpan& a, const NameSpan& b) { return a.start < b.start; });
    std::vector<NameSpan> merged;
    for (const NameSpan& span : bytes) {
        if (!merged.empty() && span.start <= merged.back().start + merged.back().length)
            merged.back().length = std::max(merged.back().length, span.start + span.length - merged.back().start);
        else
            merged.push_back(span);
    }
    for (NameSpan& span : merged) {
        const int start = RankingText::characterIndex(name, std::size_t(span.start));
        span.length = RankingText::characterIndex(name, std::size_t(span.start + span.length)) - start;
        span.start = start;
    }
    return merged;
}

int boostScore(std::uint8_t boosts)
{
    return (boosts & Favourite ? RankingWeights::Favourite : 0) + (boosts & Recent ? RankingWeights::Recent : 0);
}

// The boosted entries in index order, for a walk alongside the entries.
std::vector<std::pair<std::uint32_t, std::uint8_t>> boostedEntries(const RankingIndex& index, const RankingQuery& query)
{
    std::vector<std::pair<std::uint32_t, std::uint8_t>> boosted;
    auto add = [&](const std::unordered_set<std::string>& paths, std::uint8_t boost) {
        for (const std::string& path : paths) {
            const std::size_t entry = index.findPath(path);
            if (entry < index.size())
                boosted.emplace_back(std::uint32_t(entry), boost);
        }
    };
    add(query.favourites, Favourite);
    add(query.recents, Recent);
    std::sort(boosted.begin(), boosted.end());
    std::vector<std::pair<std::uint32_t, std::uint8_t>> merged;
    for (const auto& [entry, boost] : boosted) {
        if (!merged.empty() && merged.back().first == entry)
            merged.back().second |= boost;
        else
            merged.emplace_back(entry, boost);
    }
    return merged;
}

RankedBlock rankedBlock(const RankingIndex& index, const Candidate& candidate)
{
    RankedBlock block;
    block.block = index.entry(candidate.entry).block;
    block.score = candidate.score;
    block.favourite = candidate.boosts & Favourite;
    block.recent = candidate.boosts & Recent;
    return block;
}

void keepBest(std::vector<Candidate>& candidates, std::size_t limit)
{
    const std::size_t kept = limit == 0 ? candidates.size() : std::min(limit, candidates.size());
    std::partial_sort(candidates.begin(), candidates.begin() + std::ptrdiff_t(kept), candidates.end(), better);
    candidates.resize(kept);
}

} // namespace

BlockRanker::BlockRanker(RankingIndexPtr index) : m_index(std::move(index)) {}

BlockRanker::BlockRanker(RepositoryReader& reader) : m_index(RankingIndex::build(reader)) {}

std::vector<std::string> BlockRanker::queryWords(const std::string& text)
{
    std::vector<std::string> words;
    for (const QString& word : QString::fromStdString(text).simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts))
        words.push_back(RankingText::lowered(word.toStdString()));
    return words;
}

RankingResult BlockRanker::rank(const RankingQuery& query) const
{
    const std::vector<std::string> words = queryWords(query.text);
    if (words.empty())
        return favouritesAndRecents(query);

    const RankingIndex& index = *m_index;
    std::vector<Matchers> matchers;
    for (const std::string& word : words)
        matchers.push_back(matchersFor(index, word));
    const auto boosted = boostedEntries(index, query);
    auto nextBoosted = boosted.begin();

    std::vector<Candidate> candidates;
    for (std::size_t entry = 0; entry < index.size(); ++entry) {
        int total = 0;
        for (const Matchers& word : matchers) {
            const int score = bestScore(word, entry, nullptr);
            if (score == 0) {
                total = 0;
                break;
            }
            total += score;
        }
        while (nextBoosted != boosted.end() && nextBoosted->first < entry)
            ++nextBoosted;
        if (total == 0)
            continue;
        const std::uint8_t boosts =
            nextBoosted != boosted.end() && nextBoosted->first == entry ? nextBoosted->second : 0;
        candidates.push_back({total + boostScore(boosts), index.entry(entry).nameCharacters,
                              std::uint32_t(entry), boosts});
    }

    RankingResult result;
    result.total = candidates.size();
    keepBest(candidates, query.limit);
    for (const Candidate& candidate : candidates) {
        RankedBlock block = rankedBlock(index, candidate);
        std::vector<NameSpan> bytes;
        for (const Matchers& word : matchers)
            bestScore(word, candidate.entry, &bytes);
        block.spans = characterSpans(std::move(bytes), index.name(candidate.entry));
        result.blocks.push_back(std::move(block));
    }
    return result;
}

// Favourites first, then recently used blocks, each in tree order; the
// caller knows the order the user made them in.
RankingResult BlockRanker::favouritesAndRecents(const RankingQuery& query) const
{
    std::vector<Candidate> candidates;
    for (const auto& [entry, boosts] : boostedEntries(*m_index, query))
        candidates.push_back({boostScore(boosts), 0, entry, boosts});
    RankingResult result;
    result.total = candidates.size();
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.score > b.score; });
    keepBest(candidates, query.limit);
    for (const Candidate& candidate : candidates)
        result.blocks.push_back(rankedBlock(*m_index, candidate));
    return result;
}

} // namespace LibraryBrowser
