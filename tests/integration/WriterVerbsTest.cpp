#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"

#include <QFile>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using UpdateProductsTest = GenerationFixture;
using GenerateProductTest = GenerationFixture;
using DestroyTest = GenerationFixture;

std::vector<std::string> productPaths(XMLRepositoryReader& reader)
{
    std::vector<std::string> paths;
    for (TandrilObjectIterator it = reader.getProductsIterator(); it.isValidIterator(); it.next())
        paths.push_back(it.current().getPath());
    return paths;
}

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
    EXPECT_FALSE(logHas("Processing product"));
    // Members of the palette stand under it only.
    EXPECT_FALSE(reader->getProduct("Wavecraft Signals").getImpl()->getIsInvalid());
    std::vector<std::string> topLevel;
    for (TandrilObjectIterator it = reader->getTopLevelIterator(); it.isValidIterator(); it.next())
        topLevel.push_back(it.current().getPath());
    EXPECT_FALSE(contains(topLevel, "wavecraft"));
    EXPECT_FALSE(contains(topLevel, "arithmetica"));
    EXPECT_TRUE(contains(topLevel, "signal_workbench"));
    EXPECT_TRUE(contains(topLevel, "kinetics"));
}

TEST_F(UpdateProductsTest, AProductRemovedFromThePathLeavesTheStore)
{
    generate();
    ASSERT_TRUE(QFile::remove(QString::fromStdString(root() + "/toolbox/switchyard/tdblocks.json")));

    makeWriter()->updateProducts();
    const auto reader = makeReader();
    EXPECT_FALSE(contains(productPaths(*reader), "switchyard"));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archiveOf("switchyard", "icons"))));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archiveOf("switchyard", "manifests"))));
    EXPECT_EQ(storedCounts(*reader, "kinetics"), declaredCounts("kinetics"));
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
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archiveOf("arithmetica", "manifests"))));
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

TEST_F(GenerateProductTest, GeneratesOnlyThatProduct)
{
    auto writer = makeWriter();
    writer->updateProducts();
    writer->generateProduct(makeReader()->getProduct("wavecraft"));
    EXPECT_TRUE(QFile::exists(QString::fromStdString(archiveOf("wavecraft", "icons"))));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archiveOf("kinetics", "icons"))));
    EXPECT_FALSE(report->hasError());
    EXPECT_EQ(storedCounts(*makeReader(), "wavecraft"), declaredCounts("wavecraft"));
}

TEST_F(GenerateProductTest, APaletteGeneratesItsMembersAndStaysOneLevelDeeper)
{
    auto writer = makeWriter();
    writer->updateProducts();
    writer->generateProduct(makeReader()->getProduct("signal_workbench"));
    EXPECT_TRUE(QFile::exists(QString::fromStdString(archiveOf("wavecraft", "manifests"))));
    EXPECT_TRUE(QFile::exists(QString::fromStdString(archiveOf("arithmetica", "manifests"))));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archiveOf("kinetics", "manifests"))));
    // A palette's generation doesn't close its level of the report.
    EXPECT_EQ(report->indentation, 1);
    EXPECT_EQ(logCount("Processing product Signal Workbench"), 1);

    const auto reader = makeReader();
    const Library palette = reader->getProduct("signal_workbench");
    EXPECT_FALSE(palette.getIsEmpty());
    EXPECT_FALSE(palette.getIsFlat());
    EXPECT_EQ(reader->getChildrenIterator(palette).size(), 2);
}

TEST_F(GenerateProductTest, AProductThatVanishedBetweenTwoVerbsIsNotGenerated)
{
    auto writer = makeWriter();
    writer->updateProducts();
    const auto before = makeReader();
    const Library switchyard = before->getProduct("switchyard");
    ASSERT_TRUE(switchyard.isValid());
    ASSERT_TRUE(QFile::remove(QString::fromStdString(root() + "/toolbox/switchyard/tdblocks.json")));

    writer->generateProduct(switchyard);
    EXPECT_TRUE(logHas("??? **Error**   Unable to start generation: the product is invalid")) << logText();
    EXPECT_TRUE(archiveStamps().empty());

    generate();
    const auto reader = makeReader();
    EXPECT_FALSE(contains(productPaths(*reader), "switchyard"));
    EXPECT_EQ(storedCounts(*reader, "tandril"), declaredCounts("tandril"));
}

TEST_F(GenerateProductTest, AnInvalidHandleTouchesNothing)
{
    makeWriter()->generateProduct(Library());
    EXPECT_EQ(logCount("Unable to start generation: the product is invalid"), 1);
    EXPECT_TRUE(report->hasError());
    EXPECT_FALSE(QFile::exists(QString::fromStdString(store() + "/toolbox")));
}

TEST_F(DestroyTest, DestroyingAProductKeepsItListedAndTheNextGenerationMakesItAgain)
{
    generate();
    auto writer = makeWriter();
    writer->destroyProduct(std::string("switchyard"));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archiveOf("switchyard", "icons"))));
    EXPECT_TRUE(contains(productPaths(*makeReader()), "switchyard"));
    EXPECT_EQ(archiveStamps().size(), 8u);

    generate();
    EXPECT_EQ(logCount("Product is up-to-date!"), 4) << logText();
    EXPECT_EQ(storedCounts(*makeReader(), "switchyard"), declaredCounts("switchyard"));
}

TEST_F(DestroyTest, AnUnknownProductChangesNothing)
{
    generate();
    const auto before = archiveStamps();
    auto writer = makeWriter();
    writer->destroyProduct(std::string("nowhere"));
    EXPECT_TRUE(logHas("??? **Error**   Unable to find product 'nowhere'"));
    EXPECT_TRUE(report->hasError());
    EXPECT_EQ(archiveStamps(), before);
}

TEST_F(DestroyTest, DestroyingTheRepositoryLeavesNoStore)
{
    generate();
    makeWriter()->destroyRepository();
    EXPECT_TRUE(archiveStamps().empty());
    EXPECT_FALSE(makeReader()->exists());
}
