#pragma once

#include "repository/search/RankedBlock.h"
#include "repository/search/RankingIndex.h"
#include "repository/search/RankingQuery.h"

namespace LibraryBrowser {

class RepositoryReader;

// The ranked search over the repository's blocks: every word of a query
// must match a block somewhere, in any order. A word scores by the best way
// it matches (RankingWeights): the whole name, its beginning, a word start,
// word starts and camel humps, inside the name, the letters in order; with
// lower weights a keyword or a word beginning of the description, then of
// the library path. The words' scores add up; favourites and recently used
// blocks get a boost. Ties go to the shorter name, then to tree order.
//
// The ranker answers from its index alone and reads no manifest; answers
// are values that stay valid after the ranker is gone.
class BlockRanker {
public:
    explicit BlockRanker(RankingIndexPtr index);
    // Builds the index from the reader: a walk of the whole repository.
    explicit BlockRanker(RepositoryReader& reader);

    RankingResult rank(const RankingQuery& query) const;

    const RankingIndex& index() const { return *m_index; }
    const RankingIndexPtr& sharedIndex() const { return m_index; }

    // The words of a query, lower-cased, split at white space.
    static std::vector<std::string> queryWords(const std::string& text);

private:
    RankingResult favouritesAndRecents(const RankingQuery& query) const;

    RankingIndexPtr m_index;
};

} // namespace LibraryBrowser
