#include "HandMadeStore.h"

#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>

namespace LibraryBrowser {
namespace {

using Names = std::vector<std::string>;

class ReadCacheTest : public Testing::HandMadeStore {
protected:
    TandrilObject object(const std::string& id) { return reader->getTandrilObject(id); }
    static std::string displayPath(const TandrilObject& object)
    {
        return static_cast<const BlockImpl*>(object.getImpl())->getDisplayPath();
    }
};

// Objects are found through library references and rebased below them;
// icons are shared documents and a missing one an empty icon, reported once;
// a palette's children are computed anew at each load, never read.
TEST_F(ReadCacheTest, ReferencesIconsAndPalettes)
{
    const TandrilObject s2 = object("Alpha/Ref2/S2");
    ASSERT_TRUE(s2.isValid());
    EXPECT_EQ(s2.getPath(), "Shared/S2") << "the block itself is the library's";
    EXPECT_EQ(displayPath(s2), "AlphaPath/Ref2/S2") << "shown below the reference, not the target";
    EXPECT_NE(s2, object("Alpha/Ref1/S2"));
    EXPECT_EQ(displayPath(object("Alpha/Sub/X")), "AlphaPath/Sub/X");
    // A product is found by its display path too, and a referenced library by its own id.
    EXPECT_EQ(object("AlphaPath/Gain").getImpl(), object("Alpha/Gain").getImpl());
    EXPECT_EQ(reader->getProduct("Alpha-Shared/S1").getName(), "Alpha");
    EXPECT_FALSE(object("Alpha/Ref1/S3").isValid());

    BlockIconPtr gain = object("Alpha/Gain").getIcon();
    ASSERT_NE(gain, nullptr);
    EXPECT_TRUE(gain->svg().contains("Gain"));
    EXPECT_EQ(object("Alpha/Gain").getIcon(), gain) << "read once, then shared while held";
    EXPECT_FALSE(gain->naturalSize().isEmpty());
    object("Alpha/Scope").getIcon();
    EXPECT_TRUE(object("Alpha/Scope").getIcon()->isEmpty());
    ASSERT_EQ(report->getWarnings().size(), 1u) << "a missing icon is reported once, even when not held";
    EXPECT_EQ(report->getWarnings().front().message.rfind("Unable to locate file icons/Scope.svg in archive ", 0), 0u);
    EXPECT_TRUE(object("Alpha/Sub").getIcon()->isEmpty()) << "no icon named";
    EXPECT_EQ(object("Alpha/Nope").getIcon(), nullptr);
    const IconTable icons = reader->getIcons(object("Alpha"));
    ASSERT_EQ(icons.size(), 5u);
    EXPECT_EQ(icons.at(object("Alpha/Gain")), gain);
    EXPECT_FALSE(report->hasError());

    const TandrilObject tools = object("Tools");
    const std::uint64_t reads = XMLRepositoryArchiveCache::readCount();
    TandrilObjectIterator children = reader->getChildrenIterator(tools);
    ASSERT_EQ(children.size(), 1);
    const TandrilObject beta = children.current();
    EXPECT_EQ((Names{beta.getType(), beta.getName(), beta.getLibraryRefPath(), beta.id().str(), displayPath(beta)}),
              (Names{"LibraryRef", "Beta", "Beta", "Tools/Beta", "Tools/Beta Library"}));
    EXPECT_NE(reader->getCache()->getModel(tools), reader->getCache()->getModel(tools));
    EXPECT_EQ(XMLRepositoryArchiveCache::readCount(), reads);
    EXPECT_EQ(report->getWarnings().size(), 4u) << "the palette lists itself: one warning per load";
}

// Each archive is copied once per product cache and the copies go with it;
// no archive stays open between reads, and each read checks the store's.
// Two readers on one directory both hear of changes however it is spelled,
// and a product looked up before the top level was reloaded is found in the
// new one.
TEST_F(ReadCacheTest, PrivateCopiesAndUnloads)
{
    const std::uint64_t copies = XMLRepositoryArchiveCache::copyCount();
    const TandrilObject alpha = object("Alpha");
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(reader->getDepthFirstIterator(alpha).size(), 10);
        reader->getIcons(alpha);
    }
    EXPECT_EQ(XMLRepositoryArchiveCache::copyCount(), copies + 2) << "manifests and icons, once each";
    EXPECT_EQ(tempEntries().size(), 2);
    ReaderCacheRegistry::unloadProductCaches(store(), alpha.toLibrary());
    EXPECT_TRUE(tempEntries().isEmpty());
    EXPECT_EQ(reader->getChildrenIterator(alpha).size(), 5);
    EXPECT_EQ(XMLRepositoryArchiveCache::copyCount(), copies + 3) << "a new copy after the unload";
    ReaderCacheRegistry::refreshCaches(store());
    EXPECT_TRUE(tempEntries().isEmpty());
    EXPECT_EQ(reader->readerCache().productCacheCount(), 0u);

    ASSERT_EQ(reader->getProduct("Alpha/Sub/X").getName(), "Alpha");
    ReaderCacheRegistry::unloadTopLevelCaches(store());
    const Library found = reader->getProduct("AlphaPath/Gain");
    const TandrilObjectImpl* listed = nullptr;
    for (TandrilObjectIterator it = reader->getProductsIterator(); it.isValidIterator(); it.next())
        if (it.current().getName() == "Alpha")
            listed = it.current().getImpl();
    EXPECT_EQ(found.getImpl(), listed);

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
    EXPECT_EQ(tempEntries().size(), 2) << "the private copies stay";
    int open = 0;
    for (const QFileInfo& fd : QDir("/proc/self/fd").entryInfoList(QDir::Files | QDir::System))
        open += fd.symLinkTarget().endsWith("cachedArchive.rps");
    EXPECT_EQ(open, 0);
    // The copy would still serve Sub, not read so far, but the store no
    // longer has the archive: the read answers as for a missing archive.
    const TandrilObject sub = object("Alpha/Sub");
    ASSERT_TRUE(sub.isValid());
    QFile::remove(QString::fromStdString(archive("Alpha", "manifests")));
    EXPECT_TRUE(reader->getChildrenIterator(sub).isEmpty());
    EXPECT_FALSE(report->hasError() || report->hasWarning());
}

} // namespace
} // namespace LibraryBrowser
