#include "HandMadeStore.h"

#include "model/BlockImpl.h"
#include "platform/ErrorHolder.h"
#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"
#include "repository/xmlrepository/XMLRepositoryReaderCache.h"

namespace LibraryBrowser {
namespace {

using namespace Testing;
using Names = std::vector<std::string>;

// Alpha holds eleven nodes once walked, Beta one: a budget of three keeps
// the product read last and releases the others.
constexpr std::size_t SmallBudget = 3;

class CacheReleaseTest : public HandMadeStore {
protected:
    // What a handle answers, all in one line.
    static std::string answers(const TandrilObject& object)
    {
        const auto* block = static_cast<const BlockImpl*>(object.getImpl());
        const BlockIconPtr icon = object.getIcon();
        return object.getType() + "|" + object.getName() + "|" + object.getPath() + "|" +
               (block ? block->getDisplayPath() : std::string()) + "|" + object.getDescription() + "|" +
               (icon ? icon->svg().toStdString() : std::string("no icon"));
    }
    XMLRepositoryReaderCache& cache() { return reader->readerCache(); }
    // Reads Beta, which releases what else is loaded past the budget.
    void readBeta() { ASSERT_EQ(reader->getChildrenIterator(object("Beta")).size(), 1); }
};

// Walks and searches give the same objects in the same order whatever the
// budget; past it, the products used longest ago let their nodes go, never
// the one read last, and a handle held across that answers as before and
// stays the same handle, read again from the same private copies.
TEST_F(CacheReleaseTest, AHandleKeptAcrossAReleaseAnswersAsBeforeFromTheSameCopies)
{
    const Names walk = names(reader->getDepthFirstIterator());
    const Names hits = names(reader->findBlocks("S", SearchOptions::RegExpOff, SearchOptions::WholeWordOff,
                                                SearchOptions::MatchCaseOff));
    ASSERT_EQ(cache().loadedNodeCount(), 11u + 1u + 2u) << "Alpha, Beta, the palette's reference to Beta and below it";
    reader = openReader();
    cache().setLoadedNodeBudget(SmallBudget);
    EXPECT_EQ(names(reader->getDepthFirstIterator()), walk);
    EXPECT_EQ(names(reader->findBlocks("S", SearchOptions::RegExpOff, SearchOptions::WholeWordOff,
                                       SearchOptions::MatchCaseOff)),
              hits);
    EXPECT_LT(cache().loadedNodeCount(), 14u) << "not all held at once";

    const TandrilObject x = object("Alpha/Sub/X");
    const TandrilObject gain = object("Alpha/Gain");
    const TandrilObject s2 = object("Alpha/Ref2/S2");
    const std::string xAnswers = answers(x);
    const std::string gainAnswers = answers(gain);
    const std::string s2Answers = answers(s2);
    ASSERT_EQ(x.getDescription(), "About X");
    ASSERT_NE(gain.getIcon(), nullptr);
    ASSERT_FALSE(gain.getIcon()->isEmpty());
    const std::uint64_t copies = XMLRepositoryArchiveCache::copyCount();
    const std::uint64_t reads = XMLRepositoryArchiveCache::readCount();

    readBeta();
    EXPECT_EQ(x.getData()->node(), nullptr) << "Alpha was released";
    EXPECT_EQ(gain.getData()->node(), nullptr);
    EXPECT_EQ(cache().loadedNodeCount(), 1u) << "Beta, read last, stays";
    EXPECT_NE(object("Beta/B1").getData()->node(), nullptr);

    EXPECT_EQ(answers(x), xAnswers);
    EXPECT_EQ(answers(gain), gainAnswers);
    EXPECT_EQ(answers(s2), s2Answers);
    EXPECT_EQ(object("Alpha/Sub/X").getData(), x.getData()) << "the same handle";
    EXPECT_GT(XMLRepositoryArchiveCache::readCount(), reads) << "read again";
    EXPECT_EQ(XMLRepositoryArchiveCache::copyCount(), copies) << "from the copies made before";
    EXPECT_EQ(cache().productCacheCount(), 3u) << "released products keep their caches and copies";
    EXPECT_FALSE(report->hasError());
}

// Another process replaces a product after it was released. While this
// reader still holds the top level it read, the product comes back from
// the copies that fit that record; once it reads the new top level, a
// released product is read from the store anew, never from copies of an
// older record.
TEST_F(CacheReleaseTest, AReleasedProductFollowsTheTopLevelItsRecordCameFrom)
{
    cache().setLoadedNodeBudget(SmallBudget);
    const TandrilObject x = object("Alpha/Sub/X");
    ASSERT_EQ(x.getDescription(), "About X");
    readBeta();
    ASSERT_EQ(x.getData()->node(), nullptr);

    auto sub = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(sub->loadFromBytes(alphaManifests.at("Alpha/Sub/lbSubmanifest.xml"), errors));
    sub->beginChangeSet();
    static_cast<BlockImpl*>(sub->getNodes().get(0))->setDescription("New X");
    sub->commitChangeSet();
    replaceManifest("Alpha", "Alpha/Sub/lbSubmanifest.xml", sub->saveToBytes());
    writeFile(topLevelFile(store()), readFile(topLevelFile(store())));

    const std::uint64_t copies = XMLRepositoryArchiveCache::copyCount();
    EXPECT_EQ(x.getDescription(), "About X") << "the record read before, and what it describes";
    EXPECT_EQ(XMLRepositoryArchiveCache::copyCount(), copies);
    readBeta();
    ASSERT_EQ(x.getData()->node(), nullptr);

    // As a writer of this process, or a read that met the change, tells it.
    ReaderCacheRegistry::unloadTopLevelCaches(store());
    EXPECT_EQ(x.getDescription(), "New X");
    EXPECT_EQ(XMLRepositoryArchiveCache::copyCount(), copies + 1) << "a new copy of the store's archive";
    EXPECT_TRUE(object("Alpha/Sub/Back").isValid());
    EXPECT_FALSE(report->hasError());
}

} // namespace
} // namespace LibraryBrowser
