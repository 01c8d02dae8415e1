#include "HandMadeStore.h"

#include "repository/ReaderCache.h"
#include "repository/TandrilObjectReferenceIterator.h"
#include "repository/search/BlockTypeCriteria.h"
#include "repository/search/ExactBlockTypeCriteria.h"
#include "repository/search/TandrilObjectSearchIterator.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Names = std::vector<std::string>;
using IteratorTest = Testing::HandMadeStore;

// The depth-first walk is pre-order through references and cuts cycles;
// size and copies leave an iterator where it stands; the reader's lists are
// filtered lazily; the wrapping form moves objects to its own cache.
TEST_F(IteratorTest, TheDepthFirstWalkIsPreOrderThroughReferencesAndCutsCycles)
{
    const TandrilObject alpha = reader->getTandrilObject("Alpha");
    // Sub's reference back to Sub is neither returned nor entered; the
    // library behind two references is walked twice.
    const Names alphaWalk{"  Gain", "  Scope", "  Sub", "    X", "  Ref1", "    S1", "    S2", "  Ref2", "    S1", "    S2"};
    EXPECT_EQ(names(reader->getDepthFirstIterator(alpha)), alphaWalk);
    Names fromTop{"Alpha"};
    fromTop.insert(fromTop.end(), alphaWalk.begin(), alphaWalk.end());
    // The palette lists Beta, itself and an unknown name: only Beta is a
    // child, and the palette's own entry gives one warning.
    fromTop.insert(fromTop.end(), {"Beta", "  B1", "Tools", "  Beta", "    B1"});
    EXPECT_EQ(names(reader->getDepthFirstIterator()), fromTop);
    ASSERT_EQ(report->getWarnings().size(), 1u);
    EXPECT_EQ(report->getWarnings().front().id, "Tandril:LibraryBrowser:CycleInPalette");

    // A copy counts its own steps and steps over the cycle on its own.
    TandrilObjectIterator it = reader->getDepthFirstIterator(alpha);
    it.next();
    it.next();
    EXPECT_EQ(it.size(), 10);
    EXPECT_EQ(it.position(), 2);
    TandrilObjectIterator copy = it;
    EXPECT_EQ(copy.position(), 0);
    copy.next();
    copy.next();
    EXPECT_EQ(copy.current().getName() + " " + it.current().getName(), "Ref1 Sub");
    while (it.isValidIterator())
        it.next();
    it.next();
    EXPECT_EQ(it.position(), 10) << "a step past the end does not count";
    EXPECT_FALSE(it.isEmpty()) << "driven past its end is not empty";
    EXPECT_TRUE(TandrilObjectIterator(it).isEmpty()) << "a fresh copy at the end is";
    it.restart();
    EXPECT_EQ(it.current().getName(), "Gain");
    for (const TandrilObject& root : {reader->getTandrilObject("Alpha/Gain"), reader->getTandrilObject("Alpha/Nope"),
                                      TandrilObject()}) {
        EXPECT_TRUE(reader->getDepthFirstIterator(root).isEmpty()) << root.id().str();
        EXPECT_TRUE(reader->getChildrenIterator(root).isEmpty()) << root.id().str();
    }

    EXPECT_EQ(names(reader->getAllProductsIterator()), (Names{"Alpha", "Alpha-Shared", "Beta", "Tools"}));
    EXPECT_EQ(names(reader->getProductsIterator()), (Names{"Alpha", "Beta", "Tools"}));
    EXPECT_EQ(names(reader->getTopLevelIterator()), (Names{"Alpha", "Beta"}));
    EXPECT_EQ(names(reader->getChildrenIterator(alpha, StringId("BlockImpl"))), (Names{"  Gain", "  Scope"}));
    EXPECT_EQ(names(reader->getChildrenIterator(alpha, StringId("SubSystemImpl"))), (Names{"  Sub"}));
    EXPECT_EQ(names(TandrilObjectSearchIterator::filter(reader->getChildrenIterator(alpha),
                                                        std::make_unique<BlockTypeCriteria<SubSystem>>())),
              (Names{"  Sub", "  Ref1", "  Ref2"}));
    TandrilObjectIterator refs = reader->getChildrenIterator(alpha, StringId("LibraryRefImpl"));
    TandrilObjectIterator refsCopy = refs;
    refs.next();
    EXPECT_EQ(refs.current().getName() + " " + refsCopy.current().getName(), "Ref2 Ref1");
    EXPECT_EQ(refsCopy.size(), 2);

    const std::shared_ptr<XMLRepositoryReader> other = openReader();
    TandrilObjectIterator moved(
        std::make_unique<TandrilObjectReferenceIterator>(other->getCache(), reader->getChildrenIterator(alpha)));
    EXPECT_EQ(moved.size(), 5);
    const TandrilObject gain = moved.current();
    EXPECT_EQ(gain.getData()->cache(), other->getCache());
    EXPECT_EQ(gain.getImpl(), reader->getTandrilObject("Alpha/Gain").getImpl());
    moved.next();
    TandrilObjectIterator movedCopy = moved;
    EXPECT_EQ(movedCopy.current().getName(), "Scope");
    movedCopy.restart();
    EXPECT_EQ(movedCopy.current().getName(), "Gain");
}

} // namespace
} // namespace LibraryBrowser
