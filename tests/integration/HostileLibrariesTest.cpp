// Library files that would make a careless walk run away: fan-outs and
// cycles of references, cycles of palettes, and a product whose repository
// directory leads out of the store. Each generates, reads and searches in
// time and memory in proportion to its files, and nothing is written
// outside the store.

#include "GenerationFixture.h"

#include "repository/Library.h"
#include "support/Files.h"
#include "support/HostileRoot.h"

#include <QDir>

#include <algorithm>
#include <set>

namespace LibraryBrowser::Testing {
namespace {

constexpr int FanOutLevels = 14;
constexpr int ChainLevels = 100;

class HostileLibrariesTest : public GenerationFixture {
protected:
    void addRootFiles() override
    {
        writeFanOut(root(), FanOutLevels);
        writeChain(root(), ChainLevels);
        writePaletteCycle(root(), 3);
        escapeDirectory = writeEscapingProduct(root(), "../escaped");
    }

    std::string escapeDirectory;
};

TEST_F(HostileLibrariesTest, AFanOutOfReferencesIsWalkedOncePerReference)
{
    // Entered at every place it is met, the last level would be walked
    // 2^14 times; once per reference it is walked twice.
    const int levels = FanOutLevels;
    generate();
    ASSERT_FALSE(report->hasError()) << logText();
    const auto reader = makeReader();
    const TandrilObject fan = reader->getTandrilObject("fan0");
    ASSERT_TRUE(fan.isValid());

    std::set<std::string> names;
    int objects = 0;
    for (TandrilObjectIterator it = reader->getDepthFirstIterator(fan); it.isValidIterator(); it.next()) {
        names.insert(it.current().getName());
        ++objects;
    }
    for (int level = 0; level <= levels; ++level)
        EXPECT_TRUE(names.count("Level" + std::to_string(level))) << level;
    EXPECT_LE(objects, 6 * (levels + 1));

    int hits = 0;
    for (TandrilObjectIterator it = reader->findBlocks("Level" + std::to_string(levels)); it.isValidIterator();
         it.next())
        ++hits;
    EXPECT_GE(hits, 1);
    EXPECT_LE(hits, 4);
}

TEST_F(HostileLibrariesTest, AWalkEntersNoMoreThanSixtyFourNestedReferences)
{
    generate();
    const auto reader = makeReader();
    std::set<std::string> names;
    std::size_t longestPath = 0;
    for (TandrilObjectIterator it = reader->getDepthFirstIterator(reader->getTandrilObject("chain0"));
         it.isValidIterator(); it.next()) {
        names.insert(it.current().getName());
        longestPath = std::max(longestPath, it.current().id().str().size());
    }
    EXPECT_TRUE(names.count("Level64"));
    EXPECT_FALSE(names.count("Level65"));
    EXPECT_LT(longestPath, 64u * 8u);
}

TEST_F(HostileLibrariesTest, APaletteCycleOfAnyLengthIsJudgedAndGeneratedOnceWithAWarning)
{
    generate();
    const auto& warnings = report->getWarnings();
    EXPECT_TRUE(std::any_of(warnings.begin(), warnings.end(), [](const RepositoryReport::Issue& warning) {
        return warning.id == "Tandril:LibraryBrowser:CycleInPalette";
    })) << logText();
    const auto reader = makeReader();
    for (const char* palette : {"cycle1", "cycle2", "cycle3"}) {
        const TandrilObject object = reader->getTandrilObject(palette);
        ASSERT_TRUE(object.isValid()) << palette;
        EXPECT_TRUE(reader->isProductUpToDate(object)) << palette;
    }
    std::set<std::string> names;
    for (TandrilObjectIterator it = reader->getDepthFirstIterator(); it.isValidIterator(); it.next())
        names.insert(it.current().getName());
    EXPECT_TRUE(names.count("Orbit"));
    // A second run finds them all up to date and generates nothing again.
    generate();
    EXPECT_FALSE(logHas("Entering ")) << logText();
}

TEST_F(HostileLibrariesTest, ARepositoryDirectoryLeadingOutOfTheStoreIsRefusedByFileAndEntry)
{
    const QString outside = QDir(QString::fromStdString(store())).absoluteFilePath("../escaped");
    for (const std::string& repository : {std::string("../escaped"), outside.toStdString()}) {
        SCOPED_TRACE(repository);
        EXPECT_EQ(writeEscapingProduct(root(), repository), escapeDirectory);
        generate();
        EXPECT_TRUE(logHas(escapeDirectory + "/tdblocks.json:")) << logText();
        EXPECT_TRUE(logHas("entries[0].repository: the repository directory does not stay inside the store"))
            << logText();
        EXPECT_FALSE(QFileInfo::exists(outside));
        const auto reader = makeReader();
        const std::vector<std::string> products = productPaths(*reader);
        EXPECT_EQ(std::count(products.begin(), products.end(), "escape"), 0);
        EXPECT_EQ(std::count(products.begin(), products.end(), "kinetics"), 1);
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
