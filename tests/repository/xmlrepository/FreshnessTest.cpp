#include "repository/HandMadeStore.h"
#include "repository/HandleData.h"
#include "repository/xmlrepository/HostOperations.h"
#include "repository/xmlrepository/LibraryComparison.h"
#include "repository/xmlrepository/RepositoryFiles.h"

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

const QDateTime stamp = QDateTime::fromSecsSinceEpoch(1763800000);

// A product "signals" whose model file and one dependency are on the host's
// disk, whose store holds both archives, and whose manifest records all of it
// as it is now.
class LibraryComparisonTest : public StoreFixture {
protected:
    void SetUp() override
    {
        StoreFixture::SetUp();
        put(tdblocks, "{\"entries\": []}");
        put(model, "{\"blocks\": [1, 2, 3]}");
        writeFile(store() + "/signals/icons.rps", "icons");
        writeFile(store() + "/signals/manifests.rps", "manifests");
        product = nodes->createLibraryImpl();
        product->setName("Signals");
        product->setPath("signals");
        product->setReposIconsArchiveSpec("signals/icons.rps");
        product->setReposManifestsArchiveSpec("signals/manifests.rps");
        recordModelFile(*product, "toolbox/signals/signals.tdlib.json");
        product->setFileDependencies({dependency("toolbox/signals/tdblocks.json")});
    }

    void put(const std::string& file, const char* content)
    {
        writeFile(file, content);
        setModified(file, stamp);
    }

    FileInfo dependency(const std::string& spec)
    {
        const std::string file = hostRoot() + "/" + spec;
        return {spec, computeCheckSum(*report, file), fileDate(file), std::uint64_t(readFile(file).size())};
    }

    bool compare(const LibraryImpl& library, bool ignoreTimestamp = false)
    {
        report = RepositoryReport::create();
        HostOperations host(report);
        return LibraryComparison(*report, store(), host).compareLibrary(library, ignoreTimestamp);
    }

    const std::string tdblocks = hostRoot() + "/toolbox/signals/tdblocks.json";
    const std::string model = hostRoot() + "/toolbox/signals/signals.tdlib.json";
    ModelPtr nodes = Model::createModel();
    LibraryImpl* product = nullptr;
};

} // namespace

// Dates that match are trusted without reading; a touched file with the same
// content stays up to date; changed content is out of date, whether the size
// or only the checksum tells; ignoring timestamps reads every file.
TEST_F(LibraryComparisonTest, ATouchedFileWithTheSameContentStaysUpToDate)
{
    EXPECT_TRUE(compare(*product));
    EXPECT_TRUE(logged(*report, "Action: The timestamps matched! (Signals)"));
    EXPECT_EQ(loggedCount(*report, "Computed check sum"), 0);

    EXPECT_TRUE(compare(*product, true));
    EXPECT_TRUE(logged(*report, "The timestamp of toolbox/signals/tdblocks.json has been ignored"));
    EXPECT_TRUE(logged(*report, "The timestamp of toolbox/signals/signals.tdlib.json has been ignored"))
        << "the model file's line quotes the host's path, not the library's name";
    EXPECT_EQ(loggedCount(*report, "Computed check sum"), 2);

    setModified(tdblocks, stamp.addSecs(60));
    setModified(model, stamp.addSecs(60));
    EXPECT_TRUE(compare(*product));
    EXPECT_TRUE(logged(*report, "The checksums matched! (toolbox/signals/tdblocks.json)"));
    EXPECT_TRUE(logged(*report, "The checksums matched! (Signals)"));

    const struct {
        const char* tdblocksContent;
        const char* modelContent;
        const char* line;
    } changes[] = {
        {"{\"entries\": [1]}", "{\"blocks\": [1, 2, 3]}", "The files have different sizes (toolbox/signals/tdblocks.json)"},
        {"{\"entries\": {}}", "{\"blocks\": [1, 2, 3]}", "The checksums did not match. (toolbox/signals/tdblocks.json)"},
        {"{\"entries\": []}", "{\"blocks\": [1, 2, 4]}", "The checksums did not match. (Signals)"},
    };
    for (const auto& change : changes) {
        writeFile(tdblocks, change.tdblocksContent);
        writeFile(model, change.modelContent);
        EXPECT_FALSE(compare(*product)) << change.line;
        EXPECT_TRUE(logged(*report, change.line));
    }
}

// Missing stored data or files are out of date silently; a library below a
// product counts the product's files and its own model; a palette passes on
// its files alone.
TEST_F(LibraryComparisonTest, MissingFilesLibrariesBelowAProductAndPalettes)
{
    put(hostRoot() + "/toolbox/signals/filters.tdlib.json", "{\"blocks\": []}");
    LibraryImpl* filters = nodes->createLibraryImpl();
    filters->setName("Filters");
    filters->setPath("filters");
    filters->setProduct(product);
    filters->setFileDependencies({{"toolbox/never/read.json", "", 0, 0}});
    recordModelFile(*filters, "toolbox/signals/filters.tdlib.json");
    EXPECT_TRUE(compare(*filters));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (toolbox/signals/tdblocks.json)"));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (Filters)"));

    PaletteImpl* palette = nodes->createPaletteImpl();
    palette->setName("Workbench");
    palette->setFileDependencies({dependency("toolbox/signals/tdblocks.json")});
    const std::size_t libraryData = interpreter.callCount("tdprivate:lb_getLibraryData");
    EXPECT_TRUE(compare(*palette)) << "no archives and no model file are asked of a palette";
    EXPECT_EQ(interpreter.callCount("tdprivate:lb_getLibraryData"), libraryData);

    QFile::remove(QString::fromStdString(store() + "/signals/icons.rps"));
    EXPECT_FALSE(compare(*product)) << "a library without its icons archive is out of date";
    EXPECT_EQ(report->getLog().size(), 1u) << "the dependency's line and nothing more";
    writeFile(store() + "/signals/icons.rps", "icons");
    writeFile(tdblocks, "{\"entries\": {}}");
    EXPECT_FALSE(compare(*filters)) << "the product's dependency changed";
    QFile::remove(QString::fromStdString(tdblocks));
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(report->getLog().empty());
    product->setFileDependencies({});
    product->setPath("forgotten"); // the host no longer knows the library
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(logged(*report, "The timestamps did not match (Signals)"));
    EXPECT_TRUE(logged(*report, "The files have different sizes (Signals)"));
}

namespace {

// The reader's decision over whole products: a product with its
// dependencies, and a palette that is as fresh as its members.
class ProductUpToDateTest : public HandMadeStore {
protected:
    LibraryImpl* stored(const std::string& id)
    {
        for (TandrilObjectImpl* node : reader->topLevelManifest()->getNodes())
            if (node->getUniquePath() == StringId(id))
                return dynamic_cast<LibraryImpl*>(node);
        return nullptr;
    }

    // Puts the library's model file on the host's disk and records it in the
    // store as it is now; an edit comes later and is not recorded.
    void record(const std::string& id, const QByteArray& content, bool edit = false)
    {
        const std::string spec = "toolbox/" + id + ".tdlib.json";
        writeFile(hostRoot() + "/" + spec, content);
        setModified(hostRoot() + "/" + spec, edit ? stamp.addSecs(5) : stamp);
        if (!edit)
            recordModelFile(*stored(id), spec);
    }
};

} // namespace

TEST_F(ProductUpToDateTest, AProductIsAsFreshAsItsDependencies)
{
    // A palette: its member Beta has no icons archive; then it has. The
    // members' dates count even when the palette's are ignored.
    record("Beta", "{\"blocks\": 1}");
    const TandrilObject tools = reader->getTandrilObject("Tools");
    EXPECT_FALSE(reader->isProductUpToDate(tools));
    writeArchive(archive("Beta", "icons"), {{"icons/B1.svg", svg("B1")}});
    EXPECT_TRUE(reader->isProductUpToDate(tools, true));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (Beta)"));
    ASSERT_FALSE(report->getWarnings().empty());
    EXPECT_EQ(report->getWarnings().front().id, "Tandril:LibraryBrowser:CycleInPalette") << "the palette lists itself";

    record("Alpha", "{\"blocks\": 1}");
    record("Alpha-Shared", "{\"blocks\": 2}");
    // As generation leaves it: the dependency's archives are its product's.
    stored("Alpha-Shared")->setProduct(stored("Alpha"));
    const TandrilObject alpha = reader->getTandrilObject("Alpha");
    EXPECT_TRUE(reader->isProductUpToDate(alpha));
    EXPECT_TRUE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "NotADependency", false));
    EXPECT_FALSE(reader->isProductUpToDate(TandrilObject()));
    EXPECT_FALSE(reader->isProductUpToDate(std::string("Nope")));
    EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("Alpha/Gain"))) << "a block is no product";

    // A handle of the merged list may hold the other store's node of a
    // product (both stores' handles share one entry per id). Each reader
    // judges the product by its own top-level record, whatever node the
    // handle holds.
    ModelPtr otherStore = Model::createModel();
    LibraryImpl* foreign = otherStore->createLibraryImpl();
    foreign->copyNonStructuralPropertiesFromNode(static_cast<const Node*>(stored("Alpha")));
    foreign->setModelFileSpec("toolbox/NotThere.tdlib.json");
    alpha.getData()->setNode(foreign);
    ASSERT_EQ(alpha.getImpl(), foreign);
    EXPECT_TRUE(reader->isProductUpToDate(alpha)) << "the foreign node's missing model file does not count";
    alpha.getData()->setNode(stored("Alpha"));

    record("Alpha-Shared", "{\"blocks\": 3}", true);
    EXPECT_FALSE(reader->isProductUpToDate(alpha)) << "a changed dependency makes the product out of date";
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_TRUE(logged(*report, "The checksums did not match. (Alpha-Shared)"));
    record("Alpha-Shared", "{\"blocks\": 3}");
    EXPECT_TRUE(reader->isProductUpToDate(alpha));
    stored("Alpha")->setModelFileSpec("");
    EXPECT_FALSE(reader->isProductUpToDate(alpha)) << "a record never generated is not up to date";
}
