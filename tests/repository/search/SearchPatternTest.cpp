#include "repository/search/SearchPattern.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

namespace {

struct Case {
    const char* pattern;
    const char* name;
    bool matches;
    bool regExp = false;
    bool wholeWord = false;
    bool matchCase = false;
};

} // namespace

TEST(SearchPattern, MatchesByTheOptionsEachNameOnItsOwn)
{
    const Case cases[] = {
        // Plain words match anywhere, without case, non-ASCII letters too.
        {"gain", "Variable Gain Amplifier", true}, {"GAIN", "gain", true}, {"gain", "Gai n", false},
        {"", "anything", true}, {"\u00e4quator", "\u00c4quator Scope", true},
        // Names and patterns are read as Unicode, not byte by byte: a letter
        // beyond ASCII folds its case, and "?" stands for the whole of it.
        {"r\u00e9sonateur", "R\u00e9sonateur", true}, {"r?sonateur", "R\u00e9sonateur", true},
        {"r??sonateur", "R\u00e9sonateur", false}, {"gain", "Variable Gain", false, false, false, true},
        {"Gain", "Variable Gain", true, false, false, true},
        // Whole words refuse parts of longer words; the boundaries bind to
        // the outer alternatives only.
        {"gain", "Variable Gain", true, false, true}, {"gain", "Gains", false, false, true},
        {"gain", "Again", false, false, true}, {"sum|gain", "Again", true, true, true},
        {"(sum|gain)", "Again", false, true, true},
        // Wildcards and escapes of plain patterns; operators with the option.
        {"s?ne", "Sine Wave", true}, {"sig*gen", "Signal Generator", true}, {"1.5", "Gain 1.5", true},
        {"1.5", "Gain 105", false}, {"a+b", "a+b", true}, {"1.5", "Gain 105", true, true}, {"^s?ne", "Sine Wave", true},
        {"^s?ne", "Sine Wave", false, true}, {"^sine", "Sine Wave", true, true},
        // Bars, anchors and blanks keep their meaning in plain patterns.
        {"scope|gain", "XY Scope", true}, {"^sine", "Sine Wave", true}, {"^wave", "Sine Wave", false},
        {"wave$", "Sine Wave", true}, {"sine wave", "Sine    Wave", true}, {"sine wave", "Sine\nWave", true},
        {"sine  wave", "Sine Wave", true}, {"sine wave", "SineWave", false}, {"wave ", "Sine Wave", false},
        {"sine ", "Sine Wave", true},
        // Invalid expressions match nothing, not even themselves.
        {"(", "(", false}, {"(", "Sine (Wave)", false}, {"[abc", "abc", false, true},
    };
    for (const Case& c : cases) {
        const SearchPattern pattern(c.pattern, c.regExp ? SearchOptions::RegExpOn : SearchOptions::RegExpOff,
                                    c.wholeWord ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff,
                                    c.matchCase ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff);
        EXPECT_EQ(pattern.matches(c.name), c.matches)
            << "'" << c.pattern << "' on '" << c.name << "' regexp " << c.regExp << " word " << c.wholeWord
            << " case " << c.matchCase;
    }

    // One pattern matched over many names in turn, as a search does: nothing of a longer name, or
    // of one beyond ASCII, may stay behind for the next.
    const SearchPattern endsInWave("wave$", SearchOptions::RegExpOn, SearchOptions::WholeWordOff,
                                   SearchOptions::MatchCaseOff);
    const std::pair<const char*, bool> names[] = {
        {"Sine Wave", true}, {"Sine", false}, {"R\u00e9sonateur \u00c4quator wave", true}, {"Wave\u00e9", false},
        {"\u00c4", false}, {"wave", true}, {"", false},
        // A byte that is no UTF-8 reads as one replacement character.
        {"Sine Wave\xff", false}, {"\xffwave", true},
    };
    for (const auto& [name, expected] : names)
        EXPECT_EQ(endsInWave.matches(name), expected) << name;

    const SearchPattern oneCharacterBetween("a.b", SearchOptions::RegExpOn, SearchOptions::WholeWordOff,
                                            SearchOptions::MatchCaseOn);
    EXPECT_TRUE(oneCharacterBetween.matches("a\xff" "b"));
    EXPECT_TRUE(oneCharacterBetween.matches("a\u00e9b"));
    EXPECT_FALSE(oneCharacterBetween.matches("a\u00e9\u00e9b"));
}

TEST(SearchPattern, PlainPatternsTranslateToExpressionsCutAfterTheLimit)
{
    EXPECT_EQ(SearchPattern::translatePlainPattern("a?b*c"), "a.b.*c");
    EXPECT_EQ(SearchPattern::translatePlainPattern("x+y.z[1]{2}\\"), "x\\+y\\.z\\[1\\]\\{2\\}\\\\");
    EXPECT_EQ(SearchPattern::translatePlainPattern("sine  wave"), "sine\\s+wave");

    const std::string longPattern(3000, 'a');
    EXPECT_EQ(SearchPattern::translatePlainPattern(longPattern).size(), SearchPattern::MaxTranslatedLength);
    EXPECT_EQ(SearchPattern::translatePlainPattern(std::string(1500, '*')).size(), SearchPattern::MaxTranslatedLength)
        << "checked after each input byte";
    // Found by fuzzing: the byte that crosses the limit is translated whole.
    const std::string blankAtTheLimit = SearchPattern::translatePlainPattern(std::string(2043, 'a') + " b");
    EXPECT_EQ(blankAtTheLimit.size(), SearchPattern::MaxTranslatedLength + 2);
    EXPECT_EQ(blankAtTheLimit.substr(2043), "\\s+");
    const auto plain = [](const std::string& pattern, const std::string& name) {
        return SearchPattern(pattern, SearchOptions::RegExpOff, SearchOptions::WholeWordOff,
                             SearchOptions::MatchCaseOff)
            .matches(name);
    };
    EXPECT_TRUE(plain(longPattern, std::string(2044, 'A')));
    EXPECT_TRUE(plain(longPattern, std::string(2044, 'a') + "b")) << "the cut-off tail is not searched for";
}

