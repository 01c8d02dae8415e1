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

class HostileLibrariesTest : public GenerationFixture {
protected:
    void addRootFiles() override
    {
        writeFanOut(root(), FanOutLevels);
        writeChain(root(), 100);
        writePaletteCycle(root(), 3);
        escapeDirectory = writeEscapingProduct(root(), "../escaped");
    }

    std::string escapeDirectory;
};

TEST_F(HostileLibrariesTest, FanOutsChainsCyclesAndEscapesStayBounded)
{
    generate();
    ASSERT_FALSE(report->hasError()) << logText();
    const auto reader = makeReader();
    const auto walk = [&](TandrilObjectIterator it, std::set<std::string>& names) {
        std::size_t objects = 0, longestPath = 0;
        for (; it.isValidIterator(); it.next(), ++objects) {
            names.insert(it.current().getName());
            longestPath = std::max(longestPath, it.current().id().str().size());
        }
        return std::make_pair(objects, longestPath);
    };

    // Entered at every place it is met, the last level would be walked 2^14
    // times; once per reference it is walked twice.
    std::set<std::string> fan;
    EXPECT_LE(walk(reader->getDepthFirstIterator(reader->getTandrilObject("fan0")), fan).first,
              6u * (FanOutLevels + 1));
    for (int level = 0; level <= FanOutLevels; ++level)
        EXPECT_TRUE(fan.count("Level" + std::to_string(level))) << level;
    const int hits = reader->findBlocks("Level" + std::to_string(FanOutLevels)).size();
    EXPECT_GE(hits, 1);
    EXPECT_LE(hits, 4);

    // No more than sixty-four nested references are entered.
    std::set<std::string> chain;
    EXPECT_LT(walk(reader->getDepthFirstIterator(reader->getTandrilObject("chain0")), chain).second, 64u * 8u);
    EXPECT_TRUE(chain.count("Level64"));
    EXPECT_FALSE(chain.count("Level65"));

    // A palette cycle of any length is judged and generated once, with a warning.
    const auto& warnings = report->getWarnings();
    EXPECT_TRUE(std::any_of(warnings.begin(), warnings.end(), [](const RepositoryReport::Issue& warning) {
        return warning.id == "Tandril:LibraryBrowser:CycleInPalette";
    })) << logText();
    for (const char* palette : {"cycle1", "cycle2", "cycle3"}) {
        const TandrilObject object = reader->getTandrilObject(palette);
        ASSERT_TRUE(object.isValid()) << palette;
        EXPECT_TRUE(reader->isProductUpToDate(object)) << palette;
    }
    std::set<std::string> all;
    walk(reader->getDepthFirstIterator(), all);
    EXPECT_TRUE(all.count("Orbit"));
    generate();
    EXPECT_FALSE(logHas("Entering ")) << logText();

    // A repository directory leading out of the store is refused, by file and entry.
    const QString outside = QDir(QString::fromStdString(store())).absoluteFilePath("../escaped");
    for (const std::string& repository : {std::string("../escaped"), outside.toStdString()}) {
        SCOPED_TRACE(repository);
        EXPECT_EQ(writeEscapingProduct(root(), repository), escapeDirectory);
        generate();
        EXPECT_TRUE(logHas(escapeDirectory + "/tdblocks.json:")) << logText();
        EXPECT_TRUE(logHas("entries[0].repository: the repository directory does not stay inside the store"));
        EXPECT_FALSE(QFileInfo::exists(outside));
        const std::vector<std::string> products = productPaths(*makeReader());
        EXPECT_EQ(std::count(products.begin(), products.end(), "escape"), 0);
        EXPECT_EQ(std::count(products.begin(), products.end(), "kinetics"), 1);
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
