#include "HandMadeStore.h"

#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Names = std::vector<std::string>;
using XMLRepositoryCacheTest = Testing::HandMadeStore;

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

} // namespace
} // namespace LibraryBrowser
