#include "WriterFixture.h"

#include "../ReadOnlyPath.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "repository/TandrilObjectIterator.h"

#include <QDir>
#include <QFile>

#include <algorithm>

#include <gmock/gmock.h>

namespace LibraryBrowser {
namespace {

using Names = std::vector<std::string>;
using Testing::ScriptedBlock;
using Testing::ScriptedProduct;

class WriterTest : public Testing::WriterFixture {};

TEST_F(WriterTest, ArchivesOfManyIconsAreFilledAcrossReopenings)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", blocks("B", 250));
    generate();
    EXPECT_EQ(entries("Alpha", "icons").size(), 250u);
    EXPECT_EQ(entries("Alpha", "manifests").size(), 1u);
    const auto reader = makeReader();
    const Names names = childNames(*reader, "Alpha");
    ASSERT_EQ(names.size(), 250u);
    EXPECT_EQ(names.front(), "B0");
    EXPECT_TRUE(reader->getIcon(reader->getTandrilObject("Alpha/B0"))->svg().contains("Alpha/B0"));
}

TEST_F(WriterTest, NamesWithSlashesAndLineFeedsKeepTheirPathForms)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", {{"In//Out"}, {"Two\nLines"}});
    generate();
    const auto reader = makeReader();
    const TandrilObject inOut = reader->getTandrilObject("Alpha/In//Out");
    ASSERT_TRUE(inOut.isValid());
    EXPECT_EQ(inOut.getDisplayName(), "In/Out");
    const auto* node = static_cast<const BlockImpl*>(inOut.getImpl());
    EXPECT_EQ(node->getDisplayPath(), "Alpha Library/In/Out");
    EXPECT_TRUE(reader->getTandrilObject("Alpha/Two Lines").isValid());
}

TEST_F(WriterTest, AProductWithoutBlocksHasNoArchives)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", blocks("B", 2));
    generate();
    ASSERT_TRUE(QFile::exists(QString::fromStdString(archive("Alpha", "icons"))));

    libraries.setLibrary("Alpha", {});
    generate(GenerationMode::IgnoreTimestamp);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archive("Alpha", "icons"))));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(archive("Alpha", "manifests"))));
    const auto reader = makeReader();
    const Library alpha = reader->getProduct("Alpha");
    EXPECT_TRUE(alpha.getIsEmpty());
    EXPECT_TRUE(alpha.getIsFlat());
}

TEST_F(WriterTest, TwoReferencesToOneLibraryMakeOneDependencyAndBothResolve)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", {{"R1", "LibraryRef", "", {}, "Shared", "Sub"}, {"R2", "LibraryRef", "", {}, "Shared", "Sub"}});
    libraries.setLibrary("Shared", {{"Sub", "SubSystem", "", {{"X"}, {"Y"}}}});
    generate();
    EXPECT_TRUE(StoreFixture::logged(*report, "Resolved library reference Alpha Library/R1 to Shared/Sub"));
    EXPECT_TRUE(StoreFixture::logged(*report, "Resolved library reference Alpha Library/R2 to Shared/Sub"));

    auto top = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(top->load(topLevelFile(store()), errors));
    int shared = 0;
    for (TandrilObjectImpl* node : top->getNodes())
        if (auto* library = dynamic_cast<LibraryImpl*>(node); library && library->getPath() == "Shared") {
            ++shared;
            EXPECT_FALSE(library->getIsProduct());
            EXPECT_EQ(library->getUniquePath().str(), "Alpha-Shared");
        }
    EXPECT_EQ(shared, 1);
    const auto reader = makeReader();
    EXPECT_EQ(childNames(*reader, "Alpha/R1"), (Names{"X", "Y"}));
}

TEST_F(WriterTest, ALibraryNoLongerReferencedLeavesTheProduct)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", {{"G"}, {"R", "LibraryRef", "", {}, "Shared", ""}});
    libraries.setLibrary("Shared", {{"S1"}, {"S2"}});
    generate();
    const std::size_t iconsBefore = entries("Alpha", "icons").size();
    EXPECT_EQ(iconsBefore, 4u);

    libraries.setLibrary("Alpha", {{"G"}});
    generate();
    EXPECT_TRUE(StoreFixture::logged(*report, "Library Shared is no longer used. Removing it from the archive"));
    EXPECT_EQ(entries("Alpha", "icons").size(), 1u);
    EXPECT_EQ(entries("Alpha", "manifests").size(), 1u);
    EXPECT_FALSE(makeReader()->getTandrilObject("Alpha-Shared").isValid());
}

TEST_F(WriterTest, APaletteListingItselfIsWarnedOfAndStillGenerated)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}, {"Tools", "Tools", "Palette", {"Tools", "Alpha", "Tools"}}});
    libraries.setLibrary("Alpha", blocks("B", 1));
    generate();
    EXPECT_EQ(std::count_if(report->getWarnings().begin(), report->getWarnings().end(),
                            [](const RepositoryReport::Issue& w) {
                                return w.id == "Tandril:LibraryBrowser:CycleInPalette";
                            }),
              2);
    const auto reader = makeReader();
    const Library tools = reader->getProduct("Tools");
    EXPECT_FALSE(tools.getIsEmpty());
    EXPECT_EQ(reader->getChildrenIterator(tools).size(), 1);
}

TEST_F(WriterTest, TheSameProductNameTwiceKeepsTheFirst)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}, {"Alpha Library", "Beta"}});
    libraries.setLibrary("Alpha", blocks("B", 1));
    makeWriter()->updateProducts();
    EXPECT_TRUE(StoreFixture::logged(*report, "The product name Alpha Library appeared in more than one tdblocks "
                                              "file. The first one that was found on the path will be used."));
    EXPECT_FALSE(makeReader()->getProduct("Beta").isValid());
}

TEST_F(WriterTest, AStoreOfAnotherSchemaIsDestroyedAndGeneratedAnew)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", blocks("B", 3));
    generate();
    QByteArray bytes = readFile(topLevelFile(store()));
    bytes.replace(QByteArray::fromStdString(Signature::manifestSchema().toString()), "0123456789abcdef0123456789abcdef");
    writeFile(topLevelFile(store()), bytes);

    generate();
    EXPECT_TRUE(StoreFixture::logged(*report, "The version of the repository on disk is incompatible with the "
                                              "current model. Destroying it."));
    EXPECT_EQ(makeReader()->getVersion(), Signature::manifestSchema().toString());
    EXPECT_EQ(childNames(*makeReader(), "Alpha"), (Names{"B0", "B1", "B2"}));
}

TEST_F(WriterTest, AReadOnlyStoreIsReportedAndKeepsWhatItHad)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}, {"Beta Library", "Beta"}});
    libraries.setLibrary("Alpha", blocks("A", 2));
    libraries.setLibrary("Beta", blocks("B", 2));
    generate();
    std::vector<std::unique_ptr<Testing::ReadOnlyPath>> locks;
    for (const std::string& path : {archive("Alpha", "icons"), archive("Alpha", "manifests"), store() + "/toolbox/Alpha",
                                    topLevelFile(store()), store() + "/toolbox/tandril/blocks"})
        locks.push_back(std::make_unique<Testing::ReadOnlyPath>(path));
    if (!locks.front()->active())
        GTEST_SKIP() << "cannot make a path read-only here";

    libraries.setLibrary("Alpha", blocks("A", 3));
    libraries.setLibrary("Beta", blocks("B", 3));
    generate(GenerationMode::IgnoreTimestamp);
    // Publishing Alpha and the top level fails; the verb goes on to Beta.
    EXPECT_TRUE(StoreFixture::logged(*report, "??? **Error**   Unable to remove " + archive("Alpha", "icons")));
    EXPECT_TRUE(StoreFixture::logged(*report, "??? **Error**   Unable to remove " + topLevelFile(store())));
    EXPECT_TRUE(StoreFixture::logged(*report, "Processing product Beta Library"));

    const auto reader = makeReader();
    EXPECT_EQ(childNames(*reader, "Alpha"), (Names{"A0", "A1"}));
    // Beta's own directory could be written.
    EXPECT_EQ(childNames(*reader, "Beta").size(), 3u);
}

TEST_F(WriterTest, AnArchiveThatCannotBeCopiedLeavesTheGenerationOnClosedArchives)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}, {"Beta Library", "Beta"}});
    libraries.setLibrary("Alpha", blocks("A", 2));
    libraries.setLibrary("Beta", blocks("B", 2));
    // Where Alpha's icons archive should be, a directory that no copy can read.
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(archive("Alpha", "icons"))));

    generate();
    EXPECT_TRUE(StoreFixture::logged(*report, "??? **Error**   Unable to access one or more archives. Skipping product"));
    // Not a skip: the product's phases ran on the closed archives.
    EXPECT_TRUE(StoreFixture::logged(*report, "Entering Alpha Library"));
    EXPECT_TRUE(StoreFixture::logged(*report, "Processing product Beta Library"));
    const auto reader = makeReader();
    EXPECT_EQ(childNames(*reader, "Beta"), (Names{"B0", "B1"}));
    EXPECT_TRUE(reader->getChildrenIterator(reader->getTandrilObject("Alpha")).isEmpty());
}

TEST_F(WriterTest, AnUnresolvableReferenceIsWarnedOfAndTheRestGenerates)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", {{"G"}, {"R", "LibraryRef", "", {}, "Nowhere", "Deep"}});
    generate();
    EXPECT_TRUE(StoreFixture::logged(*report, "**Warning**   Unable to resolve library reference Alpha Library/R to Nowhere/Deep"));
    const auto reader = makeReader();
    EXPECT_EQ(childNames(*reader, "Alpha"), (Names{"G", "R"}));
}

} // namespace
} // namespace LibraryBrowser
