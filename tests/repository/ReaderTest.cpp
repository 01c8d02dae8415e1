#include "HandMadeStore.h"

#include "platform/ErrorHolder.h"
#include "repository/HandleData.h"
#include "repository/ReaderCache.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/TandrilObjectReferenceIterator.h"
#include "repository/search/BlockTypeCriteria.h"
#include "repository/search/TandrilObjectSearchIterator.h"
#include "repository/xmlrepository/XMLRepository.h"
#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"
#include "repository/xmlrepository/XMLRepositoryReaderCache.h"
#include "support/ReportLines.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace LibraryBrowser {
namespace {

using namespace Testing;
using Names = std::vector<std::string>;

using HandleTest = HandMadeStore;

// Handles on one id share one data and compare by id; chained conversions
// keep the node and give nulls of the target class; a missing object
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

    // (Each kind's tests and single conversions are test_handles.py's table.)
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

    // Another process publishes a new top level: the products read are
    // dropped with it, and no handle keeps a node of theirs.
    ASSERT_NE(x.getData()->node(), nullptr);
    writeFile(topLevelFile(store()), readFile(topLevelFile(store())));
    XMLRepositoryReaderCache::forgetReplacedTopLevels(store());
    EXPECT_EQ(x.getData()->node(), nullptr);
    EXPECT_EQ(x.getDescription(), "New X");

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

using ReadCacheTest = HandMadeStore;

std::string displayPath(const TandrilObject& object)
{
    return static_cast<const BlockImpl*>(object.getImpl())->getDisplayPath();
}

// Objects are found through library references and rebased below them; a
// missing icon is an empty one, reported once. (Shared icons and the icon
// table are the window's tests'; palettes the walk's.)
TEST_F(ReadCacheTest, ReferencesAndMissingIcons)
{
    const TandrilObject s2 = object("Alpha/Ref2/S2");
    ASSERT_TRUE(s2.isValid());
    EXPECT_EQ(s2.getPath(), "Shared/S2") << "the block itself is the library's";
    EXPECT_EQ(displayPath(s2), "AlphaPath/Ref2/S2") << "shown below the reference, not the target";
    EXPECT_NE(s2, object("Alpha/Ref1/S2"));
    // A product is found by its display path too, and a referenced library by its own id.
    EXPECT_EQ(object("AlphaPath/Gain").getImpl(), object("Alpha/Gain").getImpl());
    EXPECT_EQ(reader->getProduct("Alpha-Shared/S1").getName(), "Alpha");
    EXPECT_FALSE(object("Alpha/Ref1/S3").isValid());

    object("Alpha/Scope").getIcon();
    EXPECT_TRUE(object("Alpha/Scope").getIcon()->isEmpty());
    ASSERT_EQ(report->getWarnings().size(), 1u) << "a missing icon is reported once, even when not held";
    EXPECT_EQ(report->getWarnings().front().message.rfind("Unable to locate file icons/Scope.svg in archive ", 0), 0u);
    EXPECT_TRUE(object("Alpha/Sub").getIcon()->isEmpty()) << "no icon named";
    EXPECT_EQ(object("Alpha/Nope").getIcon(), nullptr);
    EXPECT_FALSE(report->hasError());
}

// A product asked for by key is the first product, in the top level's
// order, whose unique path or display path is the key, even where a later
// product's unique path is the key too; a key that no product has is none.
TEST_F(ReadCacheTest, AProductIsTheFirstWhosePathIsTheKey)
{
    const ModelPtr top = reader->topLevelManifest();
    ASSERT_TRUE(top);
    LibraryImpl* alpha = nullptr;
    for (TandrilObjectImpl* node : top->getNodes())
        if (node->getUniquePath().str() == "Alpha")
            alpha = dynamic_cast<LibraryImpl*>(node);
    ASSERT_NE(alpha, nullptr);
    top->beginChangeSet();
    alpha->setDisplayPath("Beta");
    top->commitChangeSet();

    EXPECT_EQ(reader->getProduct("Beta/B1").getName(), "Alpha") << "Alpha comes first";
    EXPECT_EQ(reader->getProduct("Alpha-Shared/S1").getName(), "Alpha");
    EXPECT_TRUE(reader->getProduct("AlphaPath").isNull()) << "no product is shown so any more";
    EXPECT_TRUE(reader->getProduct("Nope").isNull());
}

// Two readers on one directory both hear of changes however it is spelled;
// each read checks the store's archive.
// (Copies per product cache and their going with an unload or the reader
// are HandleTest's.)
TEST_F(ReadCacheTest, EverySpellingOfTheStoreHearsOfChanges)
{
    {
        std::string spelled = store();
        std::replace(spelled.begin(), spelled.end(), '/', '\\');
        const auto other = std::make_shared<XMLRepositoryReader>(spelled, report);
        const std::vector<ReaderCache*> caches = ReaderCacheRegistry::cachesFor(store());
        EXPECT_EQ(caches.size(), 2u);
        EXPECT_NE(std::find(caches.begin(), caches.end(), other->getCache()), caches.end());
        const TandrilObject x = object("Alpha/Sub/X");
        // The other reader can't read that spelling here, so it holds a placeholder.
        const TandrilObject placeholder = other->getTandrilObject("Alpha/Sub/X");
        ASSERT_TRUE(x.isValid());
        ASSERT_NE(placeholder.getData()->node(), nullptr);
        ReaderCacheRegistry::refreshCaches(spelled);
        EXPECT_EQ(x.getData()->node(), nullptr);
        EXPECT_EQ(placeholder.getData()->node(), nullptr);
        EXPECT_EQ(reader->readerCache().productCacheCount(), 0u);
        const TandrilObject top = object("Alpha");
        ReaderCacheRegistry::unloadTopLevelCaches(store() + "/");
        EXPECT_NE(top.getData()->node(), nullptr) << "another directory: nothing heard";
        ReaderCacheRegistry::unloadTopLevelCaches(spelled);
        EXPECT_EQ(top.getData()->node(), nullptr);
        EXPECT_EQ(x.getName(), "X");
    }

    ReaderCacheRegistry::refreshCaches(store());
    report->clearWarning();
    EXPECT_EQ(reader->getChildrenIterator(object("Alpha")).size(), 5);
    EXPECT_FALSE(reader->getIcon(object("Alpha/Gain"))->isEmpty());
    // The copy would still serve Sub, not read so far, but the store no
    // longer has the archive: the read answers as for a missing archive.
    const TandrilObject sub = object("Alpha/Sub");
    ASSERT_TRUE(sub.isValid());
    QFile::remove(QString::fromStdString(archive("Alpha", "manifests")));
    EXPECT_TRUE(reader->getChildrenIterator(sub).isEmpty());
    EXPECT_FALSE(report->hasError() || report->hasWarning());
}

// A reader that takes the top level of another reader of its store holds
// the very model that one read while the file is as it was read and the
// model as the file has it; otherwise it reads its own. Where the other
// reader finds none, it has none either.
TEST_F(ReadCacheTest, ASharedTopLevelIsTakenOnlyWhileTheFileIsAsItWasRead)
{
    const auto sharing = [this](const std::shared_ptr<XMLRepositoryReader>& source = nullptr) {
        auto taker = openReader();
        taker->readerCache().shareTopLevelOf(&(source ? source : reader)->readerCache());
        return taker;
    };
    const ModelPtr source = reader->topLevelManifest();
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(sharing()->topLevelManifest(), source);

    ModelPtr replaced = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(replaced->load(topLevelFile(store()), errors));
    replaced->beginChangeSet();
    static_cast<LibraryImpl*>(replaced->getNodes().get(0))->setDisplayName("Alpha Renamed");
    replaced->commitChangeSet();
    saveManifest(*replaced, topLevelFile(store()));
    const auto late = sharing();
    const ModelPtr own = late->topLevelManifest();
    ASSERT_NE(own, nullptr);
    EXPECT_NE(own, source) << "read anew: the source holds the file as it was";
    EXPECT_EQ(static_cast<const LibraryImpl*>(own->getNodes().get(0))->getDisplayName(), "Alpha Renamed");

    // While the source's model is being changed, a cache that shares it
    // lets it go and reads its own; a change the source has not written
    // is never shared.
    const auto taker = sharing(late);
    ASSERT_EQ(taker->topLevelManifest(), own);
    const TandrilObject alpha = taker->getTandrilObject("Alpha");
    ASSERT_NE(alpha.getData()->node(), nullptr);
    late->readerCache().beginTopLevelChange();
    EXPECT_EQ(alpha.getData()->node(), nullptr) << "its handles let go of the nodes being changed";
    const ModelPtr duringChange = taker->topLevelManifest();
    EXPECT_TRUE(duringChange && duringChange != own);
    late->readerCache().endTopLevelChange();
    own->beginChangeSet();
    static_cast<LibraryImpl*>(own->getNodes().get(0))->setDisplayName("Not Written");
    own->commitChangeSet();
    const ModelPtr unwritten = sharing(late)->topLevelManifest();
    ASSERT_NE(unwritten, nullptr);
    EXPECT_NE(unwritten, own);
    EXPECT_EQ(static_cast<const LibraryImpl*>(unwritten->getNodes().get(0))->getDisplayName(), "Alpha Renamed");
    saveManifest(*own, topLevelFile(store()));
    ASSERT_TRUE(late->readerCache().keepsWrittenTopLevel(*own));
    EXPECT_EQ(sharing(late)->topLevelManifest(), own) << "written, it is shared again";

    writeFile(topLevelFile(store()), "<not a manifest");
    reader = openReader();
    const int before = loggedCount(*report, "looks corrupted");
    EXPECT_EQ(sharing()->topLevelManifest(), nullptr);
    EXPECT_EQ(loggedCount(*report, "looks corrupted"), before + 1) << "said once, by the reader that read it";
}

using IteratorTest = HandMadeStore;

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

using XMLRepositoryCacheTest = HandMadeStore;

// A repository whose shipped store is the hand-made one, on a host that
// announces its products but knows none of their blocks: no product can be
// brought up to date, so every product is read from the shipped store.
// Handles are bound to the repository and survive the unloading of their
// product in either store.
TEST_F(XMLRepositoryCacheTest, HandlesAreBoundToTheRepositoryAndReadFromTheChosenStore)
{
    libraries.setProducts({{"Alpha Library", "Alpha", "Product", {}, {}},
                           {"Beta Library", "Beta", "Product", {}, {}},
                           {"Tools", "Tools", "Palette", {"Beta", "Tools", "Nope"}, {}}});
    writeStore(shipped());
    auto repository = std::dynamic_pointer_cast<XMLRepository>(Repository::open(writable(), shipped(), {}));
    ASSERT_NE(repository, nullptr);
    const TandrilObject alpha = repository->getTandrilObject("Alpha");
    ASSERT_TRUE(alpha.isValid());
    EXPECT_EQ(alpha.getData()->cache(), repository->getCache());
    EXPECT_EQ(names(repository->getChildrenIterator(alpha)), (Names{"  Gain", "  Scope", "  Sub", "  Ref1", "  Ref2"}));
    EXPECT_EQ(repository->getChildrenIterator(alpha).current().getData()->cache(), repository->getCache());
    // The host lists Beta and Tools itself as members of the palette Tools,
    // so neither stands at the top.
    EXPECT_EQ(names(repository->getTopLevelIterator()), (Names{"Alpha"}));
    // Reading Alpha generated it into the writable store first. The host
    // knows no blocks of Alpha, so Alpha-Shared is no longer used and left
    // the list, and Alpha's model file can't be checksummed: Alpha stays out
    // of date and is read from the shipped store.
    EXPECT_EQ(names(repository->getAllProductsIterator()), (Names{"Alpha", "Beta", "Tools"}));
    EXPECT_EQ(repository->getDepthFirstIterator().size(), 16);
    EXPECT_TRUE(repository->getTandrilObject("Alpha/Gain").getIcon()->svg().contains("Gain"));
    // Nothing was made, so the publish removed the archives the writable
    // store had been seeded with.
    EXPECT_FALSE(exists(writable() + "/toolbox/Alpha/lb_Alpha_manifests_repos.rps"));
    EXPECT_EQ(repository->shippedReader()->readerCache().productCacheCount(), 3u);
    EXPECT_EQ(repository->writableReader()->readerCache().productCacheCount(), 0u);

    const TandrilObject x = repository->getTandrilObject("Alpha/Sub/X");
    ASSERT_EQ(x.getName(), "X");
    for (const std::string& store : {shipped(), writable()}) {
        SCOPED_TRACE(store);
        ReaderCacheRegistry::unloadProductCaches(store, repository->getProduct("Alpha"));
        EXPECT_EQ(x.getData()->node(), nullptr);
        EXPECT_EQ(x.getName(), "X");
        EXPECT_EQ(repository->getTandrilObject("Alpha/Sub/X").getData(), x.getData());
    }
    ReaderCacheRegistry::refreshCaches(writable());
    EXPECT_EQ(x.getData()->node(), nullptr);
    EXPECT_EQ(x.getPath(), "Alpha/Sub/X");
}

using FindBlocksTest = HandMadeStore;

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

// Each broken store must give the report's lines and empty results, never a
// crash, and must stay on disk exactly as it was.
class ReadCacheFaultTest : public Testing::HandMadeStore {
protected:
    // Ends the last case; mends the store, has `breakIt` break it and opens
    // a new reader with a new report on it.
    void next(const char* what, const std::function<void()>& breakIt)
    {
        expectUnchanged();
        trace.emplace(__FILE__, __LINE__, what);
        ASSERT_TRUE(QDir(QString::fromStdString(store())).removeRecursively());
        writeStore(store());
        breakIt();
        report = RepositoryReport::create();
        before = Testing::snapshot(store());
        reader = openReader();
    }

    void expectUnchanged()
    {
        reader.reset();
        if (trace) {
            EXPECT_EQ(Testing::snapshot(store()), before) << "nothing on disk changes";
        }
        EXPECT_TRUE(tempEntries().isEmpty());
    }

    void TearDown() override
    {
        expectUnchanged();
        HandMadeStore::TearDown();
    }

    int betaChildren() { return reader->getChildrenIterator(reader->getTandrilObject("Beta")).size(); }
    QByteArray betaBlocks(std::initializer_list<const char*> names)
    {
        auto children = Model::createModel();
        for (const char* name : names) {
            BlockImpl* block = children->createBlockImpl();
            block->setName(name);
            block->setProductName("Beta");
        }
        return children->saveToBytes();
    }

    std::map<QString, QByteArray> before;
    std::optional<::testing::ScopedTrace> trace;
};

TEST_F(ReadCacheFaultTest, EachBrokenStoreGivesEmptyResultsAndTheReportsLines)
{
    next("a missing archive: no children, without a word",
         [&] { QFile::remove(QString::fromStdString(archive("Beta", "manifests"))); });
    EXPECT_EQ(betaChildren(), 0);
    EXPECT_FALSE(reader->getTandrilObject("Beta/B1").isValid());
    EXPECT_FALSE(report->hasError() || report->hasWarning());

    next("a file that is not a zip: two errors", [&] { writeFile(archive("Beta", "manifests"), "no zip archive"); });
    EXPECT_EQ(betaChildren(), 0);
    Names messages = errorMessages(*report);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].rfind("Unable to open archive ", 0), 0u);
    EXPECT_NE(messages[0].find("/cachedArchive.rps"), std::string::npos) << "the private copy is what is opened";
    EXPECT_GT(messages[1].size(), std::string("Error returned from zip archiver: ").size());

    next("a corrupt manifest entry: an error, and what was read stays", [&] {
        const QByteArray whole = betaBlocks({"B1", "B2"});
        // Cut inside the second block: the first is whole and stays.
        replaceManifest("Beta", "Beta/lbBetamanifest.xml", whole.left(whole.lastIndexOf("<BlockImpl") + 20));
    });
    EXPECT_EQ(betaChildren(), 1);
    EXPECT_EQ(errorMessages(*report), (Names{"Unexpected error occurred while loading the manifest file"}));
    EXPECT_TRUE(reader->getTandrilObject("Beta/B1").isValid());
    EXPECT_FALSE(reader->getTandrilObject("Beta/B2").isValid());

    next("an unreadable value costs only that value", [&] {
        replaceManifest("Beta", "Beta/lbBetamanifest.xml",
                        betaBlocks({"B1"}).replace("name=\"B1\"", "name=\"B1\" position=\"wide\""));
    });
    EXPECT_EQ(betaChildren(), 1);
    EXPECT_TRUE(reader->getTandrilObject("Beta/B1").isValid());
    EXPECT_FALSE(report->hasError());
    ASSERT_EQ(report->getWarnings().size(), 1u);
    EXPECT_NE(report->getWarnings().front().message.find("'position'"), std::string::npos);

    next("a corrupt top-level manifest reads as an empty store", [&] {
        // Cut inside a product element: the root and its signature survive.
        const QByteArray whole = readFile(topLevelFile(store()));
        writeFile(topLevelFile(store()), whole.left(whole.indexOf("<LibraryImpl") + 20));
    });
    EXPECT_FALSE(reader->exists());
    EXPECT_TRUE(reader->getDepthFirstIterator().isEmpty());
    EXPECT_TRUE(reader->getProduct("Beta").isNull());
    messages = errorMessages(*report);
    EXPECT_FALSE(messages.empty());
    for (const std::string& message : messages)
        EXPECT_EQ(message, "The top level manifest file looks corrupted. Returning an empty manifest.");

    next("a corrupt icon and an unresolvable reference give empty results", [&] {
        writeArchive(archive("Alpha", "icons"), {{"icons/Gain.svg", "<svg><unclosed></svg>"}});
        auto top = Model::createModel();
        ErrorHolder errors;
        ASSERT_TRUE(top->load(topLevelFile(store()), errors));
        // The target of Ref1 and Ref2 goes by another id now.
        top->getNodes().get(1)->setUniquePath(StringId("Alpha-Moved"));
        saveManifest(*top, topLevelFile(store()));
    });
    const BlockIconPtr icon = reader->getTandrilObject("Alpha/Gain").getIcon();
    ASSERT_NE(icon, nullptr);
    EXPECT_TRUE(icon->isEmpty());
    EXPECT_EQ(errorMessages(*report), (Names{"Unexpected error occurred while loading the manifest file"}));
    EXPECT_TRUE(reader->getChildrenIterator(reader->getTandrilObject("Alpha/Ref1")).isEmpty());
    EXPECT_EQ(reader->getDepthFirstIterator(reader->getTandrilObject("Alpha")).size(), 6);
}

} // namespace
} // namespace LibraryBrowser
