#include "HandMadeStore.h"

#include "platform/ErrorHolder.h"

#include <QFile>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;

// Each broken store must give the report's lines and empty results, never a
// crash, and must stay on disk exactly as it was.
class ReadCacheFaultTest : public Testing::HandMadeStore {
protected:
    // Opens a new reader on the store as the test has broken it.
    void breakStore()
    {
        reader.reset();
        report = RepositoryReport::create();
        before = Testing::snapshot(store());
        reader = openReader();
    }

    void TearDown() override
    {
        reader.reset();
        EXPECT_EQ(Testing::snapshot(store()), before) << "nothing on disk changes";
        EXPECT_TRUE(tempEntries().isEmpty());
        HandMadeStore::TearDown();
    }

    int betaChildren() { return reader->getChildrenIterator(reader->getTandrilObject("Beta")).size(); }

    std::map<QString, QByteArray> before;
};

TEST_F(ReadCacheFaultTest, AMissingArchiveGivesNoChildrenWithoutAWord)
{
    QFile::remove(QString::fromStdString(archive("Beta", "manifests")));
    breakStore();
    EXPECT_EQ(betaChildren(), 0);
    EXPECT_FALSE(reader->getTandrilObject("Beta/B1").isValid());
    EXPECT_FALSE(report->hasError() || report->hasWarning());
}

TEST_F(ReadCacheFaultTest, AFileThatIsNotAZipGivesTwoErrors)
{
    writeFile(archive("Beta", "manifests"), "this is no zip archive");
    breakStore();
    EXPECT_EQ(betaChildren(), 0);
    const Messages messages = errorMessages(*report);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].rfind("Unable to open archive ", 0), 0u);
    EXPECT_NE(messages[0].find("/cachedArchive.rps"), std::string::npos) << "the private copy is what is opened";
    EXPECT_GT(messages[1].size(), std::string("Error returned from zip archiver: ").size());
}

TEST_F(ReadCacheFaultTest, ACorruptManifestEntryGivesAnErrorAndKeepsWhatWasRead)
{
    auto children = Model::createModel();
    for (const char* name : {"B1", "B2"}) {
        BlockImpl* block = children->createBlockImpl();
        block->setName(name);
        block->setProductName("Beta");
    }
    const QByteArray whole = children->saveToBytes();
    // Cut inside the second block: the first is whole and stays.
    replaceManifest("Beta", "Beta/lbBetamanifest.xml", whole.left(whole.lastIndexOf("<BlockImpl") + 20));
    breakStore();
    EXPECT_EQ(betaChildren(), 1);
    EXPECT_EQ(errorMessages(*report), (Messages{"Unexpected error occurred while loading the manifest file"}));
    EXPECT_TRUE(reader->getTandrilObject("Beta/B1").isValid());
    EXPECT_FALSE(reader->getTandrilObject("Beta/B2").isValid());
}

TEST_F(ReadCacheFaultTest, AnUnreadableValueCostsOnlyThatValue)
{
    auto children = Model::createModel();
    children->createBlockImpl()->setName("B1");
    QByteArray bytes = children->saveToBytes();
    bytes.replace("name=\"B1\"", "name=\"B1\" position=\"wide\"");
    replaceManifest("Beta", "Beta/lbBetamanifest.xml", bytes);
    breakStore();
    EXPECT_EQ(betaChildren(), 1);
    EXPECT_TRUE(reader->getTandrilObject("Beta/B1").isValid());
    EXPECT_FALSE(report->hasError());
    ASSERT_EQ(report->getWarnings().size(), 1u);
    EXPECT_NE(report->getWarnings().front().message.find("'position'"), std::string::npos);
}

TEST_F(ReadCacheFaultTest, ACorruptTopLevelManifestReadsAsAnEmptyStore)
{
    // Cut inside a product element: the root and its signature survive.
    const QByteArray whole = readFile(topLevelFile(store()));
    writeFile(topLevelFile(store()), whole.left(whole.indexOf("<LibraryImpl") + 20));
    breakStore();
    EXPECT_FALSE(reader->exists());
    EXPECT_TRUE(reader->getDepthFirstIterator().isEmpty());
    EXPECT_TRUE(reader->getProduct("Beta").isNull());
    EXPECT_FALSE(errorMessages(*report).empty());
    for (const std::string& message : errorMessages(*report))
        EXPECT_EQ(message, "The top level manifest file looks corrupted. Returning an empty manifest.");
}

TEST_F(ReadCacheFaultTest, ACorruptIconOrAnUnresolvableReferenceGivesEmptyResults)
{
    writeArchive(archive("Alpha", "icons"), {{"icons/Gain.svg", "<svg><unclosed></svg>"}});
    auto top = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(top->load(topLevelFile(store()), errors));
    // The target of Ref1 and Ref2 goes by another id now.
    top->getNodes().get(1)->setUniquePath(StringId("Alpha-Moved"));
    saveManifest(*top, topLevelFile(store()));
    breakStore();

    const BlockIconPtr icon = reader->getTandrilObject("Alpha/Gain").getIcon();
    ASSERT_NE(icon, nullptr);
    EXPECT_TRUE(icon->isEmpty());
    EXPECT_EQ(errorMessages(*report), (Messages{"Unexpected error occurred while loading the manifest file"}));

    EXPECT_TRUE(reader->getChildrenIterator(reader->getTandrilObject("Alpha/Ref1")).isEmpty());
    EXPECT_EQ(reader->getDepthFirstIterator(reader->getTandrilObject("Alpha")).size(), 6);
}

} // namespace
} // namespace LibraryBrowser
