#include "repository/search/SearchPattern.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

namespace {

bool plain(const std::string& pattern, const std::string& name,
           SearchOptions::WholeWord wholeWord = SearchOptions::WholeWordOff,
           SearchOptions::MatchCase matchCase = SearchOptions::MatchCaseOff)
{
    return SearchPattern(pattern, SearchOptions::RegExpOff, wholeWord, matchCase).matches(name);
}

bool regexp(const std::string& pattern, const std::string& name,
            SearchOptions::WholeWord wholeWord = SearchOptions::WholeWordOff)
{
    return SearchPattern(pattern, SearchOptions::RegExpOn, wholeWord, SearchOptions::MatchCaseOff).matches(name);
}

} // namespace

TEST(SearchPattern, PlainWordsMatchAnywhereWithoutCase)
{
    EXPECT_TRUE(plain("gain", "Gain"));
    EXPECT_TRUE(plain("gain", "Variable Gain Amplifier"));
    EXPECT_TRUE(plain("GAIN", "gain"));
    EXPECT_FALSE(plain("gain", "Gai n"));
    EXPECT_TRUE(plain("", "anything")) << "an empty pattern matches every name";

    EXPECT_FALSE(plain("gain", "Variable Gain", SearchOptions::WholeWordOff, SearchOptions::MatchCaseOn));
    EXPECT_TRUE(plain("Gain", "Variable Gain", SearchOptions::WholeWordOff, SearchOptions::MatchCaseOn));
    EXPECT_TRUE(plain("\u00e4quator", "\u00c4quator Scope")) << "case folding covers non-ASCII letters";
}

TEST(SearchPattern, WholeWordRefusesPartsOfLongerWords)
{
    EXPECT_TRUE(plain("gain", "Variable Gain", SearchOptions::WholeWordOn));
    EXPECT_FALSE(plain("gain", "Gains", SearchOptions::WholeWordOn));
    EXPECT_FALSE(plain("gain", "Again", SearchOptions::WholeWordOn));
    EXPECT_TRUE(regexp("sum|gain", "Again", SearchOptions::WholeWordOn))
        << "the boundaries bind to the outer alternatives only";
    EXPECT_FALSE(regexp("(sum|gain)", "Again", SearchOptions::WholeWordOn));
}

TEST(SearchPattern, WildcardsAndEscapesOfPlainPatterns)
{
    EXPECT_EQ(SearchPattern::translatePlainPattern("a?b*c"), "a.b.*c");
    EXPECT_EQ(SearchPattern::translatePlainPattern("x+y.z[1]{2}\\"), "x\\+y\\.z\\[1\\]\\{2\\}\\\\");
    EXPECT_TRUE(plain("s?ne", "Sine Wave"));
    EXPECT_TRUE(plain("sig*gen", "Signal Generator"));
    EXPECT_TRUE(plain("1.5", "Gain 1.5"));
    EXPECT_FALSE(plain("1.5", "Gain 105")) << "a dot finds only a dot";
    EXPECT_TRUE(plain("a+b", "a+b"));

    // With the regular-expression option the same characters are operators.
    EXPECT_TRUE(regexp("1.5", "Gain 105"));
    EXPECT_TRUE(plain("^s?ne", "Sine Wave"));
    EXPECT_FALSE(regexp("^s?ne", "Sine Wave")) << "'?' makes the s optional, it is no wildcard";
    EXPECT_TRUE(regexp("^sine", "Sine Wave"));
}

TEST(SearchPattern, OperatorsKeepTheirMeaningInPlainPatterns)
{
    EXPECT_TRUE(plain("scope|gain", "Gain"));
    EXPECT_TRUE(plain("scope|gain", "XY Scope"));
    EXPECT_TRUE(plain("^sine", "Sine Wave"));
    EXPECT_FALSE(plain("^wave", "Sine Wave"));
    EXPECT_TRUE(plain("wave$", "Sine Wave"));
}

TEST(SearchPattern, BlanksMatchAnyWhiteSpace)
{
    EXPECT_EQ(SearchPattern::translatePlainPattern("sine  wave"), "sine\\s+wave");
    EXPECT_TRUE(plain("sine wave", "Sine    Wave"));
    EXPECT_TRUE(plain("sine wave", "Sine\nWave")) << "a line break is white space";
    EXPECT_TRUE(plain("sine  wave", "Sine Wave")) << "two blanks search as one";
    EXPECT_FALSE(plain("sine wave", "SineWave"));
    EXPECT_FALSE(plain("wave ", "Sine Wave")) << "a trailing blank demands white space after the word";
    EXPECT_TRUE(plain("sine ", "Sine Wave"));
    EXPECT_EQ(SearchPattern::translatePlainPattern("a\tb"), "a\tb") << "a tab stays a literal tab";
}

TEST(SearchPattern, InvalidExpressionsMatchNothingQuietly)
{
    const SearchPattern paren("(", SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOff);
    EXPECT_FALSE(paren.isValid());
    EXPECT_FALSE(paren.matches("("));
    EXPECT_FALSE(paren.matches("Sine (Wave)"));
    EXPECT_FALSE(regexp("[abc", "abc"));
}

TEST(SearchPattern, LongPatternsAreCutAfterTheLimit)
{
    const std::string longPattern(3000, 'a');
    EXPECT_EQ(SearchPattern::translatePlainPattern(longPattern).size(), SearchPattern::MaxTranslatedLength);
    const std::string stars(1500, '*');
    const std::string translated = SearchPattern::translatePlainPattern(stars);
    EXPECT_EQ(translated.size(), SearchPattern::MaxTranslatedLength) << "checked after each input byte";
    EXPECT_TRUE(plain(longPattern, std::string(2044, 'A')));
    EXPECT_TRUE(plain(longPattern, std::string(2044, 'a') + "b")) << "the cut-off tail is not searched for";
}
