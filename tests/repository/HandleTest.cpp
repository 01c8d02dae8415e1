#include "HandMadeStore.h"

#include "platform/ErrorHolder.h"
#include "repository/HandleData.h"
#include "repository/ReaderCache.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace LibraryBrowser {
namespace {

class HandleTest : public Testing::HandMadeStore {
protected:
    TandrilObject object(const std::string& id) { return reader->getTandrilObject(id); }
};

TEST_F(HandleTest, HandlesOnOneIdShareOneDataAndCompareById)
{
    const TandrilObject gain = object("Alpha/Gain");
    ASSERT_TRUE(gain.isValid());
    EXPECT_EQ(object("Alpha/Gain").getData(), gain.getData());
    // Built straight from the node, the handle finds the registered data.
    EXPECT_EQ(TandrilObject(gain.getImpl(), reader->getCache()).getData(), gain.getData());
    EXPECT_EQ(gain.id().str(), "Alpha/Gain");

    const TandrilObject scope = object("Alpha/Scope");
    EXPECT_NE(gain, scope);
    EXPECT_NE(gain < scope, scope < gain);

    // Null handles of any class are equal and hash alike.
    EXPECT_EQ(Block(), Library());
    EXPECT_EQ(Block().hash(), Library().hash());
    EXPECT_NE(Block(), gain);
}

TEST_F(HandleTest, KindTestsFollowTheNodeChainAndConversionsGiveNullsOfTheTargetClass)
{
    const TandrilObject tools = object("Tools");
    EXPECT_TRUE(tools.isBlock() && tools.isSubSystem() && tools.isLibrary() && tools.isPalette());
    EXPECT_FALSE(tools.isLibraryRef());
    EXPECT_TRUE(tools.toLibraryRef().isNull());
    EXPECT_TRUE(object("Alpha").toPalette().isNull());

    const TandrilObject ref = object("Alpha/Ref1");
    const SubSystem refAsSubSystem = ref.toSubSystem();
    EXPECT_EQ(refAsSubSystem.toLibraryRef(), ref);
    EXPECT_TRUE(refAsSubSystem.toLibrary().isNull());
    EXPECT_EQ(Block(ref.toLibraryRef()).getData(), ref.getData()) << "widening shares the data";

    const SubSystem none = object("Alpha/Gain").toSubSystem();
    EXPECT_TRUE(none.isNull());
    EXPECT_TRUE(none.getIsEmpty() && none.getIsFlat() && !none.getIsProduct());
    EXPECT_EQ(none.getType(), "InvalidBlock");
}

TEST_F(HandleTest, AMissingObjectIsAPlaceholderThatKeepsItsId)
{
    const TandrilObject block = object("Alpha/Sub/Nope");
    EXPECT_FALSE(block.isNull());
    EXPECT_FALSE(block.isValid());
    EXPECT_EQ(block.id().str(), "Alpha/Sub/Nope");
    EXPECT_EQ(block.getName(), "InvalidBlock");
    EXPECT_EQ(block.getIcon(), nullptr);

    const TandrilObject library = object("Nope/Gain");
    EXPECT_EQ(library.getType(), "Library");
    EXPECT_EQ(library.getName(), "InvalidLibrary");
    EXPECT_FALSE(object("").isValid());
    EXPECT_EQ(reader->getCache()->invalidHandleCount(), 2u);
}

TEST_F(HandleTest, HandlesAreFiledByIdSoThatAnUnloadForgetsOnlyItsOwn)
{
    ReaderCache* cache = reader->getCache();
    const TandrilObject alpha = object("Alpha");
    const TandrilObject x = object("Alpha/Sub/X");
    object("Alpha/Ref1/S1");
    const TandrilObject b1 = object("Beta/B1");
    const TandrilObject missing = object("Beta/Nope");
    // A plain reader is its own outer reader: its objects are bound here.
    ASSERT_EQ(x.getData()->cache(), cache);
    EXPECT_EQ(cache->libraryHandleCount(), 4u) << "the entries of the top level";
    EXPECT_EQ(cache->productHandleCount("Alpha"), 9u) << "what was loaded on the way down";
    EXPECT_EQ(cache->productHandleCount("Beta"), 1u);
    EXPECT_EQ(cache->invalidHandleCount(), 1u);

    ReaderCacheRegistry::unloadProductCaches(store(), object("Beta").toLibrary());
    EXPECT_NE(x.getData()->node(), nullptr) << "Alpha is not touched";
    EXPECT_NE(alpha.getData()->node(), nullptr);
    EXPECT_EQ(b1.getData()->node(), nullptr);
    EXPECT_EQ(missing.getData()->node(), nullptr) << "placeholders always lose theirs";
    EXPECT_EQ(b1.getName(), "B1");

    ReaderCacheRegistry::unloadTopLevelCaches(store());
    EXPECT_EQ(alpha.getData()->node(), nullptr);
    EXPECT_NE(x.getData()->node(), nullptr) << "objects below the products stay";
}

TEST_F(HandleTest, AHandleHeldAcrossAnUnloadResolvesToTheReloadedNode)
{
    const TandrilObject x = object("Alpha/Sub/X");
    const TandrilObject y = object("Alpha/Sub/Y");
    ASSERT_EQ(x.getDescription(), "About X");
    ASSERT_FALSE(y.isValid());

    // The store changes: X has a new text and Y appears.
    auto sub = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(sub->loadFromBytes(alphaManifests.at("Alpha/Sub/lbSubmanifest.xml"), errors));
    sub->beginChangeSet();
    static_cast<BlockImpl*>(sub->getNodes().get(0))->setDescription("New X");
    BlockImpl* added = sub->createBlockImpl();
    added->setName("Y");
    added->setProductName("Alpha");
    sub->commitChangeSet();
    replaceManifest("Alpha", "Alpha/Sub/lbSubmanifest.xml", sub->saveToBytes());
    EXPECT_EQ(x.getDescription(), "About X") << "the cache keeps what it read";

    const std::uint64_t copies = XMLRepositoryArchiveCache::copyCount();
    ReaderCacheRegistry::unloadProductCaches(store(), object("Alpha").toLibrary());
    EXPECT_EQ(x.getData()->node(), nullptr);
    EXPECT_EQ(y.getData()->node(), nullptr) << "placeholders are cleared too";

    EXPECT_EQ(x.getDescription(), "New X");
    EXPECT_TRUE(y.isValid()) << "a placeholder comes back to life";
    EXPECT_EQ(y.getName(), "Y");
    EXPECT_EQ(XMLRepositoryArchiveCache::copyCount(), copies + 1) << "a new private copy of the archive";
    EXPECT_EQ(object("Alpha/Sub/X").getData(), x.getData());
}

TEST_F(HandleTest, HashingAndComparingAHandleOfAnUnloadedProductLoadNothing)
{
    const TandrilObject x = object("Alpha/Sub/X");
    const TandrilObject gain = object("Alpha/Gain");
    ReaderCacheRegistry::unloadProductCaches(store(), object("Alpha").toLibrary());
    const std::uint64_t reads = XMLRepositoryArchiveCache::readCount();

    std::unordered_set<TandrilObject> set{x, gain, x};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_NE(x, gain);
    EXPECT_EQ(XMLRepositoryArchiveCache::readCount(), reads);
    EXPECT_EQ(x.getData()->node(), nullptr);

    EXPECT_EQ(x.getName(), "X");
    EXPECT_GT(XMLRepositoryArchiveCache::readCount(), reads);
}

TEST_F(HandleTest, AHandleOutlivingItsReaderIsOrphanedYetComparesById)
{
    TandrilObject sub = object("Alpha/Sub");
    const std::uint32_t hash = sub.hash();
    ASSERT_TRUE(sub.isValid());
    ASSERT_FALSE(tempEntries().isEmpty()) << "the reader works on private copies";
    reader.reset();

    EXPECT_EQ(sub.getData()->cache(), nullptr);
    EXPECT_FALSE(sub.isValid());
    EXPECT_EQ(sub.getName() + sub.getPath(), "");
    EXPECT_EQ(sub.getIcon(), nullptr);
    EXPECT_TRUE(tempEntries().isEmpty()) << "the private copies went with the reader";

    reader = openReader();
    const TandrilObject again = object("Alpha/Sub");
    EXPECT_TRUE(again.isValid());
    EXPECT_NE(again.getData(), sub.getData());
    EXPECT_EQ(again, sub);
    EXPECT_EQ(again.hash(), hash);
}

TEST_F(HandleTest, OneIdForTwoNodesKeepsTheFirstUnlessItIsMissingOrInvalid)
{
    auto model = Model::createModel();
    BlockImpl* first = model->createBlockImpl();
    BlockImpl* second = model->createBlockImpl();
    first->setUniquePath(StringId("Dup"));
    first->setName("first");
    second->setUniquePath(StringId("Dup"));
    second->setName("second");
    ReaderCache* cache = reader->getCache();

    const TandrilObject a(first, cache);
    EXPECT_EQ(TandrilObject(second, cache).getName(), "first");
    EXPECT_EQ(cache->libraryHandleCount(), 1u);
    first->setIsInvalid(true);
    const TandrilObject b(second, cache);
    EXPECT_EQ(b.getData(), a.getData());
    EXPECT_EQ(a.getName(), "second");
}

} // namespace
} // namespace LibraryBrowser
