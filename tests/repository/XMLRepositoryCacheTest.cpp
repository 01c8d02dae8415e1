#include "HandMadeStore.h"

#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Names = std::vector<std::string>;

// A repository whose shipped store is the hand-made one. Products can't be
// generated yet, so every product is read from the shipped store.
class XMLRepositoryCacheTest : public Testing::HandMadeStore {
protected:
    void SetUp() override
    {
        HandMadeStore::SetUp();
        writeStore(shipped());
        repository = std::dynamic_pointer_cast<XMLRepository>(Repository::open(writable(), shipped(), {}));
        ASSERT_NE(repository, nullptr);
    }

    std::string shipped() const { return hostRoot() + "/toolbox/tandril/tandril/private/td_library_browser_repos"; }
    std::string writable() const { return preferences() + "/td_library_browser_repos"; }

    XMLRepositoryPtr repository;
};

TEST_F(XMLRepositoryCacheTest, HandlesAreBoundToTheRepositoryAndReadFromTheChosenStore)
{
    const TandrilObject alpha = repository->getTandrilObject("Alpha");
    ASSERT_TRUE(alpha.isValid());
    EXPECT_EQ(alpha.getData()->cache(), repository->getCache());
    EXPECT_EQ(names(repository->getChildrenIterator(alpha)), (Names{"  Gain", "  Scope", "  Sub", "  Ref1", "  Ref2"}));
    EXPECT_EQ(repository->getChildrenIterator(alpha).current().getData()->cache(), repository->getCache());
    EXPECT_EQ(names(repository->getTopLevelIterator()), (Names{"Alpha", "Beta"}));
    // The merged list holds every entry of the writable top level, so the
    // walk from the top also runs through the referenced library.
    EXPECT_EQ(names(repository->getAllProductsIterator()), (Names{"Alpha", "Alpha-Shared", "Beta", "Tools"}));
    EXPECT_EQ(repository->getDepthFirstIterator().size(), 19);
    EXPECT_TRUE(repository->getTandrilObject("Alpha/Ref1/S1").isValid());
    EXPECT_TRUE(repository->getTandrilObject("Alpha/Gain").getIcon()->svg().contains("Gain"));
    EXPECT_EQ(repository->getCache()->getModel(alpha)->nodeCount(), 5);
    // Neither store is up to date and generation is not there yet: the
    // shipped store serves, after its archives were laid out as a base.
    EXPECT_TRUE(exists(writable() + "/toolbox/Alpha/lb_Alpha_manifests_repos.rps"));
    EXPECT_EQ(repository->shippedReader()->readerCache().productCacheCount(), 3u);
    EXPECT_EQ(repository->writableReader()->readerCache().productCacheCount(), 0u);
}

TEST_F(XMLRepositoryCacheTest, AHandleSurvivesTheUnloadingOfItsProductInEitherStore)
{
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

TEST_F(XMLRepositoryCacheTest, WithoutItsRepositoryTheCacheAnswersEmpty)
{
    TandrilObject gain = repository->getTandrilObject("Alpha/Gain");
    ASSERT_TRUE(gain.isValid());
    XMLRepositoryCache detached(shipped(), writable(), repository->getRepositoryReport(), nullptr);
    const TandrilObject alpha(repository->getTandrilObject("Alpha").getImpl(), &detached);
    EXPECT_TRUE(detached.getProductsIterator().isEmpty());
    EXPECT_TRUE(detached.getAllProductsIterator().isEmpty());
    EXPECT_TRUE(detached.getChildrenIterator(alpha).isEmpty());
    EXPECT_EQ(detached.getIcon(alpha), nullptr);
    EXPECT_EQ(detached.getModel(alpha)->nodeCount(), 0);
    EXPECT_EQ(detached.getReader(alpha.toLibrary()), nullptr);

    repository.reset();
    EXPECT_FALSE(gain.isValid()) << "orphaned with the repository";
    EXPECT_EQ(gain.getName(), "");
    EXPECT_TRUE(tempEntries().isEmpty());
}

} // namespace
} // namespace LibraryBrowser
