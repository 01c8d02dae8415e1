#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "repository/search/BlockRanker.h"
#include "support/Files.h"

#include <QDateTime>
#include <QFile>

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace LibraryBrowser {
void PrintTo(const NameSpan& span, std::ostream* out) { *out << "(" << span.start << ", " << span.length << ")"; }
} // namespace LibraryBrowser

namespace {

using GenerateRepositoryTest = GenerationFixture;

// After a first generation only what changed is written again. (From nothing
// every block reads back: FileFaultSweepTest's complete runs; a file only
// newer: LibraryComparisonTest; a regeneration: GenerationFaultsTest.)
TEST_F(GenerateRepositoryTest, OnlyWhatChangedIsWrittenAgain)
{
    generate();
    const auto before = archiveStamps();
    ASSERT_EQ(before.size(), 10u);

    SCOPED_TRACE("a changed description: its library and Tandril, which references it");
    editRootFile("toolbox/arithmetica/arithmetica.tdlib.json", "Adds or subtracts its inputs",
                 "Adds or subtracts, edited, its inputs");
    setModified(libraryFile("arithmetica"), QDateTime::currentDateTime().addSecs(180));
    generate();
    EXPECT_EQ(logCount("Product is up-to-date!"), 3) << logText();
    const auto after = archiveStamps();
    for (const char* product : {"kinetics", "switchyard", "wavecraft"})
        for (const char* kind : {"icons", "manifests"})
            EXPECT_EQ(after.at(archiveOf(product, kind)), before.at(archiveOf(product, kind))) << product << kind;
    EXPECT_NE(after.at(archiveOf("arithmetica", "manifests")), before.at(archiveOf("arithmetica", "manifests")));
    auto reader = makeReader();
    EXPECT_EQ(reader->getTandrilObject("arithmetica/Basic Operations/Sum").getDescription().rfind(
                  "Adds or subtracts, edited, its inputs", 0),
              0u);

    SCOPED_TRACE("a reference into a library left unwalked is not resolved, yet reads");
    editRootFile("toolbox/kinetics/kinetics.tdlib.json", "Blocks whose states evolve",
                 "Blocks, edited, whose states evolve");
    generate();
    EXPECT_TRUE(logHas("Library wavecraft is up-to-date!")) << logText();
    EXPECT_TRUE(logHas("**Warning**   Unable to resolve library reference Kinetics/Test Signals to wavecraft/Sources"));
    reader = makeReader();
    const int referenced = reader->getChildrenIterator(reader->getTandrilObject("kinetics-wavecraft/Sources")).size();
    EXPECT_GT(referenced, 0);
    EXPECT_EQ(reader->getChildrenIterator(reader->getTandrilObject("kinetics/Test Signals")).size(), referenced);
}

using WriterVerbsTest = GenerationFixture;

bool contains(const std::vector<std::string>& list, const std::string& item)
{
    return std::find(list.begin(), list.end(), item) != list.end();
}

// Listing the products generates nothing; a palette generates its members
// (leaving its level of the report open); an invalid or vanished product is
// refused before anything is written. (One product alone: TdlbWriteTest.)
TEST_F(WriterVerbsTest, UpdateProductsThenGenerateOneProductAtATime)
{
    makeWriter()->generateProduct(Library());
    EXPECT_EQ(logCount("??? **Error**   Unable to start generation: the product is invalid"), 1) << logText();
    EXPECT_FALSE(exists(store() + "/toolbox"));

    report = RepositoryReport::create();
    auto writer = makeWriter();
    writer->updateProducts();
    const auto listed = makeReader();
    const Library switchyard = listed->getProduct("switchyard");
    ASSERT_TRUE(switchyard.isValid());
    EXPECT_EQ(productPaths(*listed).size(), 6u);
    EXPECT_TRUE(archiveStamps().empty());
    // Members of the palette stand under it only.
    EXPECT_EQ(paths(makeReader()->getTopLevelIterator(), true),
              (std::vector<std::string>{"kinetics", "signal_workbench", "switchyard", "tandril"}));

    writer->generateProduct(makeReader()->getProduct("signal_workbench"));
    EXPECT_TRUE(exists(archiveOf("arithmetica", "manifests")));
    EXPECT_FALSE(exists(archiveOf("kinetics", "manifests")));
    EXPECT_EQ(report->indentation, 1);
    EXPECT_EQ(logCount("Processing product Signal Workbench"), 1);
    EXPECT_EQ(makeReader()->getChildrenIterator(makeReader()->getProduct("signal_workbench")).size(), 2);

    ASSERT_TRUE(QFile::remove(QString::fromStdString(root() + "/toolbox/switchyard/tdblocks.json")));
    writer->generateProduct(switchyard);
    EXPECT_EQ(logCount("Unable to start generation: the product is invalid"), 1) << logText();
    EXPECT_FALSE(exists(archiveOf("switchyard", "icons")));
    generate();
    const auto reader = makeReader();
    EXPECT_FALSE(contains(productPaths(*reader), "switchyard"));
    EXPECT_EQ(storedCounts(*reader, "tandril"), declaredCounts("tandril"));
}

// Destroying an unknown product changes nothing. A product that became a
// palette comes back as one; of one model file listed twice the first wins.
// (Destroying a product or the whole store is TdlbWriteTest's.)
TEST_F(WriterVerbsTest, DestroyAndChangedProductLists)
{
    generate();
    const auto before = archiveStamps();
    makeWriter()->destroyProduct(std::string("nowhere"));
    EXPECT_TRUE(logHas("??? **Error**   Unable to find product 'nowhere'")) << logText();
    EXPECT_EQ(archiveStamps(), before);

    editRootFile("toolbox/arithmetica/tdblocks.json", "\"type\": \"Product\",",
                 "\"type\": \"Palette\", \"children\": [\"Kinetics\"],");
    generate();
    auto reader = makeReader();
    const Library arithmetica = reader->getProduct("arithmetica");
    ASSERT_TRUE(arithmetica.isValid());
    EXPECT_TRUE(TandrilObject(arithmetica).isPalette());
    EXPECT_FALSE(exists(archiveOf("arithmetica", "manifests")));
    EXPECT_EQ(paths(reader->getChildrenIterator(arithmetica), false), (std::vector<std::string>{"kinetics"}));
    EXPECT_FALSE(static_cast<const LibraryImpl*>(reader->getProduct("kinetics").getImpl())->getIsTopLevel());

    editRootFile("toolbox/switchyard/tdblocks.json", "\"library\": \"switchyard\"", "\"library\": \"kinetics\"");
    makeWriter()->updateProducts();
    EXPECT_TRUE(logHas("**Warning**   The model file kinetics appeared in more than one tdblocks file. The first one "
                       "that was found on the path will be used."))
        << logText();
    reader = makeReader();
    EXPECT_EQ(reader->getProduct("kinetics").getDisplayName(), "Kinetics");
    EXPECT_FALSE(contains(productPaths(*reader), "switchyard"));
}

enum class Root { Example, Synthetic };

// A root of one product whose names put the tiers against each other; the
// last name is two hundred one-letter words, hostile to the hump search.
const char* const syntheticLibrary = R"({"format": "tandril-library", "version": 1, "name": "testbench",
 "description": "Blocks for ranking.", "blocks": [
 {"name": "Controllers", "type": "SubSystem", "blocks": [
  {"name": "Discrete PID Controller", "type": "Block",
   "description": "Proportional, integral and derivative action in discrete time."},
  {"name": "PID Controller", "type": "Block",
   "description": "Continuous proportional, integral and derivative control."},
  {"name": "Pidgin Translator", "type": "Block", "description": "Translates between pidgin languages."},
  {"name": "Rapid Sampler", "type": "Block", "description": "Samples its input fast."},
  {"name": "TransferFcn", "type": "Block", "description": "Linear transfer function in Laplace form."}]},
 {"name": "Sources", "type": "SubSystem", "blocks": [
  {"name": "Sine Wave", "type": "Block", "description": "A sinusoid of given amplitude."},
  {"name": "Square Wave", "type": "Block", "description": "Alternates between two levels."},
  {"name": "Chirp", "type": "Block", "description": "Sweeps a sinusoid in frequency."},
  {"name": "Noise Generator", "type": "Block", "description": "Gaussian white noise."}]},
 {"name": "Legacy", "type": "SubSystem", "blocks": [
  {"name": "Sine Wave", "type": "Block", "description": "The old sinusoid, kept for old models."},
  {"name": "MANY WORDS", "type": "Block", "description": "Many words."}]}]})";

const char* const syntheticProduct = R"({"format": "tandril-tdblocks", "version": 1, "entries": [
 {"name": "Testbench", "library": "testbench", "type": "Product", "repository": "testbench",
  "dependencies": ["testbench.tdlib.json"]}]})";

struct Case {
    Root root;
    const char* query;
    std::vector<std::string> favourites;
    std::vector<std::string> recents;
    // The path of the first block; empty when nothing may be found.
    const char* first;
    // Its matched runs of the name, as (start, length) in characters.
    std::vector<NameSpan> spans;
};

const std::string tb = "testbench/";

const Case cases[] = {
    // The name's beginning beats a word start inside a longer name, and of
    // two beginnings the shorter name wins.
    {Root::Synthetic, "pid", {}, {}, "testbench/Controllers/PID Controller", {{0, 3}}},
    // Word order doesn't matter; both words are marked.
    {Root::Synthetic, "controller PID", {}, {}, "testbench/Controllers/PID Controller", {{0, 3}, {4, 10}}},
    {Root::Synthetic, "contr dis", {}, {}, "testbench/Controllers/Discrete PID Controller", {{0, 3}, {13, 5}}},
    // Word starts and camel humps.
    {Root::Synthetic, "dpc", {}, {}, "testbench/Controllers/Discrete PID Controller", {{0, 1}, {9, 1}, {13, 1}}},
    {Root::Synthetic, "tf", {}, {}, "testbench/Controllers/TransferFcn", {{0, 1}, {8, 1}}},
    // Letters in order, with gaps.
    {Root::Synthetic, "sqwv", {}, {}, "testbench/Sources/Square Wave", {{0, 2}, {7, 1}, {9, 1}}},
    // A keyword of the description; a word beginning there, the shorter name first.
    {Root::Synthetic, "gaussian", {}, {}, "testbench/Sources/Noise Generator", {}},
    {Root::Synthetic, "sinus", {}, {}, "testbench/Sources/Chirp", {}},
    // The library path adds to a name match; equal names go by tree order.
    {Root::Synthetic, "legacy sine", {}, {}, "testbench/Legacy/Sine Wave", {{0, 4}}},
    {Root::Synthetic, "sine wave", {}, {}, "testbench/Sources/Sine Wave", {{0, 4}, {5, 4}}},
    // Favourites and recents lift a block over its equals, not over a far better match.
    {Root::Synthetic, "wave", {tb + "Sources/Square Wave"}, {}, "testbench/Sources/Square Wave", {{7, 4}}},
    {Root::Synthetic, "wave", {}, {tb + "Sources/Square Wave"}, "testbench/Sources/Square Wave", {{7, 4}}},
    {Root::Synthetic, "pid", {tb + "Controllers/Rapid Sampler"}, {}, "testbench/Controllers/PID Controller", {{0, 3}}},
    {Root::Synthetic, "", {tb + "Sources/Chirp", "testbench/No Such Block"}, {tb + "Controllers/TransferFcn"},
     "testbench/Sources/Chirp", {}},
    // Nothing found: one word that matches nowhere sinks the query.
    {Root::Synthetic, "pid zebra", {}, {}, "", {}},
    {Root::Synthetic, "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaq", {}, {}, "", {}},
    {Root::Example, "pid", {}, {}, "kinetics/Continuous/PID Controller", {{0, 3}}},
    {Root::Example, "integr", {}, {}, "kinetics/Continuous/Integrator", {{0, 6}}},
    {Root::Example, "resonateur", {}, {}, "kinetics/Continuous/Résonateur", {{0, 10}}},
    {Root::Example, "windup anti", {}, {}, "kinetics/Continuous/PID Controller", {}},
    {Root::Example, "xyzzy", {}, {}, "", {}},
};

class BlockRankerTest : public GenerationFixture, public ::testing::WithParamInterface<Root> {
protected:
    bool copiesRootFile(const QString&) const override { return GetParam() == Root::Example; }

    void SetUp() override
    {
        // The host finds its path when it starts.
        if (GetParam() == Root::Synthetic) {
            writeRootFile("toolbox/testbench/tdblocks.json", syntheticProduct);
            writeRootFile("toolbox/testbench/testbench.tdlib.json",
                          QByteArray(syntheticLibrary).replace("MANY WORDS", QByteArray("a ").repeated(200) + "z"));
        }
        GenerationFixture::SetUp();
        generate();
        reader = makeReader();
        ranker = std::make_unique<BlockRanker>(*reader);
    }

    std::unique_ptr<XMLRepositoryReader> reader;
    std::unique_ptr<BlockRanker> ranker;
};

TEST_P(BlockRankerTest, FirstResultsOfTheTable)
{
    ASSERT_GT(ranker->index().size(), 10u);
    for (const Case& c : cases) {
        if (c.root != GetParam())
            continue;
        SCOPED_TRACE(std::string("query '") + c.query + "'");
        RankingQuery query;
        query.text = c.query;
        query.favourites.insert(c.favourites.begin(), c.favourites.end());
        query.recents.insert(c.recents.begin(), c.recents.end());
        const RankingResult result = ranker->rank(query);
        if (*c.first == '\0') {
            EXPECT_EQ(result.total, 0u);
            EXPECT_TRUE(result.blocks.empty());
            continue;
        }
        ASSERT_FALSE(result.blocks.empty());
        EXPECT_EQ(result.blocks.front().block.getPath(), c.first);
        EXPECT_EQ(result.blocks.front().spans, c.spans);
        for (std::size_t i = 1; i < result.blocks.size(); ++i)
            EXPECT_GE(result.blocks[i - 1].score, result.blocks[i].score);
    }
}

// Each block once, however many products store it or references reach it.
// (An empty query's list of favourites, then recents, is a row of the table
// above and the script binding's case.)
TEST_P(BlockRankerTest, BlocksComeOnceHoweverOftenTheyAreStoredOrReached)
{
    RankingQuery all;
    all.text = GetParam() == Root::Example ? "controller" : "wave";
    all.limit = 0;
    std::set<std::string> paths;
    for (const RankedBlock& ranked : ranker->rank(all).blocks)
        EXPECT_TRUE(paths.insert(ranked.block.getPath()).second) << ranked.block.getPath();
    EXPECT_FALSE(paths.empty());
}

INSTANTIATE_TEST_SUITE_P(Roots, BlockRankerTest, ::testing::Values(Root::Example, Root::Synthetic),
                         [](const auto& info) { return info.param == Root::Example ? "Example" : "Synthetic"; });

} // namespace
