#include "repository/HandMadeStore.h"

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using Names = std::vector<std::string>;

// Name search over the hand-made store, whose walk from the top is:
// Alpha, Gain, Scope, Sub, X, Ref1, S1, S2, Ref2, S1, S2, Beta, B1, Tools, Beta, B1.
class FindBlocksTest : public HandMadeStore {
protected:
    void SetUp() override
    {
        HandMadeStore::SetUp();
        reader = openReader();
    }

    static Names found(TandrilObjectIterator it)
    {
        Names result;
        for (; it.isValidIterator(); it.next())
            result.push_back(it.current().getName());
        return result;
    }

    Names find(const std::string& pattern, SearchOptions::RegExp regExp = SearchOptions::RegExpOff,
               SearchOptions::WholeWord wholeWord = SearchOptions::WholeWordOff,
               SearchOptions::MatchCase matchCase = SearchOptions::MatchCaseOff)
    {
        return found(reader->findBlocks(pattern, regExp, wholeWord, matchCase));
    }

    // The first object of that name in the walk from the top.
    TandrilObject objectNamed(const std::string& name)
    {
        for (TandrilObjectIterator it = reader->getDepthFirstIterator(); it.isValidIterator(); it.next())
            if (it.current().getName() == name)
                return it.current();
        return TandrilObject();
    }

    std::shared_ptr<XMLRepositoryReader> reader;
};

} // namespace

TEST_F(FindBlocksTest, HitsComeInWalkOrderWithDoublesKept)
{
    EXPECT_EQ(find("s"), (Names{"Scope", "Sub", "S1", "S2", "S1", "S2", "Tools"}))
        << "a library reached through two references is searched twice";
    EXPECT_EQ(found(reader->findBlocks("b1")), (Names{"B1", "B1"})) << "the palette's member is walked as well";
    EXPECT_EQ(find("").size(), 16u) << "an empty pattern matches every object of the walk";
    EXPECT_TRUE(find("nothing like it").empty());
}

TEST_F(FindBlocksTest, CaseWholeWordAndWildcards)
{
    EXPECT_EQ(find("GAIN"), Names{"Gain"});
    EXPECT_TRUE(find("gain", SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOn)
                    .empty());
    EXPECT_EQ(find("s", SearchOptions::RegExpOff, SearchOptions::WholeWordOn).size(), 0u)
        << "'s' is only ever part of a longer word here";
    EXPECT_EQ(find("s1", SearchOptions::RegExpOff, SearchOptions::WholeWordOn), (Names{"S1", "S1"}));

    EXPECT_EQ(find("s?"), (Names{"Scope", "Sub", "S1", "S2", "S1", "S2"})) << "'?' is one character";
    EXPECT_EQ(find("s?", SearchOptions::RegExpOn).size(), 16u) << "as an expression 's?' matches anywhere";
    EXPECT_EQ(find("a*a"), (Names{"Alpha", "Beta", "Beta"})) << "'*' is any run, 'Alpha' holds two a's";
    EXPECT_EQ(find("^s"), (Names{"Scope", "Sub", "S1", "S2", "S1", "S2"})) << "a caret anchors a plain search";
    EXPECT_EQ(find("x|b1"), (Names{"X", "B1", "B1"})) << "a bar separates alternatives";
}

TEST_F(FindBlocksTest, InvalidExpressionsFindNothing)
{
    TandrilObjectIterator it = reader->findBlocks("(");
    EXPECT_TRUE(it.isEmpty());
    EXPECT_FALSE(it.isValidIterator());
    EXPECT_EQ(it.size(), 0);
    EXPECT_TRUE(find("[abc", SearchOptions::RegExpOn).empty());
    EXPECT_TRUE(report->getErrors().empty()) << "a bad pattern is no error of the repository";
}

TEST_F(FindBlocksTest, BelowAnObjectTheObjectItselfIsNeverAHit)
{
    const TandrilObject sub = objectNamed("Sub");
    ASSERT_TRUE(sub.isValid());
    // The walk below a root does not count the root as entered, so the
    // reference back to Sub is taken once before the cycle is cut.
    EXPECT_EQ(found(reader->findBlocks("", sub)), (Names{"X", "Back", "X"}));
    EXPECT_TRUE(found(reader->findBlocks("sub", sub)).empty());

    const TandrilObject ref = objectNamed("Ref1");
    ASSERT_TRUE(ref.isValid());
    EXPECT_EQ(found(reader->findBlocks("s", ref)), (Names{"S1", "S2"})) << "a reference is searched through";

    EXPECT_TRUE(found(reader->findBlocks("", objectNamed("Gain"))).empty()) << "a block has no children";
    EXPECT_TRUE(found(reader->findBlocks("", reader->getTandrilObject("Nope"))).empty()) << "an invalid object";
    EXPECT_TRUE(found(reader->findBlocks("", TandrilObject())).empty()) << "a null handle";
}
