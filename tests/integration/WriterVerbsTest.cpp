#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "support/Files.h"

#include <QFile>

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using WriterVerbsTest = GenerationFixture;

bool contains(const std::vector<std::string>& list, const std::string& item)
{
    return std::find(list.begin(), list.end(), item) != list.end();
}

std::vector<std::string> paths(TandrilObjectIterator it, bool sorted)
{
    std::vector<std::string> result;
    for (; it.isValidIterator(); it.next())
        result.push_back(it.current().getPath());
    if (sorted)
        std::sort(result.begin(), result.end());
    return result;
}

} // namespace

// Listing the products generates nothing; a product generates alone, a
// palette its members (leaving its level of the report open); an invalid or
// vanished product is refused before anything is written.
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

    writer->generateProduct(makeReader()->getProduct("wavecraft"));
    EXPECT_FALSE(exists(archiveOf("arithmetica", "icons")));
    EXPECT_EQ(storedCounts(*makeReader(), "wavecraft"), declaredCounts("wavecraft"));
    EXPECT_EQ(report->indentation, 0);
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

// Destroying an unknown product changes nothing; a known one keeps its place
// in the list and comes back with the next generation. A product that became
// a palette comes back as one; of one model file listed twice the first
// wins; destroying the repository leaves no store.
TEST_F(WriterVerbsTest, DestroyAndChangedProductLists)
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

    makeWriter()->destroyRepository();
    EXPECT_TRUE(archiveStamps().empty());
    EXPECT_FALSE(makeReader()->exists());
}
