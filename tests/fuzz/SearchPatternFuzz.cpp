// What a user may type into the search box, under every option: the
// translation and the expression engine on arbitrary text. The first byte
// picks the options.
#include "FuzzInput.h"

#include "repository/search/SearchPattern.h"

#include <cstdio>
#include <cstdlib>

using namespace LibraryBrowser;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const unsigned options = data[0];
    const std::string pattern(reinterpret_cast<const char*>(data + 1), size - 1);

    // The limit is checked after each input byte, and one byte becomes at
    // most three ("\\s+").
    const std::string translated = SearchPattern::translatePlainPattern(pattern);
    if (translated.size() > SearchPattern::MaxTranslatedLength + 2) {
        std::fprintf(stderr, "translation of %zu bytes is longer than the limit\n", translated.size());
        std::abort();
    }

    const SearchPattern search(pattern, (options & 1) ? SearchOptions::RegExpOn : SearchOptions::RegExpOff,
                               (options & 2) ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff,
                               (options & 4) ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff);
    // Block names are short; a long subject only measures the engine's
    // backtracking, which the search never meets.
    for (const std::string& text : {std::string("Gain"), std::string("Discrete Transfer Fcn"),
                                    std::string("Sum\nof elements"), std::string("\xc3\xa9t\xc3\xa9 2"),
                                    pattern.substr(0, 32)}) {
        const bool matched = search.matches(text);
        if (matched && !search.isValid()) {
            std::fprintf(stderr, "an invalid expression matched '%s'\n", text.c_str());
            std::abort();
        }
    }
    return 0;
}
