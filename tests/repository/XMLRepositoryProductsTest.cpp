#include "StoreFixture.h"

#include "platform/ErrorHolder.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/RepositoryReader.h"

#include <QFile>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;

class XMLRepositoryProductsTest : public Testing::StoreFixture {
protected:
    void SetUp() override
    {
        StoreFixture::SetUp();
        makeShippedStore({"Alpha", "Beta", "Delta"});
        repository = openRepository();
        report = repository->getRepositoryReport();
        report->clearWarning();
    }

    // Rewrites a top-level manifest; the writable store's token stays valid.
    void rewrite(const Model& model, const std::string& store)
    {
        saveManifest(model, topLevelFile(store));
        ReaderCacheRegistry::unloadTopLevelCaches(store);
    }

    Library shippedProduct(const std::string& name) { return repository->shippedReader()->getProduct(name); }

    // "w:Name" or "s:Name" per handle: the store its node comes from and its name.
    Messages describe(const std::vector<TandrilObject>& objects)
    {
        Messages text;
        for (const TandrilObject& object : objects) {
            const Model* model = object.getImpl()->getModel();
            const bool fromWritable = model == repository->writableReader()->topLevelManifest().get();
            const bool fromShipped = model == repository->shippedReader()->topLevelManifest().get();
            text.push_back(std::string(fromWritable ? "w:" : fromShipped ? "s:" : "?:") + object.getName());
        }
        return text;
    }
    Messages describe(TandrilObjectIterator it)
    {
        std::vector<TandrilObject> objects;
        for (; it.isValidIterator(); it.next())
            objects.push_back(it.current());
        return describe(objects);
    }

    XMLRepositoryPtr repository;
};

// Products are found by the key of an object id. The merge takes the
// writable copy only while the shipped one is unchanged, matches products by
// unique path, not by path (a library another product depends on is listed
// under its own product's path), and adds dependencies one level deep.
TEST_F(XMLRepositoryProductsTest, MergeTakesTheWritableCopyOnlyWhileTheShippedOneIsUnchanged)
{
    EXPECT_EQ(repository->getProduct("Beta/Sub/Block").getName(), "Beta");
    EXPECT_EQ(repository->getProduct("Delta-3/x").getName(), "Delta");
    EXPECT_EQ(repository->getProduct("AlphaPath").getName(), "Alpha");
    EXPECT_TRUE(repository->getProduct("Nope").isNull());
    EXPECT_FALSE(repository->isProductUpToDate(std::string("Nope")));

    auto model = Model::createModel();
    addProduct(*model, "Alpha", "writable-2", "shipped-1"); // took over the current shipped Alpha
    addProduct(*model, "Beta", "writable-2", "shipped-0");  // took over an older shipped Beta
    addProduct(*model, "Gamma", "writable-2");              // only in the writable store
    rewrite(*model, writable());
    // Delta is only shipped: the writable list decides what is listed.
    EXPECT_EQ(describe(repository->getMergedProducts()), (Messages{"w:Alpha", "s:Beta", "w:Gamma"}));
    // A new shipped Alpha makes the writable copy stale.
    auto shippedModel = Model::createModel();
    addProduct(*shippedModel, "Alpha", "shipped-2");
    addProduct(*shippedModel, "Beta", "shipped-0");
    rewrite(*shippedModel, shipped());
    EXPECT_EQ(describe(repository->getProductsIterator()), (Messages{"s:Alpha", "w:Beta", "w:Gamma"}));

    shippedModel = Model::createModel();
    addProduct(*shippedModel, "Alpha", "shipped-1");
    LibraryImpl* dependency = addProduct(*shippedModel, "Alpha", "shipped-0");
    dependency->setUniquePath(StringId("Beta-Alpha"));
    dependency->setIsProduct(false);
    rewrite(*shippedModel, shipped());
    model = Model::createModel();
    addProduct(*model, "Alpha", "writable-2", "shipped-1");
    rewrite(*model, writable());
    EXPECT_EQ(describe(repository->getMergedProducts()), (Messages{"w:Alpha"}));

    shippedModel = Model::createModel();
    LibraryImpl* beta = addProduct(*shippedModel, "Beta", "shipped-2");
    LibraryImpl* shared = addProduct(*shippedModel, "Shared");
    LibraryImpl* deep = addProduct(*shippedModel, "Deep");
    shared->setIsProduct(false);
    deep->setIsProduct(false);
    beta->getDependenciesPtr()->append(shared);
    shared->getDependenciesPtr()->append(deep);
    rewrite(*shippedModel, shipped());
    model = Model::createModel();
    addProduct(*model, "Alpha", "writable-2");
    addProduct(*model, "Beta", "writable-2", "shipped-1");
    rewrite(*model, writable());
    EXPECT_EQ(describe(repository->getMergedProducts()), (Messages{"w:Alpha", "s:Beta"}));
    EXPECT_EQ(describe(repository->getAllProductsIterator()), (Messages{"w:Alpha", "s:Beta", "s:Shared"}));
}

// Explicit generation sends no signals, and errors met inside a product are
// cleared when it is done. Archives are copied unless the writable store has
// both, and never from a store of another schema. A reader on a missing
// directory does not exist and creates nothing.
TEST_F(XMLRepositoryProductsTest, ArchivesAreCopiedUnlessTheWritableStoreHasBoth)
{
    auto& writableReader = *repository->writableReader();
    auto& shippedReader = *repository->shippedReader();
    // Only one writable archive: both come from the shipped store.
    writeFile(archive(writable(), "Alpha", "icons"), "partial");
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, shippedProduct("Alpha"));
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "icons")), "shipped icons of Alpha");
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "manifests")), "shipped manifests of Alpha");
    // Both there: a base to work on, nothing is copied.
    writeFile(archive(writable(), "Alpha", "icons"), "own icons");
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, shippedProduct("Alpha"));
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "icons")), "own icons");
    // A shipped archive missing: nothing to start from.
    QFile::remove(QString::fromStdString(archive(shipped(), "Beta", "manifests")));
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, shippedProduct("Beta"));
    EXPECT_FALSE(exists(archive(writable(), "Beta", "icons")));
    EXPECT_FALSE(report->hasError() || report->hasWarning());

    int signalCount = 0;
    QObject::connect(repository.get(), &Repository::preGenerateProduct, [&](const std::string&) { ++signalCount; });
    repository->generateProduct(shippedProduct("Beta"));
    repository->generateRepository(GenerationMode::Regenerate);
    repository->generateRepository();
    EXPECT_EQ(signalCount, 0);
    EXPECT_EQ(loggedCount(*report, "Action: Processing product Beta Library\n"), 3)
        << "once for Beta, twice for each product of the store";
    EXPECT_FALSE(report->hasError());

    report = RepositoryReport::create();
    QFile::remove(QString::fromStdString(archive(writable(), "Alpha", "icons")));
    auto model = Model::createModel();
    LibraryImpl* alpha = addProduct(*model, "Alpha");
    QByteArray bytes = model->saveToBytes();
    bytes.replace(QByteArray::fromStdString(Signature::manifestSchema().toString()), "0123456789abcdef0123456789abcdef");
    writeFile(topLevelFile(shipped()), bytes);
    ReaderCacheRegistry::unloadTopLevelCaches(shipped());
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, Library(alpha, repository->getCache()));
    EXPECT_FALSE(exists(archive(writable(), "Alpha", "icons")));
    ASSERT_EQ(report->getWarnings().size(), 1u);
    EXPECT_EQ(report->getWarnings().front().message,
              "Unable to use the numoraroot repository. It was generated with an older version of the data model.");

    const RepositoryReaderPtr absent = RepositoryReader::open(path("absent/store"));
    EXPECT_FALSE(absent->exists());
    EXPECT_TRUE(absent->getAllProductsIterator().isEmpty());
    EXPECT_FALSE(exists(path("absent")));
    EXPECT_TRUE(logged(*absent->getRepositoryReport(), "Action: The top level manifest does not exist\n"));
}

} // namespace
} // namespace LibraryBrowser
