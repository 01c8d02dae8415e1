#include "HostTestSupport.h"

#include "IconRenderer.h"
#include "LibraryFileParser.h"
#include "LibraryCatalog.h"
#include "SyntheticRootGenerator.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

using Strings = std::vector<std::string>;

class ExampleRoot : public ::testing::Test {
protected:
    bool childrenOk(const std::string& path) { return fixture.tdprivate("lb_getChildrenHandles", 1, {str(path)}).ok; }
    // Name, type, target library and target path of a block.
    Strings kind(double handle)
    {
        const auto data = fixture.blockData(handle);
        return data.size() == 6 ? Strings{data[0].toString(), data[3].toString(), data[4].toString(), data[5].toString()}
                                : Strings{};
    }
    bool describedAs(double handle, const std::string& start)
    {
        return fixture.blockData(handle).at(1).toString().rfind(start, 0) == 0;
    }

    bool ok(const std::string& command, std::vector<HostValue> inputs) { return fixture.run(command, inputs).ok; }
    std::string newSystem(const std::string& type)
    {
        return fixture.run("private_td_new_system", {str(type)}, 1).outputs.at(0).toString();
    }
    // Name, type and lock of the system in front.
    Strings front()
    {
        const auto out = fixture.run("private_td_get_current_open_mdl", {}, 3).outputs;
        return out.size() == 3 && out[2].isLogical()
                   ? Strings{out[0].toString(), out[1].toString(), std::to_string(int(out[2].scalar()))}
                   : Strings{};
    }
    std::string current() { return front().at(0); }
    double loaded(const std::string& name)
    {
        return fixture.run("private_td_is_system_loaded", {str(name)}, 1).outputs.at(0).scalar();
    }
    Strings blockNames(const std::string& system)
    {
        Strings names;
        for (const BlockRecord& block : fixture.host().systems().find(system)->document.blocks)
            names.push_back(block.name);
        return names;
    }


    HostFixture fixture{HostOptions::bundledRoot()};
};

TEST_F(ExampleRoot, TdBlocksChildrenBlockAndLibraryDataAndPathsWithDoubledSlashesOrLineFeeds)
{
    const auto result = fixture.tdprivate("lb_getTdBlocksData", 9, {HostValue::cellArray(0, 0)});
    ASSERT_TRUE(result.ok && result.outputs.size() == 9) << result.errorMessage;
    const auto& out = result.outputs;
    EXPECT_EQ(out[0].toStringList(),
              (Strings{"Arithmetica", "Kinetics", "Switchyard", "Tandril", "Wavecraft Signals", "Signal Workbench"}));
    EXPECT_EQ(out[1].toStringList(),
              (Strings{"arithmetica", "kinetics", "switchyard", "tandril", "wavecraft", "signal_workbench"}));
    EXPECT_EQ(out[6].toStringList(), (Strings{"Product", "Product", "Product", "Product", "Product", "Palette"}));
    EXPECT_TRUE(out[0].columns() == 6 && out[3].doubles() == std::vector<double>(6, 1.0) && out[7].cell(0).isEmpty());
    EXPECT_EQ((Strings{out[2].toStringList()[3], out[4].toStringList()[3], out[5].toStringList()[0],
                       out[8].cell(1).toStringList().at(0)}),
              (Strings{"tandril", "toolbox/tandril/blocks/tree.svg", "toolbox/arithmetica/tree.svg",
                       "toolbox/kinetics/kinetics.tdlib.json"}));
    EXPECT_EQ(out[7].cell(5).toStringList(), (Strings{"Wavecraft Signals", "Arithmetica"}));

    const auto top = fixture.children("tandril");
    Strings names;
    for (double handle : top)
        names.push_back(fixture.blockData(handle).at(0).toString());
    EXPECT_EQ(names, (Strings{"Ports & Subsystems", "Annotations", "Signal Attributes", "Frequently Used"}));
    EXPECT_EQ(fixture.children("tandril"), top) << "asking again gives the same handles";
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(top.at(0))), fixture.children("tandril/Ports & Subsystems"));
    const auto leaf = fixture.tdprivate(
        "lb_getChildrenHandles", 1, {HostValue::doubleScalar(fixture.childNamed("arithmetica/Basic Operations", "Gain"))});
    EXPECT_TRUE(leaf.ok && leaf.outputs[0].isEmpty() && leaf.outputs[0].rows() == 1) << "a block has no children";

    const double sine = fixture.childNamed("wavecraft/Sources", "Sine Wave");
    EXPECT_EQ(kind(sine), (Strings{"Sine Wave", "Block", "", ""}));
    EXPECT_TRUE(describedAs(sine, "Produces a sinusoid"));
    const HostValue position = fixture.blockData(sine).at(2);
    EXPECT_TRUE(position.doubles() == std::vector<double>({30, 30, 100, 80}) && position.rows() == 1);
    const double sources = fixture.childNamed("wavecraft", "Sources");
    EXPECT_EQ(kind(sources), (Strings{"Sources", "SubSystem", "", ""}));
    // A reference names its target and borrows its description unless it has its own.
    const double ref = fixture.childNamed("tandril/Frequently Used", "Wave Sources");
    EXPECT_EQ(kind(ref), (Strings{"Wave Sources", "LibraryRef", "wavecraft", "wavecraft/Sources"}));
    EXPECT_EQ(fixture.blockData(ref).at(1).toString(), fixture.blockData(sources).at(1).toString());
    EXPECT_EQ(kind(fixture.childNamed("tandril/Frequently Used", "Arithmetic")).at(3), "arithmetica");
    EXPECT_TRUE(describedAs(fixture.childNamed("tandril/Frequently Used", "Logic"), "Logical operators"));
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(ref)), fixture.children("wavecraft/Sources"))
        << "a reference's children are its target's";

    const auto library = fixture.tdprivate("lb_getLibraryData", 3, {str("kinetics")});
    ASSERT_TRUE(library.ok) << library.errorMessage;
    const QFileInfo info(HostOptions::bundledRoot() + "/toolbox/kinetics/kinetics.tdlib.json");
    const auto& data = library.outputs;
    EXPECT_EQ(std::make_tuple(data[0].cell(0).toString(), data[1].scalar(), data[2].scalar()),
              std::make_tuple(std::string("toolbox/kinetics/kinetics.tdlib.json"), double(info.size()),
                              double(info.lastModified().toSecsSinceEpoch())));

    // Doubled slashes and line feeds in paths; bad arguments fail with a report line.
    EXPECT_EQ(fixture.blockData(fixture.children("wavecraft/Signal Conversion").at(0)).at(0).toString(), "A//D Converter");
    EXPECT_NE(fixture.childNamed("kinetics/Discrete", "Zero-Order\nHold"), 0) << "the name keeps its line feed";
    for (const char* path :
         {"arithmetica/Functions/Min//Max", "kinetics/Discrete/Zero-Order Hold", "kinetics/Discrete/Zero-Order\nHold"})
        EXPECT_TRUE(childrenOk(path)) << path;
    EXPECT_TRUE(fixture.errors().empty());

    EXPECT_FALSE(childrenOk("wavecraft/Signal Conversion/A/D Converter")) << "a single slash separates";
    EXPECT_FALSE(childrenOk("") || fixture.tdprivate("lb_getLibraryData", 3, {str("nowhere")}).ok);
    EXPECT_FALSE(fixture.tdprivate("lb_getLibraryData", 3, {str(std::string("kinetics.tdlib.json\0", 20))}).ok)
        << "a name is not cut short at a nul";
    for (const HostValue& bad : {HostValue::doubleScalar(1e9), HostValue::doubleScalar(0.5), str("tandril")})
        EXPECT_FALSE(fixture.tdprivate("lb_getBlockData", 6, {bad}).ok);
    EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::logicalScalar(true)}).ok);
    EXPECT_EQ(fixture.errors().size(), 8u);
    EXPECT_EQ(fixture.tdprivate("lb_getChildrenHandles", 2, {str("tandril")}).errorId, "Tandril:Host:TooManyOutputs");
    EXPECT_EQ(fixture.run("tdprivate", {str("lb_frobnicate")}).errorId, "Tandril:Host:UnknownOperation");
    EXPECT_FALSE(fixture.run("no_such_function", {}).ok);

    // Subsystem icons: an unknown child or lists of unequal length write nothing.
    QTemporaryDir drawings;
    const std::string parent = "switchyard/Logic";
    const auto icons = [&](const Strings& paths, const Strings& files) {
        return fixture.tdprivate("lb_createSubSystemIcons", 0,
                                 {str(parent), HostValue::cellOfStrings(paths), HostValue::cellOfStrings(files)});
    };
    fixture.clearErrors();
    const Strings wrong{parent + "/AND Gate", parent + "/Nothing Here"};
    const std::string a = (drawings.path() + "/a.svg").toStdString();
    EXPECT_FALSE(icons(wrong, {a, a + "b"}).ok);
    ASSERT_EQ(fixture.errors().size(), 1u);
    EXPECT_TRUE(contains(fixture.errors()[0], "Nothing Here"));
    EXPECT_FALSE(icons(wrong, {a}).ok);
    EXPECT_TRUE(QDir(drawings.path()).isEmpty());
    // Otherwise one valid drawing per child, in directories made as needed
    // and met again.
    const auto handles = fixture.children(parent);
    Strings paths, files;
    for (std::size_t i = 0; i < handles.size(); ++i) {
        paths.push_back(parent + "/" + fixture.blockData(handles[i]).at(0).toString());
        files.push_back((drawings.path() + (i % 3 ? QStringLiteral("/d1/f%1icon.xml") : QStringLiteral("/d2/d3/f%1icon.xml")).arg(i))
                            .toStdString());
    }
    const auto drawn = icons(paths, files);
    ASSERT_TRUE(drawn.ok) << drawn.errorMessage;
    for (const std::string& file : files)
        EXPECT_TRUE(QSvgRenderer(QString::fromStdString(file)).isValid()) << file;
    EXPECT_TRUE(LibraryBrowser::Testing::readFile(files.at(10)).contains("n++"));
    // A file that can't be made fails the call; the others are written.
    const std::string blocked = (drawings.path() + "/plain").toStdString();
    LibraryBrowser::Testing::writeFile(blocked, "a file, not a directory");
    files[1] = blocked + "/f1icon.xml";
    QFile::remove(QString::fromStdString(files[2]));
    const auto refused = icons(paths, files);
    EXPECT_EQ(refused.errorId, "Tandril:Host:WriteFailed");
    EXPECT_TRUE(contains(refused.errorMessage, blocked + "/f1icon.xml"));
    EXPECT_TRUE(QSvgRenderer(QString::fromStdString(files[2])).isValid()) << "written after the one that failed";
}

// Only a subsystem carries the filled corner mark and only a reference the
// arrow; a size keeps its one decimal and a whole number has none.
TEST(IconRendererTest, IconsAreSmallValidAndTheSameEachTime)
{
    const BlockPosition box{0, 0, 70, 50};
    for (IconShape shape :
         {IconShape::Rectangle, IconShape::Rounded, IconShape::Triangle, IconShape::Circle, IconShape::Diamond}) {
        for (BlockType type : {BlockType::Block, BlockType::SubSystem, BlockType::LibraryRef}) {
            const IconSpec icon{shape, "K<&>", 3, 2, ""};
            const QByteArray svg = IconRenderer::render(icon, "Gain", type, box);
            EXPECT_EQ(svg, IconRenderer::render(icon, "Gain", type, box));
            EXPECT_TRUE(svg.size() < 2048 && QSvgRenderer(svg).isValid() && svg.contains("K&lt;&amp;&gt;"))
                << svg.constData();
            const QByteArray plain = IconRenderer::render(IconSpec{}, "Gain", type, box);
            EXPECT_EQ(std::make_pair(plain.count("fill=\"#5a6f8c\""), plain.count("stroke=\"#5a6f8c\"")),
                      std::make_pair(qsizetype(type == BlockType::SubSystem), qsizetype(type == BlockType::LibraryRef)));
        }
    }
    const QByteArray plain = IconRenderer::render(IconSpec{}, "Integrator", BlockType::Block, box);
    EXPECT_TRUE(plain.contains(">Integrator<")) << "no label given: the name";
    EXPECT_EQ(plain.count("M0 "), 1) << "one input mark";
    EXPECT_NE(IconRenderer::render(IconSpec{}, "Gain", BlockType::Block, {0, 0, 90, 50}), plain);
    EXPECT_TRUE(IconRenderer::render({}, "Gain", BlockType::Block, {0, 0, 70.5, 50})
                    .contains("width=\"70.5\" height=\"50\""));
    const std::string own = "<svg xmlns=\"http://www.w3.org/2000/svg\"><circle r=\"3\"/></svg>";
    EXPECT_EQ(IconRenderer::render(IconSpec{IconShape::Circle, "", 0, 0, own}, "x", BlockType::Block, box),
              QByteArray::fromStdString(own));
    EXPECT_EQ(IconRenderer::defaultLabel("Zero-Order\nHold"), "Zero-Order");
    EXPECT_EQ(IconRenderer::defaultLabel("Übertragungsglied PT1"), "Übertragungsg…");
}

// rmdir without "s" removes only an empty directory; with it, a whole tree,
// hidden files and links included, but never what a link leads to, nor a
// tree that holds the root.
TEST(RemoveDirectory, RemovesATreeAndAnswersStatusMessageAndId)
{
    HostFixture fixture(HostOptions::bundledRoot());
    QTemporaryDir temp;
    const QString doomed = temp.path() + "/LBwriter1";
    QDir().mkpath(doomed + "/inner");
    const QString kept = temp.path() + "/kept";
    LibraryBrowser::Testing::writeFile((doomed + "/inner/deeper/f1icon.xml").toStdString(), "<svg/>");
    LibraryBrowser::Testing::writeFile((doomed + "/.hidden").toStdString(), "x");
    LibraryBrowser::Testing::writeFile((kept + "/outside.xml").toStdString(), "<svg/>");
    ASSERT_TRUE(QFile::link(kept, doomed + "/inner/link"));
    ASSERT_TRUE(QFile::link(kept + "/outside.xml", doomed + "/fileLink"));
    // Removed (as a logical), message, id.
    const auto rmdir = [&](const QString& path, std::vector<HostValue> flag = {str("s")}) {
        flag.insert(flag.begin(), {str("rmdir"), str(path.toStdString())});
        const auto out = fixture.run("tdprivate", flag, 3).outputs;
        return out.size() == 3 && out[0].isLogical()
                   ? Strings{std::to_string(int(out[0].scalar())), out[1].toString(), out[2].toString()}
                   : Strings{};
    };
    const std::string path = doomed.toStdString();
    EXPECT_EQ(rmdir(doomed, {}),
              (Strings{"0", "Could not remove " + path + ": it is not empty.", "Tandril:Host:rmdir:Failed"}));
    EXPECT_TRUE(QFileInfo::exists(doomed + "/inner"));
    EXPECT_EQ(rmdir(doomed), (Strings{"1", "", ""}));
    EXPECT_FALSE(QFileInfo::exists(doomed));
    EXPECT_TRUE(QFileInfo::exists(kept + "/outside.xml")) << "a link's target stays";
    EXPECT_EQ(rmdir(doomed), (Strings{"0", "No directory " + path + " to remove.", "Tandril:Host:rmdir:NotFound"}));
    EXPECT_EQ(rmdir(QDir(HostOptions::bundledRoot()).absoluteFilePath("..")).at(2), "Tandril:Host:rmdir:Refused");
    EXPECT_TRUE(QFileInfo::exists(HostOptions::bundledRoot()));
}

// Given directories come first and duplicates are all listed. Library files
// are looked for in what the walk below the root listed; files moved or
// removed after it are found or missed as on the disk.
TEST(SearchPathOrder, GivenDirectoriesComeFirstAndLibraryFilesAreFoundWhereTheyAreNow)
{
    RootCopy root;
    QTemporaryDir extra;
    QFile::copy(root.file("toolbox/kinetics/kinetics.tdlib.json"), extra.path() + "/kinetics.tdlib.json");
    LibraryBrowser::Testing::writeFile((extra.path() + "/tdblocks.json").toStdString(),
                                       R"({"format": "tandril-tdblocks", "version": 1, "entries": [
        {"name": "Kinetics Preview", "library": "kinetics", "type": "Product"},
        {"name": "Tandril", "library": "tandril_next", "type": "Product"}]})");
    const QByteArray empty = libraryJson("any", "[]");
    for (const char* file : {"wavecraft/late", "kinetics/twice", "wavecraft/twice"})
        root.write(QStringLiteral("toolbox/%1.tdlib.json").arg(file), empty);
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
    const auto given = fixture.tdprivate("lb_getTdBlocksData", 9,
                                         {HostValue::cellOfStrings({root.file("toolbox/switchyard").toStdString()})});
    EXPECT_EQ(given.outputs.at(0).toStringList(), (Strings{"Switchyard"}))
        << "a path list in the call replaces the host's own";

    const auto fileOf = [&](const std::string& library) {
        const auto data = fixture.tdprivate("lb_getLibraryData", 3, {str(library)});
        return data.ok ? data.outputs.at(0).cell(0).toString() : "failed: " + data.errorMessage;
    };
    EXPECT_EQ(fileOf("kinetics"), (extra.path() + "/kinetics.tdlib.json").toStdString()) << "outside the root: absolute";
    EXPECT_EQ(fileOf("late"), "toolbox/wavecraft/late.tdlib.json");
    EXPECT_EQ(fileOf("twice"), "toolbox/kinetics/twice.tdlib.json") << "the first directory on the path wins";
    ASSERT_TRUE(
        QFile::rename(root.file("toolbox/wavecraft/late.tdlib.json"), root.file("toolbox/switchyard/late.tdlib.json")));
    EXPECT_EQ(fileOf("late"), "toolbox/switchyard/late.tdlib.json") << "moved to another directory of the path";
    ASSERT_TRUE(QFile::remove(root.file("toolbox/switchyard/late.tdlib.json")));
    EXPECT_EQ(fileOf("late"), "failed: lb_getLibraryData: no library \"late\" on the path");
    EXPECT_EQ(fixture.errors().size(), 1u);

    // The root moved aside and another put in its place between two calls:
    // the second reads what is there now.
    ASSERT_TRUE(QDir().rename(root.path(), root.path() + "-before"));
    root.write("toolbox/kinetics/tdblocks.json", R"({"format": "tandril-tdblocks", "version": 1, "entries": [
        {"name": "Kinetics Replaced", "library": "kinetics", "type": "Product"}]})");
    EXPECT_EQ(fixture.tdprivate("lb_getTdBlocksData", 9, {}).outputs.at(0).toStringList(),
              (Strings{"Kinetics Preview", "Tandril", "Kinetics Replaced"}));
}

// A directory given in a roundabout way still names its files from the root.
TEST(SearchPathOrder, FilesBelowTheRootAreNamedFromItHoweverThePathReachesThem)
{
    RootCopy root;
    root.write("toolbox/kinetics/sub/deep.tdlib.json", libraryJson("deep", "[]"));
    HostFixture fixture(root.path(), {root.file("toolbox/wavecraft/../kinetics/sub/"), root.file("toolbox//kinetics/")});
    const auto fileOf = [&](const std::string& library) {
        const auto data = fixture.tdprivate("lb_getLibraryData", 3, {str(library)});
        return data.ok ? data.outputs.at(0).cell(0).toString() : "failed: " + data.errorMessage;
    };
    EXPECT_EQ((Strings{fileOf("deep"), fileOf("kinetics")}),
              (Strings{"toolbox/kinetics/sub/deep.tdlib.json", "toolbox/kinetics/kinetics.tdlib.json"}));
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
        EXPECT_EQ(std::make_pair(fixture.children("lib1").size(), fixture.children("lib2").size()),
                  std::make_pair(3ul, 3ul));
    };
    const auto description = [&](double handle) { return fixture.blockData(handle).at(1).toString(); };
    const std::vector<double> handles = fixture.children("lib0");
    ASSERT_EQ(handles.size(), 3u);
    const std::vector<HostValue> block = fixture.blockData(handles[0]);
    ASSERT_TRUE(block.size() == 6 && block[1].toString() == "first");
    releaseFirst();

    EXPECT_EQ(fixture.blockData(handles[0]), block);
    EXPECT_EQ(fixture.children("lib0"), handles) << "the same reading keeps its nodes";
    const std::vector<double> inner = fixture.children(HostValue::doubleScalar(handles[1]));
    ASSERT_TRUE(inner.size() == 1 && fixture.blockData(inner[0]).at(0).toString() == "Inner");
    const auto icon = fixture.tdprivate("lb_createSubSystemIcons", 0,
                                        {str("lib0/S"), HostValue::cellOfStrings({"lib0/S/Inner"}),
                                         HostValue::cellOfStrings({root.file("inner.svg").toStdString()})});
    EXPECT_TRUE(icon.ok && fixture.errors().empty()) << icon.errorMessage;

    releaseFirst();
    writeLibrary(0, "second");
    const auto stale = fixture.tdprivate("lb_getBlockData", 6, {HostValue::doubleScalar(handles[0])});
    EXPECT_TRUE(!stale.ok
                && contains(stale.errorMessage, "the library file changed after the handle of \"lib0/A\" was given"))
        << stale.errorMessage;
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(handles[1])), inner) << "children once listed are the node's own";
    const std::vector<double> fresh = fixture.children("lib0");
    ASSERT_TRUE(fresh.size() == 3 && fresh != handles);
    EXPECT_EQ(description(fresh[0]), "second");

    // A change while the document is still kept: new handles read the new
    // file, the old ones keep what they named.
    writeLibrary(0, "third reading");
    const std::vector<double> third = fixture.children("lib0");
    ASSERT_EQ(third.size(), 3u);
    EXPECT_EQ((Strings{description(third[0]), description(fresh[0])}), (Strings{"third reading", "second"}));
}

// The benchmarks' roots: the same seed makes the same tree. What the host
// serves from one is walked by the app, window and ranking suites.
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
    EXPECT_FALSE(fixture.children("synth_0001").empty() || !fixture.errors().empty());
}

class WindowCommandsTest : public ExampleRoot {};


TEST_F(WindowCommandsTest, NewSystemsTakeTheFirstFreeUntitledNameOpenOnlyWhenAskedAndTakeCopiesOfBlocks)
{
    EXPECT_EQ(current(), "") << "nothing open yet";
    EXPECT_EQ((Strings{newSystem("Model"), newSystem("Library"), newSystem("Model")}),
              (Strings{"untitled", "untitled1", "untitled2"}));
    EXPECT_FALSE(ok("private_td_new_system", {str("Spreadsheet")}));
    EXPECT_EQ(front(), (Strings{"untitled2", "Model", "0"}));

    // Loading a library brings no window to the front; closing puts the last shown system there.
    EXPECT_EQ(loaded("kinetics"), 0.0);
    ASSERT_TRUE(ok("open_system", {str("kinetics"), str("loadOnly")}));
    EXPECT_EQ(std::make_pair(loaded("kinetics"), current()), std::make_pair(1.0, std::string("untitled2")));
    EXPECT_TRUE(ok("close_system", {str("untitled2")}));
    EXPECT_EQ(current(), "untitled1");
    EXPECT_TRUE(ok("close_system", {str("kinetics")}));
    EXPECT_EQ(std::make_pair(loaded("kinetics"), current()), std::make_pair(0.0, std::string("untitled1")));
    EXPECT_TRUE(ok("close_system", {str("untitled1")}) && ok("close_system", {str("untitled")}));
    EXPECT_EQ(current(), "");
    EXPECT_TRUE(contains(fixture.run("close_system", {str("untitled")}).errorMessage, "no open system \"untitled\""));
    EXPECT_FALSE(ok("close_system", {}));
    EXPECT_EQ(newSystem("Model"), "untitled");

    ASSERT_TRUE(ok("open_system", {str("kinetics/Mechanical/Rotational")}));
    EXPECT_EQ(front(), (Strings{"kinetics", "Library", "1"}));
    for (const auto& inputs : std::vector<std::vector<HostValue>>{
             {str("nowhere")}, {str("kinetics/Nothing")}, {str("kinetics"), str("loadEverything")}})
        EXPECT_FALSE(ok("open_system", inputs)) << inputs[0].toString();

    // Added blocks are copies with unique names, and go only into unlocked systems.
    const auto add = [&](const std::string& block, const std::string& into) {
        return ok("private_td_add_block", {str(block), str(into)});
    };
    const std::string gain = "arithmetica/Basic Operations/Gain";
    for (const std::string& block : {gain, gain, gain, std::string("wavecraft/Signal Conversion/A//D Converter"),
                                     std::string("kinetics/Discrete/Zero-Order Hold")})
        ASSERT_TRUE(add(block, "untitled")) << block;
    EXPECT_EQ(blockNames("untitled"), (Strings{"Gain", "Gain1", "Gain2", "A/D Converter", "Zero-Order\nHold"}));
    const auto& blocks = fixture.host().systems().find("untitled")->document.blocks;
    EXPECT_LT(blocks[0].position.right, blocks[1].position.left) << "placed side by side";
    EXPECT_EQ(blocks[0].description.rfind("Multiplies its input", 0), 0u);

    ASSERT_TRUE(ok("private_td_drop_block",
                   {str("kinetics/Mechanical"), str("untitled"), HostValue::doubleMatrix(1, 2, {300, 200})}));
    const BlockRecord& dropped = fixture.host().systems().find("untitled")->document.blocks.back();
    EXPECT_EQ(std::make_tuple(dropped.name, dropped.position.left, dropped.position.top, dropped.blocks.size()),
              std::make_tuple(std::string("Mechanical"), 300.0, 200.0, std::size_t(2)))
        << "a subsystem comes with its contents";
    ASSERT_TRUE(add("arithmetica/Basic Operations/Sum", "untitled/Mechanical"));

    ok("open_system", {str("switchyard")});
    EXPECT_FALSE(add(gain, "switchyard")) << "a shipped library is locked";
    fixture.host().systems().setLocked("switchyard", false);
    EXPECT_TRUE(add(gain, "switchyard/Logic"));
    for (const auto& [block, target] : std::vector<std::pair<std::string, std::string>>{
             {gain, "closed"}, {"arithmetica/Nope", "switchyard"}, {gain, "switchyard/Logic/AND Gate"}})
        EXPECT_FALSE(add(block, target)) << block << " into " << target;
    EXPECT_FALSE(ok("private_td_drop_block", {str(gain), str("switchyard")})) << "a drop needs its point";
}

// A saved system reads back as a library file and open_system given that
// file opens it again, unlocked; a damaged file opens nothing and says which.
TEST_F(WindowCommandsTest, SavedSystemsReadBackAsLibraryFilesAndOpenFromThem)
{
    QTemporaryDir out;
    const std::string name = newSystem("Model");
    ok("private_td_add_block", {str("switchyard/Logic/Zähler"), str(name)});
    ok("private_td_add_block", {str("tandril/Frequently Used/Displays"), str(name)});
    EXPECT_FALSE(ok("save_system", {str(name)})) << "a new system has no file yet";
    const std::string file = (out.path() + "/untitled.tdlib.json").toStdString();
    ASSERT_TRUE(ok("save_system", {str(name), str(file)}));
    EXPECT_FALSE(fixture.host().systems().find(name)->dirty);
    FileIssue issue;
    const auto document = LibraryFileParser::parseFile(QString::fromStdString(file), "untitled", issue);
    ASSERT_TRUE(document && document->blocks.size() == 2) << issue.toString();
    EXPECT_EQ(std::make_tuple(document->blocks[0].name, document->blocks[1].type, document->blocks[1].target.library,
                              document->blocks[1].target.path),
              std::make_tuple(std::string("Zähler"), BlockType::LibraryRef, std::string("wavecraft"),
                              std::string("Displays")));

    ASSERT_TRUE(ok("close_system", {str(name)}));
    ASSERT_FALSE(fixture.host().systems().isLoaded(name));
    const auto opened = fixture.run("open_system", {str(file)});
    ASSERT_TRUE(opened.ok) << opened.errorMessage;
    EXPECT_EQ(front(), (Strings{name, "Model", "0"}));
    EXPECT_EQ(blockNames(name), (Strings{"Zähler", "Displays"}));
    const std::string library = newSystem("Library");
    const std::string libraryFile = (out.path() + "/parts.tdlib.json").toStdString();
    ASSERT_TRUE(ok("save_system", {str(library), str(libraryFile)}) && ok("close_system", {str(library)}));
    ASSERT_TRUE(fixture.run("open_system", {str(libraryFile)}).ok);
    EXPECT_EQ(front(), (Strings{library, "Library", "0"})) << "a saved library comes back a library";
    LibraryBrowser::Testing::writeFile(file, "{ not json");
    const auto failed = fixture.run("open_system", {str(file)});
    EXPECT_FALSE(failed.ok);
    EXPECT_TRUE(contains(failed.errorMessage, "untitled.tdlib.json")) << failed.errorMessage;
}

TEST_F(WindowCommandsTest, WindowlessCommandsAreRecordedAndCheckTheirBlocks)
{
    Strings echoed;
    fixture.host().commandLog().setEcho([&](const std::string& line) { echoed.push_back(line); });
    const std::string docroot = HostOptions::bundledRoot().toStdString() + "/help";
    const std::vector<std::tuple<std::string, std::vector<HostValue>, bool>> commands{
        {"private_td_open_block_dialog", {str("kinetics/Continuous/Integrator"), str("params")}, true},
        {"private_td_open_block_dialog", {str("kinetics/Continuous/Integrator"), str("wide")}, false},
        {"private_td_open_block_dialog", {str("kinetics/Continuous/Nope"), str("default")}, false},
        {"private_td_show_block_help", {str("wavecraft/Displays/Scope")}, true},
        {"private_td_show_block_help", {str("wavecraft/Displays/Oscilloscope")}, false},
        {"uiopen", {str("*.mdl")}, true},
        {"tdhelp", {}, true},
        {"helpview", {str(docroot + "/toolbox/tandril/helptargets.map"), str("librarybrowsergui")}, true},
        {"tdprivate", {str("showprefs")}, true}};
    for (const auto& [command, inputs, expected] : commands)
        EXPECT_EQ(ok(command, inputs), expected) << command;
    ASSERT_EQ(fixture.host().windowCommands().openDialogs().size(), 1u);
    EXPECT_TRUE(ok("private_td_close_block_dialogs", {}));
    EXPECT_TRUE(fixture.host().windowCommands().openDialogs().empty());
    const auto one = [&](const std::string& command) { return fixture.run(command, {}, 1).outputs.at(0).toString(); };
    EXPECT_EQ((Strings{one("docroot"), one("private_td_sys_name_under_mouse")}), (Strings{docroot, ""}));
    fixture.host().windowCommands().setSystemUnderMouse("untitled");
    EXPECT_EQ(one("private_td_sys_name_under_mouse"), "untitled");

    const auto& log = fixture.host().commandLog().entries();
    ASSERT_EQ(log.size(), 13u);
    EXPECT_EQ(log[0].text(), "private_td_open_block_dialog('kinetics/Continuous/Integrator', 'params')");
    EXPECT_EQ(log[8].text(), "tdprivate('showprefs')");
    EXPECT_EQ(echoed.size(), log.size());
    EXPECT_EQ(echoed[6], "host: tdhelp()\n");
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
