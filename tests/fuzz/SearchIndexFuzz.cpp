// A search index entry as a damaged or hostile store may hold it: refused,
// or read whole. What is read writes back to the same bytes, and a search
// over it (the first byte picks the options) ends, references and all.
#include "FuzzInput.h"

#include "repository/search/IndexedSearch.h"

#include <cstdio>
#include <cstdlib>

using namespace LibraryBrowser;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const unsigned options = data[0];
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    std::string problem;
    const std::optional<SearchIndex> index = SearchIndex::fromBytes(bytes, problem);
    if (!index) {
        if (problem.empty()) {
            std::fprintf(stderr, "refused without a reason\n");
            std::abort();
        }
        return 0;
    }
    if (index->toBytes() != bytes) {
        std::fprintf(stderr, "read %zu objects that write back otherwise\n", index->objects().size());
        std::abort();
    }
    // Every product is this one: its references lead back into it.
    const auto shared = std::make_shared<const SearchIndex>(*index);
    IndexedSearch search("a", (options & 1) ? SearchOptions::RegExpOn : SearchOptions::RegExpOff,
                         (options & 2) ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff,
                         (options & 4) ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff, (options & 8) != 0,
                         [&](const std::string&) { return shared; });
    const std::optional<IndexedSearch::Hits> hits = search.search("p", "P");
    if (hits && int(hits->paths.size()) != hits->blocks + hits->subsystems) {
        std::fprintf(stderr, "listed %zu hits of %d\n", hits->paths.size(), hits->blocks + hits->subsystems);
        std::abort();
    }
    return 0;
}
