#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "support/Files.h"

#include <QFile>

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using UpdateProductsTest = GenerationFixture;
using GenerateProductTest = GenerationFixture;
using DestroyTest = GenerationFixture;

bool contains(const std::vector<std::string>& list, const std::string& item)
{
    return std::find(list.begin(), list.end(), item) != list.end();
}

} // namespace

TEST_F(UpdateProductsTest, ListsTheHostsProductsWithoutGeneratingThem)
{
    makeWriter()->updateProducts();
    const auto reader = makeReader();
    EXPECT_EQ(productPaths(*reader).size(), 6u);
    EXPECT_TRUE(archiveStamps().empty());
    // Members of the palette stand under it only.
    std::vector<std::string> topLevel;
    for (TandrilObjectIterator it = reader->getTopLevelIterator(); it.isValidIterator(); it.next())
        topLevel.push_back(it.current().getPath());
    std::sort(topLevel.begin(), topLevel.end());
    EXPECT_EQ(topLevel, (std::vector<std::string>{"kinetics", "signal_workbench", "switchyard", "tandril"}));
}

TEST_F(UpdateProductsTest, AProductThatBecomesAPaletteComesBackAsAPalette)
{
    generate();
    editRootFile("toolbox/arithmetica/tdblocks.json", "\"type\": \"Product\",",
                 "\"type\": \"Palette\", \"children\": [\"Kinetics\"],");

    generate();
    const auto reader = makeReader();
    const Library arithmetica = reader->getProduct("arithmetica");
    ASSERT_TRUE(arithmetica.isValid());
    EXPECT_TRUE(TandrilObject(arithmetica).isPalette());
    EXPECT_FALSE(exists(archiveOf("arithmetica", "manifests")));
    std::vector<std::string> members;
    for (TandrilObjectIterator it = reader->getChildrenIterator(arithmetica); it.isValidIterator(); it.next())
        members.push_back(it.current().getPath());
    EXPECT_EQ(members, (std::vector<std::string>{"kinetics"}));
    EXPECT_FALSE(static_cast<const LibraryImpl*>(reader->getProduct("kinetics").getImpl())->getIsTopLevel());
}

TEST_F(UpdateProductsTest, TheSameModelFileTwiceKeepsTheFirst)
{
    editRootFile("toolbox/switchyard/tdblocks.json", "\"library\": \"switchyard\"", "\"library\": \"kinetics\"");
    makeWriter()->updateProducts();
    EXPECT_TRUE(logHas("**Warning**   The model file kinetics appeared in more than one tdblocks file. The first one "
                       "that was found on the path will be used."))
        << logText();
    const auto reader = makeReader();
    EXPECT_EQ(reader->getProduct("kinetics").getDisplayName(), "Kinetics");
    EXPECT_FALSE(contains(productPaths(*reader), "switchyard"));
}

// A product generates alone; a palette generates its members and leaves
// its level of the report open.
TEST_F(GenerateProductTest, GeneratesOnlyThatProductOrThePalettesMembers)
{
    auto writer = makeWriter();
    writer->updateProducts();
    writer->generateProduct(makeReader()->getProduct("wavecraft"));
    EXPECT_FALSE(exists(archiveOf("arithmetica", "icons")));
    EXPECT_EQ(storedCounts(*makeReader(), "wavecraft"), declaredCounts("wavecraft"));
    EXPECT_EQ(report->indentation, 0);

    writer->generateProduct(makeReader()->getProduct("signal_workbench"));
    EXPECT_TRUE(exists(archiveOf("arithmetica", "manifests")));
    EXPECT_FALSE(exists(archiveOf("kinetics", "manifests")));
    EXPECT_EQ(report->indentation, 1);
    EXPECT_EQ(logCount("Processing product Signal Workbench"), 1);

    const auto reader = makeReader();
    EXPECT_EQ(reader->getChildrenIterator(reader->getProduct("signal_workbench")).size(), 2);
}

// An invalid handle, and a product that left the host after the writer
// listed it, are both refused before anything is written.
TEST_F(GenerateProductTest, AnInvalidOrVanishedProductIsNotGenerated)
{
    makeWriter()->generateProduct(Library());
    EXPECT_EQ(logCount("??? **Error**   Unable to start generation: the product is invalid"), 1) << logText();
    EXPECT_FALSE(exists(store() + "/toolbox"));

    auto writer = makeWriter();
    writer->updateProducts();
    const auto listed = makeReader();
    const Library switchyard = listed->getProduct("switchyard");
    ASSERT_TRUE(switchyard.isValid());
    ASSERT_TRUE(QFile::remove(QString::fromStdString(root() + "/toolbox/switchyard/tdblocks.json")));
    writer->generateProduct(switchyard);
    EXPECT_EQ(logCount("Unable to start generation: the product is invalid"), 2) << logText();
    EXPECT_TRUE(archiveStamps().empty());

    generate();
    const auto reader = makeReader();
    EXPECT_FALSE(contains(productPaths(*reader), "switchyard"));
    EXPECT_EQ(storedCounts(*reader, "tandril"), declaredCounts("tandril"));
}

// Destroying an unknown product changes nothing; a known one keeps its
// place in the list and comes back with the next generation; destroying
// the repository leaves no store.
TEST_F(DestroyTest, ProductsAndTheRepository)
{
    generate();
    const auto before = archiveStamps();
    makeWriter()->destroyProduct(std::string("nowhere"));
    EXPECT_TRUE(logHas("??? **Error**   Unable to find product 'nowhere'")) << logText();
    EXPECT_EQ(archiveStamps(), before);

    makeWriter()->destroyProduct(std::string("switchyard"));
    EXPECT_FALSE(exists(archiveOf("switchyard", "icons")));
    EXPECT_TRUE(contains(productPaths(*makeReader()), "switchyard"));
    EXPECT_EQ(archiveStamps().size(), 8u);

    generate();
    EXPECT_EQ(logCount("Product is up-to-date!"), 4) << logText();
    EXPECT_EQ(storedCounts(*makeReader(), "switchyard"), declaredCounts("switchyard"));

    makeWriter()->destroyRepository();
    EXPECT_TRUE(archiveStamps().empty());
    EXPECT_FALSE(makeReader()->exists());
}
