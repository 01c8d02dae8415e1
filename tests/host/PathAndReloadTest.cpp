#include "HostTestSupport.h"

#include "LibraryCatalog.h"
#include "SyntheticRootGenerator.h"
#include "support/Files.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace LibraryBrowser::Host::Testing {

namespace {

using Strings = std::vector<std::string>;

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
    // The later entry is still reported; the first one wins for the module. The
    // repository defaults to the library name.
    EXPECT_EQ((Strings{names[0], files[0], files[3], names[1], names[5], result.outputs[2].toStringList()[0]}),
              (Strings{"Kinetics Preview", "kinetics", "kinetics", "Tandril", "Tandril", "kinetics"}));

    const auto library = fixture.tdprivate("lb_getLibraryData", 3, {str("kinetics")});
    ASSERT_TRUE(library.ok);
    EXPECT_EQ(library.outputs[0].cell(0).toString(), (extra.path() + "/kinetics.tdlib.json").toStdString())
        << "outside the root a file is named absolutely";

    const auto given = fixture.tdprivate("lb_getTdBlocksData", 9,
                                         {HostValue::cellOfStrings({root.file("toolbox/switchyard").toStdString()})});
    EXPECT_EQ(given.outputs.at(0).toStringList(), (Strings{"Switchyard"})) << "a path list in the call replaces the host's own";
}

// Library files are looked for in what the walk below the root listed; files
// added, moved or removed after it are found or missed as on the disk.
TEST(SearchPathOrder, LibraryFilesAreFoundWhereTheyAreNow)
{
    RootCopy root;
    const QByteArray empty = libraryJson("any", "[]");
    for (const char* file : {"wavecraft/late", "kinetics/twice", "wavecraft/twice"})
        root.write(QStringLiteral("toolbox/%1.tdlib.json").arg(file), empty);
    HostFixture fixture(root.path());
    const auto fileOf = [&](const std::string& library) {
        const auto result = fixture.tdprivate("lb_getLibraryData", 3, {str(library)});
        return result.ok ? result.outputs.at(0).cell(0).toString() : "failed: " + result.errorMessage;
    };
    EXPECT_EQ(fileOf("late"), "toolbox/wavecraft/late.tdlib.json");
    EXPECT_EQ(fileOf("twice"), "toolbox/kinetics/twice.tdlib.json") << "the first directory on the path wins";
    root.write("toolbox/arithmetica/fresh.tdlib.json", empty);
    EXPECT_EQ(fileOf("fresh"), "toolbox/arithmetica/fresh.tdlib.json") << "added after the host started";
    ASSERT_TRUE(QFile::rename(root.file("toolbox/wavecraft/late.tdlib.json"), root.file("toolbox/switchyard/late.tdlib.json")));
    EXPECT_EQ(fileOf("late"), "toolbox/switchyard/late.tdlib.json") << "moved to another directory of the path";
    ASSERT_TRUE(QFile::remove(root.file("toolbox/kinetics/twice.tdlib.json")));
    EXPECT_EQ(fileOf("twice"), "toolbox/wavecraft/twice.tdlib.json") << "the next one on the path";
    ASSERT_TRUE(QFile::remove(root.file("toolbox/switchyard/late.tdlib.json")));
    EXPECT_EQ(fileOf("late"), "failed: lb_getLibraryData: no library \"late\" on the path");
    EXPECT_EQ(fixture.errors().size(), 1u);
}

// Handles stay valid when their library's document is let go (libraries of
// half the bytes the catalog keeps: loading the third lets the first go): it
// is read again while its file is unchanged. Once the file has changed, what
// the handle named is gone, and the call says so instead of answering for the
// new file.
TEST(LibraryRelease, HandlesIntoALetGoDocumentAnswerAsBeforeUntilItsFileChanges)
{
    RootCopy root;
    const auto writeLibrary = [&](int i, const std::string& description) {
        static const std::string padding(std::size_t(LibraryCatalog::keptBytes / 2), 'p');
        root.write(QStringLiteral("toolbox/kinetics/lib%1.tdlib.json").arg(i),
                   libraryOf("lib" + std::to_string(i),
                             {R"({"name": "A", "type": "Block", "description": ")" + description + "\"}",
                              R"({"name": "S", "type": "SubSystem", "blocks": [{"name": "Inner", "type": "Block"}]})",
                              R"({"name": "Pad", "type": "Block", "description": ")" + padding + "\"}"}));
    };
    for (int i = 0; i < 3; ++i)
        writeLibrary(i, "first");
    HostFixture fixture(root.path());
    const auto releaseFirst = [&] {
        EXPECT_EQ(std::make_pair(fixture.children("lib1").size(), fixture.children("lib2").size()), std::make_pair(3ul, 3ul));
    };
    const auto description = [&](double handle) { return fixture.blockData(handle).at(1).toString(); };
    const std::vector<double> handles = fixture.children("lib0");
    ASSERT_EQ(handles.size(), 3u);
    const std::vector<HostValue> block = fixture.blockData(handles[0]);
    ASSERT_EQ(block.size(), 6u);
    EXPECT_EQ(block[1].toString(), "first");
    releaseFirst();

    EXPECT_EQ(fixture.blockData(handles[0]), block);
    EXPECT_EQ(fixture.children("lib0"), handles) << "the same reading keeps its nodes";
    const std::vector<double> inner = fixture.children(HostValue::doubleScalar(handles[1]));
    ASSERT_EQ(inner.size(), 1u);
    EXPECT_EQ(fixture.blockData(inner[0]).at(0).toString(), "Inner");
    const auto icon = fixture.tdprivate("lb_createSubSystemIcons", 0,
                                        {str("lib0/S"), HostValue::cellOfStrings({"lib0/S/Inner"}),
                                         HostValue::cellOfStrings({root.file("inner.svg").toStdString()})});
    EXPECT_TRUE(icon.ok) << icon.errorMessage;
    EXPECT_TRUE(fixture.errors().empty());

    releaseFirst();
    writeLibrary(0, "second");
    const auto stale = fixture.tdprivate("lb_getBlockData", 6, {HostValue::doubleScalar(handles[0])});
    EXPECT_FALSE(stale.ok);
    EXPECT_TRUE(contains(stale.errorMessage, "the library file changed after the handle of \"lib0/A\" was given"))
        << stale.errorMessage;
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(handles[1])), inner)
        << "children once listed are the node's own and stay";
    const std::vector<double> fresh = fixture.children("lib0");
    ASSERT_EQ(fresh.size(), 3u);
    EXPECT_NE(fresh, handles);
    EXPECT_EQ(description(fresh[0]), "second");

    // A change while the document is still kept: new handles read the new
    // file, the old ones keep what they named.
    writeLibrary(0, "third reading");
    const std::vector<double> third = fixture.children("lib0");
    ASSERT_EQ(third.size(), 3u);
    EXPECT_EQ((Strings{description(third[0]), description(fresh[0])}), (Strings{"third reading", "second"}));
}

// What a walk through the host operations alone finds below a path, the way
// the module's generation walks a library: blocks, deepest level, references.
void walk(HostFixture& fixture, const std::string& path, std::array<int, 3>& walked, int depth = 1)
{
    for (double handle : fixture.children(path)) {
        const auto data = fixture.blockData(handle);
        ASSERT_EQ(data.size(), 6u) << "no data below " << path;
        ++walked[0];
        walked[1] = std::max(walked[1], depth);
        if (data[3].toString() == "SubSystem") {
            walk(fixture, path + "/" + data[0].toString(), walked, depth + 1);
        } else if (data[3].toString() == "LibraryRef") {
            ++walked[2];
            EXPECT_FALSE(fixture.children(data[5].toString()).empty()) << "reference to nothing: " << data[0].toString();
        }
    }
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
    ASSERT_EQ(fixture.tdprivate("lb_getTdBlocksData", 9, {}).outputs.at(1).toStringList(),
              (Strings{"synth_0000", "synth_0001", "synth_0002"}));
    std::array<int, 3> walked{};
    walk(fixture, "synth_0001", walked);
    EXPECT_EQ(std::make_pair(walked[0], walked[1]), std::make_pair(200, 4));
    EXPECT_TRUE(walked[2] > 20 && walked[2] < 60) << walked[2];
    EXPECT_TRUE(fixture.errors().empty());
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
