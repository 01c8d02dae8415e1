#include "HostTestSupport.h"

#include "IconRenderer.h"

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

    HostFixture fixture{HostOptions::bundledRoot()};
};

TEST_F(ExampleRoot, TdBlocksChildrenBlockAndLibraryDataInFileOrderWithStableHandles)
{
    const auto result = fixture.tdprivate("lb_getTdBlocksData", 9, {HostValue::cellArray(0, 0)});
    ASSERT_TRUE(result.ok) << result.errorMessage;
    ASSERT_EQ(result.outputs.size(), 9u);
    const auto& out = result.outputs;
    EXPECT_EQ(out[0].toStringList(),
              (Strings{"Arithmetica", "Kinetics", "Switchyard", "Tandril", "Wavecraft Signals", "Signal Workbench"}));
    EXPECT_EQ(out[1].toStringList(),
              (Strings{"arithmetica", "kinetics", "switchyard", "tandril", "wavecraft", "signal_workbench"}));
    EXPECT_EQ(out[0].columns(), 6u);
    EXPECT_EQ(out[3].doubles(), std::vector<double>(6, 1.0));
    EXPECT_EQ((Strings{out[2].toStringList()[3], out[4].toStringList()[3], out[5].toStringList()[0]}),
              (Strings{"tandril", "toolbox/tandril/blocks/tree.svg", "toolbox/arithmetica/tree.svg"}));
    EXPECT_EQ(out[6].toStringList(), (Strings{"Product", "Product", "Product", "Product", "Product", "Palette"}));
    EXPECT_EQ(out[7].cell(5).toStringList(), (Strings{"Wavecraft Signals", "Arithmetica"}));
    EXPECT_TRUE(out[7].cell(0).isEmpty());
    EXPECT_EQ(out[8].cell(1).toStringList(), (Strings{"toolbox/kinetics/kinetics.tdlib.json"}));

    const auto top = fixture.children("tandril");
    Strings names;
    for (double handle : top)
        names.push_back(fixture.blockData(handle).at(0).toString());
    EXPECT_EQ(names, (Strings{"Ports & Subsystems", "Annotations", "Signal Attributes", "Frequently Used"}));
    EXPECT_EQ(fixture.children("tandril"), top) << "asking again gives the same handles";
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(top.at(0))), fixture.children("tandril/Ports & Subsystems"));
    const auto leaf = fixture.tdprivate(
        "lb_getChildrenHandles", 1, {HostValue::doubleScalar(fixture.childNamed("arithmetica/Basic Operations", "Gain"))});
    ASSERT_TRUE(leaf.ok);
    EXPECT_TRUE(leaf.outputs[0].isEmpty() && leaf.outputs[0].rows() == 1) << "a block has no children";

    const double sine = fixture.childNamed("wavecraft/Sources", "Sine Wave");
    const auto data = fixture.blockData(sine);
    ASSERT_EQ(data.size(), 6u);
    EXPECT_EQ(data[1].toString().rfind("Produces a sinusoid", 0), 0u);
    EXPECT_EQ(data[2].doubles(), (std::vector<double>{30, 30, 100, 80}));
    EXPECT_EQ(data[2].rows(), 1u);
    EXPECT_EQ(kind(sine), (Strings{"Sine Wave", "Block", "", ""}));
    const double sources = fixture.childNamed("wavecraft", "Sources");
    EXPECT_EQ(kind(sources), (Strings{"Sources", "SubSystem", "", ""}));

    // A reference names its target and borrows its description unless it has its own.
    const double ref = fixture.childNamed("tandril/Frequently Used", "Wave Sources");
    EXPECT_EQ(kind(ref), (Strings{"Wave Sources", "LibraryRef", "wavecraft", "wavecraft/Sources"}));
    EXPECT_EQ(fixture.blockData(ref).at(1).toString(), fixture.blockData(sources).at(1).toString());
    EXPECT_EQ(kind(fixture.childNamed("tandril/Frequently Used", "Arithmetic")).at(3), "arithmetica");
    const auto own = fixture.blockData(fixture.childNamed("tandril/Frequently Used", "Logic"));
    EXPECT_EQ(own.at(1).toString().rfind("Logical operators", 0), 0u);
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(ref)), fixture.children("wavecraft/Sources"))
        << "a reference's children are its target's";

    const auto library = fixture.tdprivate("lb_getLibraryData", 3, {str("kinetics")});
    ASSERT_TRUE(library.ok) << library.errorMessage;
    const QFileInfo info(HostOptions::bundledRoot() + "/toolbox/kinetics/kinetics.tdlib.json");
    EXPECT_EQ(std::make_tuple(library.outputs[0].cell(0).toString(), library.outputs[1].scalar(),
                              library.outputs[2].scalar()),
              std::make_tuple(std::string("toolbox/kinetics/kinetics.tdlib.json"), double(info.size()),
                              double(info.lastModified().toSecsSinceEpoch())));
    EXPECT_TRUE(fixture.errors().empty());
}

TEST_F(ExampleRoot, DoubledSlashesAndLineFeedsInPathsAndBadArgumentsFailWithAReportLine)
{
    EXPECT_EQ(fixture.blockData(fixture.children("wavecraft/Signal Conversion").at(0)).at(0).toString(),
              "A//D Converter");
    EXPECT_NE(fixture.childNamed("kinetics/Discrete", "Zero-Order\nHold"), 0) << "the name keeps its line feed";
    for (const char* path :
         {"arithmetica/Functions/Min//Max", "kinetics/Discrete/Zero-Order Hold", "kinetics/Discrete/Zero-Order\nHold"})
        EXPECT_TRUE(childrenOk(path)) << path;
    EXPECT_TRUE(fixture.errors().empty());

    EXPECT_FALSE(childrenOk("wavecraft/Signal Conversion/A/D Converter")) << "a single slash separates";
    EXPECT_FALSE(childrenOk(""));
    EXPECT_FALSE(fixture.tdprivate("lb_getLibraryData", 3, {str("nowhere")}).ok);
    for (const HostValue& bad : {HostValue::doubleScalar(1e9), HostValue::doubleScalar(0.5), str("tandril")})
        EXPECT_FALSE(fixture.tdprivate("lb_getBlockData", 6, {bad}).ok);
    EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::logicalScalar(true)}).ok);
    EXPECT_EQ(fixture.errors().size(), 7u);
    EXPECT_EQ(fixture.tdprivate("lb_getChildrenHandles", 2, {str("tandril")}).errorId, "Tandril:Host:TooManyOutputs");
    EXPECT_EQ(fixture.run("tdprivate", {str("lb_frobnicate")}).errorId, "Tandril:Host:UnknownOperation");
    EXPECT_FALSE(fixture.run("no_such_function", {}).ok);
}

TEST_F(ExampleRoot, SubSystemIconsAreWrittenOnePerChildAsValidSvgOrNotAtAll)
{
    QTemporaryDir out;
    const std::string parent = "switchyard/Logic";
    const auto icons = [&](const Strings& paths, const Strings& files) {
        return fixture.tdprivate("lb_createSubSystemIcons", 0,
                                 {str(parent), HostValue::cellOfStrings(paths), HostValue::cellOfStrings(files)});
    };
    // An unknown child or lists of unequal length write nothing.
    const Strings wrong{parent + "/AND Gate", parent + "/Nothing Here"};
    const Strings wrongFiles{(out.path() + "/a.svg").toStdString(), (out.path() + "/b.svg").toStdString()};
    EXPECT_FALSE(icons(wrong, wrongFiles).ok);
    ASSERT_EQ(fixture.errors().size(), 1u);
    EXPECT_TRUE(contains(fixture.errors()[0], "Nothing Here"));
    EXPECT_FALSE(icons(wrong, {wrongFiles[0]}).ok);
    EXPECT_TRUE(QDir(out.path()).isEmpty());

    const auto handles = fixture.children(parent);
    Strings paths, files;
    for (std::size_t i = 0; i < handles.size(); ++i) {
        paths.push_back(parent + "/" + fixture.blockData(handles[i]).at(0).toString());
        files.push_back((out.path() + QStringLiteral("/d1/f%1icon.xml").arg(i)).toStdString());
    }
    const auto result = icons(paths, files);
    ASSERT_TRUE(result.ok) << result.errorMessage;
    for (const std::string& file : files)
        EXPECT_TRUE(QSvgRenderer(QString::fromStdString(file)).isValid()) << file;
    QFile zaehler(QString::fromStdString(files.at(10)));
    ASSERT_TRUE(zaehler.open(QIODevice::ReadOnly));
    EXPECT_TRUE(zaehler.readAll().contains("n++"));
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
            EXPECT_LT(svg.size(), 2048);
            EXPECT_TRUE(QSvgRenderer(svg).isValid()) << svg.constData();
            EXPECT_TRUE(svg.contains("K&lt;&amp;&gt;"));
            const QByteArray plain = IconRenderer::render(IconSpec{}, "Gain", type, box);
            EXPECT_EQ(std::make_pair(plain.count("fill=\"#5a6f8c\""), plain.count("stroke=\"#5a6f8c\"")),
                      std::make_pair(qsizetype(type == BlockType::SubSystem), qsizetype(type == BlockType::LibraryRef)));
        }
    }
    const QByteArray plain = IconRenderer::render(IconSpec{}, "Integrator", BlockType::Block, box);
    EXPECT_TRUE(plain.contains(">Integrator<")) << "no label given: the name";
    EXPECT_EQ(plain.count("M0 "), 1) << "one input mark";
    EXPECT_NE(IconRenderer::render(IconSpec{}, "Gain", BlockType::Block, {0, 0, 90, 50}), plain);
    EXPECT_TRUE(IconRenderer::render(IconSpec{}, "Gain", BlockType::Block, {0, 0, 70.5, 50})
                    .contains("width=\"70.5\" height=\"50\""));
    const std::string own = "<svg xmlns=\"http://www.w3.org/2000/svg\"><circle r=\"3\"/></svg>";
    EXPECT_EQ(IconRenderer::render(IconSpec{IconShape::Circle, "", 0, 0, own}, "x", BlockType::Block, box),
              QByteArray::fromStdString(own));
    EXPECT_EQ(IconRenderer::defaultLabel("Zero-Order\nHold"), "Zero-Order");
    EXPECT_EQ(IconRenderer::defaultLabel("Übertragungsglied PT1"), "Übertragungsg…");
}

// rmdir without "s" removes only an empty directory; with it, a whole tree,
// but never one that holds the root.
TEST(RemoveDirectory, RemovesATreeAndAnswersStatusMessageAndId)
{
    HostFixture fixture(HostOptions::bundledRoot());
    QTemporaryDir temp;
    const QString doomed = temp.path() + "/LBwriter1";
    QDir().mkpath(doomed + "/inner");
    const auto rmdir = [&](const QString& path, std::vector<HostValue> flag = {str("s")}) {
        flag.insert(flag.begin(), {str("rmdir"), str(path.toStdString())});
        const auto result = fixture.run("tdprivate", flag, 3);
        EXPECT_TRUE(result.ok);
        return result.ok ? Strings{result.outputs[0].isLogical() ? "logical" : "double",
                                   std::to_string(int(result.outputs[0].scalar())), result.outputs[1].toString(),
                                   result.outputs[2].toString()}
                         : Strings{};
    };
    EXPECT_EQ(rmdir(doomed, {}), (Strings{"logical", "0", "Could not remove " + doomed.toStdString() + ": it is not empty.",
                                          "Tandril:Host:rmdir:Failed"}));
    EXPECT_TRUE(QFileInfo::exists(doomed + "/inner"));
    EXPECT_EQ(rmdir(doomed), (Strings{"logical", "1", "", ""}));
    EXPECT_FALSE(QFileInfo::exists(doomed));
    const Strings again = rmdir(doomed);
    ASSERT_EQ(again.size(), 4u);
    EXPECT_EQ((Strings{again[1], again[3]}), (Strings{"0", "Tandril:Host:rmdir:NotFound"}));
    EXPECT_FALSE(again[2].empty());
    const Strings holder = rmdir(QDir(HostOptions::bundledRoot()).absoluteFilePath(".."));
    EXPECT_EQ((Strings{holder.at(1), holder.at(3)}), (Strings{"0", "Tandril:Host:rmdir:Refused"}));
    EXPECT_TRUE(QFileInfo::exists(HostOptions::bundledRoot()));
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
