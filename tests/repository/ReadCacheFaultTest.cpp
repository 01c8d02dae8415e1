#include "HandMadeStore.h"

#include "platform/ErrorHolder.h"

#include <QDir>
#include <QFile>


#include <optional>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;

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
    Messages messages = errorMessages(*report);
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
    EXPECT_EQ(errorMessages(*report), (Messages{"Unexpected error occurred while loading the manifest file"}));
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
    EXPECT_EQ(errorMessages(*report), (Messages{"Unexpected error occurred while loading the manifest file"}));
    EXPECT_TRUE(reader->getChildrenIterator(reader->getTandrilObject("Alpha/Ref1")).isEmpty());
    EXPECT_EQ(reader->getDepthFirstIterator(reader->getTandrilObject("Alpha")).size(), 6);
}

} // namespace
} // namespace LibraryBrowser
