#include "repository/HandMadeStore.h"

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using Names = std::vector<std::string>;

// Name search over the hand-made store, whose walk from the top is:
// Alpha, Gain, Scope, Sub, X, Ref1, S1, S2, Ref2, S1, S2, Beta, B1, Tools, Beta, B1.
// How a pattern matches one name is SearchPattern's test; here the walk.
class FindBlocksTest : public HandMadeStore {
protected:
    Names find(const std::string& pattern, SearchOptions::RegExp regExp = SearchOptions::RegExpOff,
               SearchOptions::WholeWord wholeWord = SearchOptions::WholeWordOff,
               SearchOptions::MatchCase matchCase = SearchOptions::MatchCaseOff)
    {
        return names(reader->findBlocks(pattern, regExp, wholeWord, matchCase), true);
    }
    Names findBelow(const std::string& pattern, const TandrilObject& root)
    {
        return names(reader->findBlocks(pattern, root), true);
    }
};

} // namespace

TEST_F(FindBlocksTest, HitsComeInWalkOrderWithDoublesKeptAndTheOptionsApplied)
{
    EXPECT_EQ(find("s"), (Names{"Scope", "Sub", "S1", "S2", "S1", "S2", "Tools"}))
        << "a library reached through two references is searched twice";
    EXPECT_EQ(names(reader->findBlocks("b1"), true), (Names{"B1", "B1"})) << "the palette's member is walked as well";
    EXPECT_EQ(find("").size(), 16u) << "an empty pattern matches every object of the walk";
    EXPECT_TRUE(find("nothing like it").empty());

    EXPECT_TRUE(
        find("gain", SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOn).empty());
    EXPECT_EQ(find("s1", SearchOptions::RegExpOff, SearchOptions::WholeWordOn), (Names{"S1", "S1"}));
    EXPECT_TRUE(find("s", SearchOptions::RegExpOff, SearchOptions::WholeWordOn).empty());
    EXPECT_EQ(find("s?", SearchOptions::RegExpOn).size(), 16u) << "as an expression 's?' matches anywhere";

    TandrilObjectIterator invalid = reader->findBlocks("(");
    EXPECT_TRUE(invalid.isEmpty());
    EXPECT_EQ(invalid.size(), 0);
    EXPECT_TRUE(report->getErrors().empty()) << "a bad pattern is no error of the repository";
}

TEST_F(FindBlocksTest, BelowAnObjectTheObjectItselfIsNeverAHit)
{
    const TandrilObject sub = reader->getTandrilObject("Alpha/Sub");
    // The walk below a root does not count the root as entered, so the
    // reference back to Sub is taken once before the cycle is cut.
    EXPECT_EQ(findBelow("", sub), (Names{"X", "Back", "X"}));
    EXPECT_TRUE(findBelow("sub", sub).empty());
    EXPECT_EQ(findBelow("s", reader->getTandrilObject("Alpha/Ref1")), (Names{"S1", "S2"}))
        << "a reference is searched through";
    EXPECT_TRUE(findBelow("", reader->getTandrilObject("Alpha/Gain")).empty()) << "a block has no children";
    EXPECT_TRUE(findBelow("", reader->getTandrilObject("Nope")).empty()) << "an invalid object";
    EXPECT_TRUE(findBelow("", TandrilObject()).empty()) << "a null handle";
}
