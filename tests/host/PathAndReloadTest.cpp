#include "HostTestSupport.h"

#include "SyntheticRootGenerator.h"
#include "support/Files.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>


namespace LibraryBrowser::Host::Testing {

namespace {

struct Walked {
    int blocks = 0;
    int deepest = 0;
    int references = 0;
};

// What a walk through the host operations alone finds below a path, the way
// the module's generation walks a library; a library's own blocks are at depth 1.
void walk(HostFixture& fixture, const std::string& path, Walked& walked, int depth = 1)
{
    for (double handle : fixture.children(path)) {
        const auto data = fixture.blockData(handle);
        ASSERT_EQ(data.size(), 6u) << "no data below " << path;
        ++walked.blocks;
        walked.deepest = std::max(walked.deepest, depth);
        if (data[3].toString() == "SubSystem") {
            walk(fixture, path + "/" + data[0].toString(), walked, depth + 1);
        } else if (data[3].toString() == "LibraryRef") {
            ++walked.references;
            EXPECT_FALSE(fixture.children(data[5].toString()).empty()) << "reference to nothing: " << data[0].toString();
        }
    }
}

TEST(SearchPathOrder, GivenDirectoriesComeFirstAndDuplicatesAreAllListed)
{
    RootCopy root;
    QTemporaryDir extra;
    QFile::copy(root.file("toolbox/kinetics/kinetics.tdlib.json"), extra.path() + "/kinetics.tdlib.json");
    LibraryBrowser::Testing::writeFile((extra.path() + "/tdblocks.json").toStdString(),
                                       R"({"format": "tandril-tdblocks", "version": 1, "entries": [
        {"name": "Kinetics Preview", "library": "kinetics", "type": "Product"},
        {"name": "Tandril", "library": "tandril_next", "type": "Product"}]})");

    HostFixture fixture(root.path(), {extra.path()});
    const auto result = fixture.tdprivate("lb_getTdBlocksData", 9, {});
    ASSERT_TRUE(result.ok);
    const auto names = result.outputs[0].toStringList();
    const auto files = result.outputs[1].toStringList();
    ASSERT_EQ(names.size(), 8u);
    EXPECT_EQ(names[0], "Kinetics Preview");
    EXPECT_EQ(files[0], "kinetics");
    EXPECT_EQ(files[3], "kinetics") << "the later entry is still reported; the first one wins for the module";
    EXPECT_EQ(names[1], "Tandril");
    EXPECT_EQ(names[5], "Tandril");
    EXPECT_EQ(result.outputs[2].toStringList()[0], "kinetics") << "repository defaults to the library name";

    const auto library = fixture.tdprivate("lb_getLibraryData", 3, {HostValue::string("kinetics")});
    ASSERT_TRUE(library.ok);
    EXPECT_EQ(library.outputs[0].cell(0).toString(), (extra.path() + "/kinetics.tdlib.json").toStdString())
        << "outside the root a file is named absolutely";

    const auto given = fixture.tdprivate("lb_getTdBlocksData", 9,
                                         {HostValue::cellOfStrings({root.file("toolbox/switchyard").toStdString()})});
    EXPECT_EQ(given.outputs.at(0).toStringList(), (std::vector<std::string>{"Switchyard"}))
        << "a path list in the call replaces the host's own";
}

// Library files are looked for in what the walk below the root listed; files
// added, moved or removed after it are found or missed as on the disk.
TEST(SearchPathOrder, LibraryFilesAreFoundWhereTheyAreNow)
{
    RootCopy root;
    const QByteArray empty = libraryJson("any", "[]");
    root.write("toolbox/wavecraft/late.tdlib.json", empty);
    root.write("toolbox/kinetics/twice.tdlib.json", empty);
    root.write("toolbox/wavecraft/twice.tdlib.json", empty);
    HostFixture fixture(root.path());
    const auto fileOf = [&](const std::string& library) {
        const auto result = fixture.tdprivate("lb_getLibraryData", 3, {HostValue::string(library)});
        return result.ok ? result.outputs.at(0).cell(0).toString() : "failed: " + result.errorMessage;
    };
    EXPECT_EQ(fileOf("late"), "toolbox/wavecraft/late.tdlib.json");
    EXPECT_EQ(fileOf("twice"), "toolbox/kinetics/twice.tdlib.json") << "the first directory on the path wins";

    root.write("toolbox/arithmetica/fresh.tdlib.json", empty);
    EXPECT_EQ(fileOf("fresh"), "toolbox/arithmetica/fresh.tdlib.json") << "added after the host started";

    ASSERT_TRUE(QFile::rename(root.file("toolbox/wavecraft/late.tdlib.json"),
                              root.file("toolbox/switchyard/late.tdlib.json")));
    EXPECT_EQ(fileOf("late"), "toolbox/switchyard/late.tdlib.json") << "moved to another directory of the path";

    ASSERT_TRUE(QFile::remove(root.file("toolbox/kinetics/twice.tdlib.json")));
    EXPECT_EQ(fileOf("twice"), "toolbox/wavecraft/twice.tdlib.json") << "the next one on the path";

    ASSERT_TRUE(QFile::remove(root.file("toolbox/switchyard/late.tdlib.json")));
    EXPECT_EQ(fileOf("late"), "failed: lb_getLibraryData: no library \"late\" on the path");
    EXPECT_EQ(fixture.errors().size(), 1u);
}

TEST(SyntheticRoot, IsDeterministicBySeedAndServedByTheHost)
{
    SyntheticRootGenerator::Settings settings;
    std::tie(settings.products, settings.blocksPerProduct, settings.depth, settings.referenceShare, settings.seed) =
        std::make_tuple(3, 200, 4, 0.2, 7);
    QTemporaryDir a, b, c;
    QString error;
    ASSERT_TRUE(SyntheticRootGenerator(settings).write(a.path(), error)) << error.toStdString();
    ASSERT_TRUE(SyntheticRootGenerator(settings).write(b.path(), error));
    settings.seed = 8;
    ASSERT_TRUE(SyntheticRootGenerator(settings).write(c.path(), error));
    using LibraryBrowser::Testing::snapshot;
    EXPECT_EQ(snapshot(a.path().toStdString()), snapshot(b.path().toStdString()));
    EXPECT_NE(snapshot(a.path().toStdString()), snapshot(c.path().toStdString()));

    HostFixture fixture(a.path());
    const auto products = fixture.tdprivate("lb_getTdBlocksData", 9, {});
    ASSERT_EQ(products.outputs.at(1).toStringList(),
              (std::vector<std::string>{"synth_0000", "synth_0001", "synth_0002"}));
    Walked walked;
    walk(fixture, "synth_0001", walked);
    EXPECT_EQ(walked.blocks, 200);
    EXPECT_EQ(walked.deepest, 4);
    EXPECT_GT(walked.references, 20);
    EXPECT_LT(walked.references, 60);
    EXPECT_TRUE(fixture.errors().empty());
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
