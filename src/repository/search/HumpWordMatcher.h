#pragma once

#include "repository/search/WordMatcher.h"

#include <cstdint>

namespace LibraryBrowser {

// The word cut into pieces that begin words of the name in order, two
// pieces at least: "dpc" finds "Discrete PID Controller", "pidcon" finds
// "PID Controller", "tf" finds "TransferFcn".
class HumpWordMatcher : public WordMatcher {
public:
    using WordMatcher::WordMatcher;
    int ceiling() const override;
    int score(std::size_t entry, std::vector<NameSpan>* spans) const override;

private:
    // Whether the word from `piece` on can be laid over word starts from
    // `start` on; failures are remembered, which keeps a hostile name with
    // many words from costing more than word length times word count.
    bool lay(std::size_t piece, std::size_t start, int pieces, std::vector<NameSpan>& chosen) const;

    // Per score call: the entry's name and starts, and the failed states.
    mutable std::string_view m_name;
    mutable const std::uint32_t* m_starts = nullptr;
    mutable std::size_t m_startCount = 0;
    mutable std::vector<char> m_failed;
};

} // namespace LibraryBrowser
