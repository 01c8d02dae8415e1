#include "repository/xmlrepository/HostOperations.h"
#include "repository/xmlrepository/LibraryComparison.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/StoreDamage.h"

#include "platform/Platform.h"
#include "repository/StoreFixture.h"

#include <QDir>

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
        report = RepositoryReport::create();
        writeFile(hostRoot() + "/toolbox/signals/tdblocks.json", "{\"entries\": []}");
        writeFile(hostRoot() + "/toolbox/signals/signals.tdlib.json", "{\"blocks\": [1, 2, 3]}");
        setModified(hostRoot() + "/toolbox/signals/tdblocks.json", stamp);
        setModified(hostRoot() + "/toolbox/signals/signals.tdlib.json", stamp);
        writeFile(store() + "/signals/icons.rps", "icons");
        writeFile(store() + "/signals/manifests.rps", "manifests");

        product = model->createLibraryImpl();
        product->setName("Signals");
        product->setPath("signals");
        product->setReposIconsArchiveSpec("signals/icons.rps");
        product->setReposManifestsArchiveSpec("signals/manifests.rps");
        recordModelFile(*product, "toolbox/signals/signals.tdlib.json");
        product->setFileDependencies({dependency("toolbox/signals/tdblocks.json")});
    }

    std::string store() const { return path("store"); }

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

    RepositoryReportPtr report;
    ModelPtr model = Model::createModel();
    LibraryImpl* product = nullptr;
};

} // namespace

TEST_F(LibraryComparisonTest, NothingChangedReadsNoFile)
{
    EXPECT_TRUE(compare(*product));
    EXPECT_TRUE(logged(*report, "Action: The timestamps matched! (Signals)"));
    EXPECT_EQ(loggedCount(*report, "Computed check sum"), 0) << "dates that match are trusted without reading";

    // A host may name its root and stores relative to the working directory:
    // nothing is judged anew for that, not even the archives that another
    // process recorded as checked.
    const std::string icons = store() + "/signals/icons.rps";
    StoreDamage::registerStores(path("shipped"), store());
    StoreDamage::archiveWritten(store(), icons);
    StoreDamage::saveRecords();
    const QString working = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(scratch.path()));
    RecordingEnvironment relative("root", preferences());
    Platform::setEnvironment(&relative);
    const bool upToDate = compare(*product);
    StoreDamage::registerStores("shipped", "store");
    const bool archiveKnown = StoreDamage::archiveVerified("store", "store/signals/icons.rps");
    Platform::setEnvironment(environment);
    QDir::setCurrent(working);
    EXPECT_TRUE(upToDate);
    EXPECT_TRUE(logged(*report, "Action: The timestamps matched! (toolbox/signals/tdblocks.json)"));
    EXPECT_TRUE(archiveKnown);
}

TEST_F(LibraryComparisonTest, ATouchedFileWithTheSameContentStaysUpToDate)
{
    setModified(hostRoot() + "/toolbox/signals/tdblocks.json", stamp.addSecs(60));
    setModified(hostRoot() + "/toolbox/signals/signals.tdlib.json", stamp.addSecs(60));
    EXPECT_TRUE(compare(*product));
    EXPECT_TRUE(logged(*report, "The checksums matched! (toolbox/signals/tdblocks.json)"));
    EXPECT_TRUE(logged(*report, "The checksums matched! (Signals)"));
}

TEST_F(LibraryComparisonTest, ChangedContentIsOutOfDate)
{
    // Same size, other bytes: only the checksum can tell.
    writeFile(hostRoot() + "/toolbox/signals/tdblocks.json", "{\"entries\": [1]}");
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(logged(*report, "The files have different sizes (toolbox/signals/tdblocks.json)"));

    writeFile(hostRoot() + "/toolbox/signals/tdblocks.json", "{\"entries\": {}}");
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(logged(*report, "The checksums did not match. (toolbox/signals/tdblocks.json)"));

    writeFile(hostRoot() + "/toolbox/signals/tdblocks.json", "{\"entries\": []}");
    writeFile(hostRoot() + "/toolbox/signals/signals.tdlib.json", "{\"blocks\": [1, 2, 4]}");
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(logged(*report, "The checksums did not match. (Signals)"));
}

TEST_F(LibraryComparisonTest, IgnoringTimestampsReadsEveryFileAndQuotesPaths)
{
    EXPECT_TRUE(compare(*product, true));
    EXPECT_TRUE(logged(*report, "The timestamp of toolbox/signals/tdblocks.json has been ignored"));
    EXPECT_TRUE(logged(*report, "The timestamp of toolbox/signals/signals.tdlib.json has been ignored"))
        << "the model file's line quotes the host's path, not the library's name";
    EXPECT_EQ(loggedCount(*report, "Computed check sum"), 2);
}

TEST_F(LibraryComparisonTest, MissingStoredDataOrFilesAreOutOfDateSilently)
{
    QFile::remove(QString::fromStdString(store() + "/signals/icons.rps"));
    EXPECT_FALSE(compare(*product)) << "a library without its icons archive is out of date";
    EXPECT_EQ(report->getLog().size(), 1u) << "the dependency's line and nothing more";

    writeFile(store() + "/signals/icons.rps", "icons");
    QFile::remove(QString::fromStdString(hostRoot() + "/toolbox/signals/tdblocks.json"));
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(report->getLog().empty());

    product->setFileDependencies({});
    product->setPath("forgotten"); // the host no longer knows the library
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(logged(*report, "The timestamps did not match (Signals)"));
    EXPECT_TRUE(logged(*report, "The files have different sizes (Signals)"));
}

TEST_F(LibraryComparisonTest, ALibraryBelowAProductCountsTheProductsFilesAndItsOwnModel)
{
    writeFile(hostRoot() + "/toolbox/signals/filters.tdlib.json", "{\"blocks\": []}");
    setModified(hostRoot() + "/toolbox/signals/filters.tdlib.json", stamp);
    LibraryImpl* filters = model->createLibraryImpl();
    filters->setName("Filters");
    filters->setPath("filters");
    filters->setProduct(product);
    filters->setFileDependencies({{"toolbox/never/read.json", "", 0, 0}});
    recordModelFile(*filters, "toolbox/signals/filters.tdlib.json");

    EXPECT_TRUE(compare(*filters));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (toolbox/signals/tdblocks.json)"));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (Filters)"));

    writeFile(hostRoot() + "/toolbox/signals/tdblocks.json", "{\"entries\": {}}");
    EXPECT_FALSE(compare(*filters)) << "the product's dependency changed";
}

TEST_F(LibraryComparisonTest, APalettePassesOnItsFilesAlone)
{
    PaletteImpl* palette = model->createPaletteImpl();
    palette->setName("Workbench");
    palette->setFileDependencies({dependency("toolbox/signals/tdblocks.json")});
    EXPECT_TRUE(compare(*palette)) << "no archives and no model file are asked of a palette";
    EXPECT_EQ(interpreter.callCount("tdprivate:lb_getLibraryData"), 0u);
}
