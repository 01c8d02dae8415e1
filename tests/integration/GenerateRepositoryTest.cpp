#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "support/Files.h"

#include <QDateTime>

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

const std::vector<std::string> Products = {"arithmetica", "kinetics", "switchyard", "tandril", "wavecraft"};

using GenerateRepositoryTest = GenerationFixture;

} // namespace

TEST_F(GenerateRepositoryTest, FromNothingEveryBlockAndIconReadsBack)
{
    generate();
    EXPECT_EQ(logCount("??? **Error**"), 0) << logText();

    const auto reader = makeReader();
    std::vector<std::string> listed = productPaths(*reader);
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(listed, (std::vector<std::string>{"arithmetica", "kinetics", "signal_workbench", "switchyard",
                                                "tandril", "wavecraft"}));

    int blocks = 0;
    for (const std::string& product : Products) {
        const TreeCounts declared = declaredCounts(product);
        const TreeCounts stored = storedCounts(*reader, product);
        EXPECT_EQ(stored, declared) << product;
        EXPECT_EQ(stored.icons, stored.blocks + stored.subsystems + stored.references) << product;
        blocks += stored.blocks + stored.subsystems + stored.references;
    }
    EXPECT_EQ(blocks, 185);
}

// Neither a second run nor a library file that is only newer, its content
// the same, writes any archive again.
TEST_F(GenerateRepositoryTest, NothingChangedRewritesNoArchive)
{
    generate();
    const auto before = archiveStamps();
    ASSERT_EQ(before.size(), 10u);

    generate();
    EXPECT_EQ(archiveStamps(), before);

    setModified(libraryFile("arithmetica"), QDateTime::currentDateTime().addSecs(120));
    generate();
    EXPECT_EQ(logCount("Product is up-to-date!"), 5) << logText();
    EXPECT_EQ(archiveStamps(), before);
}

TEST_F(GenerateRepositoryTest, AChangedDescriptionRegeneratesOnlyItsLibrary)
{
    generate();
    const auto before = archiveStamps();
    editRootFile("toolbox/arithmetica/arithmetica.tdlib.json", "Adds or subtracts its inputs",
                 "Adds or subtracts, edited, its inputs");

    generate();
    // Arithmetica itself, and Tandril, which references it.
    EXPECT_EQ(logCount("Product is up-to-date!"), 3) << logText();
    const auto after = archiveStamps();
    for (const char* product : {"kinetics", "switchyard", "wavecraft"})
        for (const char* kind : {"icons", "manifests"})
            EXPECT_EQ(after.at(archiveOf(product, kind)), before.at(archiveOf(product, kind))) << product << kind;
    EXPECT_NE(after.at(archiveOf("arithmetica", "manifests")), before.at(archiveOf("arithmetica", "manifests")));

    const auto reader = makeReader();
    const TandrilObject sum = reader->getTandrilObject("arithmetica/Basic Operations/Sum");
    EXPECT_EQ(sum.getDescription().rfind("Adds or subtracts, edited, its inputs", 0), 0u);
}

TEST_F(GenerateRepositoryTest, RegenerateRewritesEveryArchive)
{
    generate();
    const auto before = archiveStamps();
    generate(GenerationMode::Regenerate);
    const auto after = archiveStamps();
    ASSERT_EQ(after.size(), before.size());
    for (const auto& [path, stamp] : after)
        EXPECT_NE(stamp, before.at(path)) << path;
}

TEST_F(GenerateRepositoryTest, AReferenceIntoAnUnchangedLibraryIsNotResolved)
{
    generate();
    editRootFile("toolbox/kinetics/kinetics.tdlib.json", "Blocks whose states evolve", "Blocks, edited, whose states evolve");
    generate();
    // Wavecraft is up to date and not walked, so its subsystems are unknown
    // to this generation.
    EXPECT_TRUE(logHas("Library wavecraft is up-to-date!")) << logText();
    EXPECT_TRUE(logHas("**Warning**   Unable to resolve library reference Kinetics/Test Signals to wavecraft/Sources"));

    const auto reader = makeReader();
    const TreeCounts kinetics = storedCounts(*reader, "kinetics");
    EXPECT_EQ(kinetics, declaredCounts("kinetics"));
    // Reading follows a reference by its target's unique path, so the
    // blocks stay in reach.
    const int referenced = reader->getChildrenIterator(reader->getTandrilObject("kinetics-wavecraft/Sources")).size();
    EXPECT_GT(referenced, 0);
    EXPECT_EQ(reader->getChildrenIterator(reader->getTandrilObject("kinetics/Test Signals")).size(), referenced);
}
