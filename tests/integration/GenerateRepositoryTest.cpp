#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "support/Files.h"

#include <QDateTime>

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

using GenerateRepositoryTest = GenerationFixture;

// From nothing every block and icon reads back; afterwards only what changed
// is written again, and a regeneration rewrites everything.
TEST_F(GenerateRepositoryTest, FromNothingThenOnlyWhatChangedThenEverything)
{
    generate();
    EXPECT_EQ(logCount("??? **Error**"), 0) << logText();
    auto reader = makeReader();
    std::vector<std::string> listed = productPaths(*reader);
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(listed, (std::vector<std::string>{"arithmetica", "kinetics", "signal_workbench", "switchyard",
                                                "tandril", "wavecraft"}));
    int blocks = 0;
    for (const char* product : {"arithmetica", "kinetics", "switchyard", "tandril", "wavecraft"}) {
        const TreeCounts stored = storedCounts(*reader, product);
        EXPECT_EQ(stored, declaredCounts(product)) << product;
        EXPECT_EQ(stored.icons, stored.blocks + stored.subsystems + stored.references) << product;
        blocks += stored.blocks + stored.subsystems + stored.references;
    }
    EXPECT_EQ(blocks, 185);

    SCOPED_TRACE("nothing changed, or a library file only newer: no archive is written");
    const auto before = archiveStamps();
    ASSERT_EQ(before.size(), 10u);
    generate();
    EXPECT_EQ(archiveStamps(), before);
    setModified(libraryFile("arithmetica"), QDateTime::currentDateTime().addSecs(120));
    generate();
    EXPECT_EQ(logCount("Product is up-to-date!"), 5) << logText();
    EXPECT_EQ(archiveStamps(), before);

    SCOPED_TRACE("a changed description: its library and Tandril, which references it");
    editRootFile("toolbox/arithmetica/arithmetica.tdlib.json", "Adds or subtracts its inputs",
                 "Adds or subtracts, edited, its inputs");
    setModified(libraryFile("arithmetica"), QDateTime::currentDateTime().addSecs(180));
    generate();
    EXPECT_EQ(logCount("Product is up-to-date!"), 3) << logText();
    auto after = archiveStamps();
    for (const char* product : {"kinetics", "switchyard", "wavecraft"})
        for (const char* kind : {"icons", "manifests"})
            EXPECT_EQ(after.at(archiveOf(product, kind)), before.at(archiveOf(product, kind))) << product << kind;
    EXPECT_NE(after.at(archiveOf("arithmetica", "manifests")), before.at(archiveOf("arithmetica", "manifests")));
    reader = makeReader();
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
    EXPECT_EQ(storedCounts(*reader, "kinetics"), declaredCounts("kinetics"));
    const int referenced = reader->getChildrenIterator(reader->getTandrilObject("kinetics-wavecraft/Sources")).size();
    EXPECT_GT(referenced, 0);
    EXPECT_EQ(reader->getChildrenIterator(reader->getTandrilObject("kinetics/Test Signals")).size(), referenced);

    SCOPED_TRACE("regenerate rewrites every archive");
    after = archiveStamps();
    generate(GenerationMode::Regenerate);
    const auto regenerated = archiveStamps();
    ASSERT_EQ(regenerated.size(), after.size());
    for (const auto& [path, stamp] : regenerated)
        EXPECT_NE(stamp, after.at(path)) << path;
}
