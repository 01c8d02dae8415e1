#include "repository/HandMadeStore.h"

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using Names = std::vector<std::string>;
using FindBlocksTest = HandMadeStore;

} // namespace

// Name search over the hand-made store, whose walk from the top is:
// Alpha, Gain, Scope, Sub, X, Ref1, S1, S2, Ref2, S1, S2, Beta, B1, Tools, Beta, B1.
// How a pattern matches one name is SearchPattern's test; here the walk:
// hits in walk order with doubles kept and the options applied, and below
// an object the object itself is never a hit.
TEST_F(FindBlocksTest, HitsComeInWalkOrderWithDoublesKeptAndTheOptionsApplied)
{
    const auto find = [&](const std::string& pattern, SearchOptions::RegExp regExp = SearchOptions::RegExpOff,
                          SearchOptions::WholeWord word = SearchOptions::WholeWordOff,
                          SearchOptions::MatchCase matchCase = SearchOptions::MatchCaseOff) {
        return names(reader->findBlocks(pattern, regExp, word, matchCase), true);
    };
    const auto below = [&](const std::string& pattern, const std::string& root) {
        return names(reader->findBlocks(pattern, root.empty() ? TandrilObject() : reader->getTandrilObject(root)), true);
    };
    EXPECT_EQ(find("s"), (Names{"Scope", "Sub", "S1", "S2", "S1", "S2", "Tools"}))
        << "a library reached through two references is searched twice";
    EXPECT_EQ(find("b1"), (Names{"B1", "B1"})) << "the palette's member is walked as well";
    EXPECT_EQ(find("").size(), 16u) << "an empty pattern matches every object of the walk";
    EXPECT_TRUE(find("nothing like it").empty());
    EXPECT_TRUE(find("gain", SearchOptions::RegExpOff, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOn).empty());
    EXPECT_EQ(find("s1", SearchOptions::RegExpOff, SearchOptions::WholeWordOn), (Names{"S1", "S1"}));
    EXPECT_TRUE(find("s", SearchOptions::RegExpOff, SearchOptions::WholeWordOn).empty());
    EXPECT_EQ(find("s?", SearchOptions::RegExpOn).size(), 16u) << "as an expression 's?' matches anywhere";
    TandrilObjectIterator invalid = reader->findBlocks("(");
    EXPECT_TRUE(invalid.isEmpty());
    EXPECT_EQ(invalid.size(), 0);
    EXPECT_TRUE(report->getErrors().empty()) << "a bad pattern is no error of the repository";

    // The walk below a root does not count the root as entered, so the
    // reference back to Sub is taken once before the cycle is cut.
    EXPECT_EQ(below("", "Alpha/Sub"), (Names{"X", "Back", "X"}));
    EXPECT_TRUE(below("sub", "Alpha/Sub").empty());
    EXPECT_EQ(below("s", "Alpha/Ref1"), (Names{"S1", "S2"})) << "a reference is searched through";
    for (const char* root : {"Alpha/Gain", "Nope", ""})
        EXPECT_TRUE(below("", root).empty()) << "a block, an invalid object, a null handle: " << root;
}
