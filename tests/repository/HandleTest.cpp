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

// Handles on one id share one data and compare by id; kind tests follow the
// node chain and conversions give nulls of the target class; a missing object
// is a placeholder that keeps its id; of two nodes on one id the first stays
// unless it is invalid.
TEST_F(HandleTest, IdentityKindsAndPlaceholders)
{
    const TandrilObject gain = object("Alpha/Gain");
    ASSERT_TRUE(gain.isValid());
    EXPECT_EQ(object("Alpha/Gain").getData(), gain.getData());
    EXPECT_EQ(TandrilObject(gain.getImpl(), reader->getCache()).getData(), gain.getData());
    EXPECT_EQ(gain.id().str(), "Alpha/Gain");
    const TandrilObject scope = object("Alpha/Scope");
    EXPECT_NE(gain, scope);
    EXPECT_NE(gain < scope, scope < gain);
    EXPECT_EQ(Block(), Library());
    EXPECT_EQ(Block().hash(), Library().hash());
    EXPECT_NE(Block(), gain);

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
    const SubSystem none = gain.toSubSystem();
    EXPECT_TRUE(none.isNull() && none.getIsEmpty() && none.getIsFlat() && !none.getIsProduct());
    EXPECT_EQ(none.getType(), "InvalidBlock");

    const TandrilObject block = object("Alpha/Sub/Nope");
    EXPECT_FALSE(block.isNull() || block.isValid());
    EXPECT_EQ(block.id().str() + " " + block.getName(), "Alpha/Sub/Nope InvalidBlock");
    EXPECT_EQ(block.getIcon(), nullptr);
    const TandrilObject library = object("Nope/Gain");
    EXPECT_EQ(library.getType() + " " + library.getName(), "Library InvalidLibrary");
    EXPECT_FALSE(object("").isValid());
    EXPECT_EQ(reader->getCache()->invalidHandleCount(), 2u);

    auto model = Model::createModel();
    BlockImpl* first = model->createBlockImpl();
    BlockImpl* second = model->createBlockImpl();
    first->setUniquePath(StringId("Dup"));
    first->setName("first");
    second->setUniquePath(StringId("Dup"));
    second->setName("second");
    ReaderCache* cache = reader->getCache();
    const std::size_t handles = cache->libraryHandleCount();
    const TandrilObject a(first, cache);
    EXPECT_EQ(TandrilObject(second, cache).getName(), "first");
    EXPECT_EQ(cache->libraryHandleCount(), handles + 1);
    first->setIsInvalid(true);
    const TandrilObject b(second, cache);
    EXPECT_EQ(b.getData(), a.getData());
    EXPECT_EQ(a.getName(), "second");
}

// Handles are filed by id, so an unload forgets only its own; hashing and
// comparing a handle of an unloaded product load nothing; a handle held
// across an unload resolves to the reloaded node; one outliving its reader is
// orphaned yet compares by id.
TEST_F(HandleTest, UnloadsReloadsAndOrphans)
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

    const TandrilObject gain = object("Alpha/Gain");
    ReaderCacheRegistry::unloadProductCaches(store(), object("Alpha").toLibrary());
    std::uint64_t reads = XMLRepositoryArchiveCache::readCount();
    EXPECT_EQ((std::unordered_set<TandrilObject>{x, gain, x}.size()), 2u);
    EXPECT_NE(x, gain);
    EXPECT_EQ(XMLRepositoryArchiveCache::readCount(), reads);
    EXPECT_EQ(x.getData()->node(), nullptr);
    EXPECT_EQ(x.getDescription(), "About X");
    EXPECT_GT(XMLRepositoryArchiveCache::readCount(), reads);

    // The store changes: X has a new text and Y appears.
    const TandrilObject y = object("Alpha/Sub/Y");
    ASSERT_FALSE(y.isValid());
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

    TandrilObject held = object("Alpha/Sub");
    const std::uint32_t hash = held.hash();
    ASSERT_TRUE(held.isValid());
    ASSERT_FALSE(tempEntries().isEmpty()) << "the reader works on private copies";
    reader.reset();
    EXPECT_EQ(held.getData()->cache(), nullptr);
    EXPECT_FALSE(held.isValid());
    EXPECT_EQ(held.getName() + held.getPath(), "");
    EXPECT_EQ(held.getIcon(), nullptr);
    EXPECT_TRUE(tempEntries().isEmpty()) << "the private copies went with the reader";
    reader = openReader();
    const TandrilObject again = object("Alpha/Sub");
    EXPECT_TRUE(again.isValid());
    EXPECT_NE(again.getData(), held.getData());
    EXPECT_EQ(again, held);
    EXPECT_EQ(again.hash(), hash);
}

} // namespace
} // namespace LibraryBrowser
