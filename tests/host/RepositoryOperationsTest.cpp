#include "HostTestSupport.h"

#include <QDir>
#include <QFile>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

class ExampleRoot : public ::testing::Test {
protected:
    HostFixture fixture{HostOptions::bundledRoot()};
};

std::vector<std::string> strings(const HostValue& cell)
{
    return cell.toStringList();
}

TEST_F(ExampleRoot, TdBlocksDataListsEveryEntryInPathOrderWithNineOutputs)
{
    const auto result = fixture.tdprivate("lb_getTdBlocksData", 9, {HostValue::cellArray(0, 0)});
    ASSERT_TRUE(result.ok) << result.errorMessage;
    ASSERT_EQ(result.outputs.size(), 9u);
    EXPECT_EQ(strings(result.outputs[0]),
              (std::vector<std::string>{"Arithmetica", "Kinetics", "Switchyard", "Tandril", "Wavecraft Signals",
                                        "Signal Workbench"}));
    EXPECT_EQ(strings(result.outputs[1]), (std::vector<std::string>{"arithmetica", "kinetics", "switchyard",
                                                                    "tandril", "wavecraft", "signal_workbench"}));
    EXPECT_EQ(result.outputs[0].columns(), 6u);
    EXPECT_EQ(strings(result.outputs[2])[3], "tandril");
    EXPECT_EQ(result.outputs[3].doubles(), std::vector<double>(6, 1.0));
    EXPECT_EQ(strings(result.outputs[4])[3], "toolbox/tandril/blocks/tree.svg");
    EXPECT_EQ(strings(result.outputs[5])[0], "toolbox/arithmetica/tree.svg");
    EXPECT_EQ(strings(result.outputs[6]),
              (std::vector<std::string>{"Product", "Product", "Product", "Product", "Product", "Palette"}));
    EXPECT_EQ(strings(result.outputs[7].cell(5)), (std::vector<std::string>{"Wavecraft Signals", "Arithmetica"}));
    EXPECT_TRUE(result.outputs[7].cell(0).isEmpty());
    EXPECT_EQ(strings(result.outputs[8].cell(1)), (std::vector<std::string>{"toolbox/kinetics/kinetics.tdlib.json"}));
    EXPECT_TRUE(fixture.report().errors.empty());
}

TEST_F(ExampleRoot, ChildrenComeInFileOrderAndHandlesStayTheSame)
{
    const auto top = fixture.children("tandril");
    ASSERT_EQ(top.size(), 4u);
    std::vector<std::string> names;
    for (double handle : top)
        names.push_back(fixture.blockData(handle).at(0).toString());
    EXPECT_EQ(names, (std::vector<std::string>{"Ports & Subsystems", "Annotations", "Signal Attributes",
                                               "Frequently Used"}));
    EXPECT_EQ(fixture.children("tandril"), top) << "asking again gives the same handles";
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(top[0])), fixture.children("tandril/Ports & Subsystems"));
    EXPECT_EQ(fixture.children("kinetics/Mechanical/Rotational/Gear Trains").size(), 3u);

    const double gain = fixture.childNamed("arithmetica/Basic Operations", "Gain");
    ASSERT_NE(gain, 0);
    const auto leaf = fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::doubleScalar(gain)});
    ASSERT_TRUE(leaf.ok);
    EXPECT_TRUE(leaf.outputs[0].isEmpty()) << "a block has no children";
    EXPECT_EQ(leaf.outputs[0].rows(), 1u);
}

TEST_F(ExampleRoot, BlockDataGivesNameDescriptionEdgesAndType)
{
    const double sine = fixture.childNamed("wavecraft/Sources", "Sine Wave");
    const auto data = fixture.blockData(sine);
    ASSERT_EQ(data.size(), 6u);
    EXPECT_EQ(data[1].toString().rfind("Produces a sinusoid", 0), 0u);
    EXPECT_EQ(data[2].doubles(), (std::vector<double>{30, 30, 100, 80}));
    EXPECT_EQ(data[2].rows(), 1u);
    EXPECT_EQ(data[3].toString(), "Block");
    EXPECT_EQ(data[4].toString(), "");
    EXPECT_EQ(data[5].toString(), "");

    const auto sub = fixture.blockData(fixture.childNamed("wavecraft", "Sources"));
    EXPECT_EQ(sub.at(3).toString(), "SubSystem");
}

TEST_F(ExampleRoot, ReferenceDataNamesTargetLibraryAndPathAndBorrowsItsDescription)
{
    const double ref = fixture.childNamed("tandril/Frequently Used", "Wave Sources");
    const auto data = fixture.blockData(ref);
    ASSERT_EQ(data.size(), 6u);
    EXPECT_EQ(data[3].toString(), "LibraryRef");
    EXPECT_EQ(data[4].toString(), "wavecraft");
    EXPECT_EQ(data[5].toString(), "wavecraft/Sources");
    EXPECT_EQ(data[1].toString(), fixture.blockData(fixture.childNamed("wavecraft", "Sources")).at(1).toString());

    const auto whole = fixture.blockData(fixture.childNamed("tandril/Frequently Used", "Arithmetic"));
    EXPECT_EQ(whole.at(5).toString(), "arithmetica");
    const auto own = fixture.blockData(fixture.childNamed("tandril/Frequently Used", "Logic"));
    EXPECT_EQ(own.at(1).toString().rfind("Logical operators", 0), 0u) << "a reference's own text wins";

    EXPECT_EQ(fixture.children(HostValue::doubleScalar(ref)), fixture.children("wavecraft/Sources"))
        << "a reference's children are its target's";
    EXPECT_EQ(fixture.children("tandril/Frequently Used/Wave Sources/Sine Wave").size(), 0u);
}

TEST_F(ExampleRoot, SlashesAreDoubledAndLineFeedsMatchBlanksInPaths)
{
    const auto conversion = fixture.children("wavecraft/Signal Conversion");
    ASSERT_FALSE(conversion.empty());
    EXPECT_EQ(fixture.blockData(conversion[0]).at(0).toString(), "A//D Converter");
    const auto minMax = fixture.tdprivate("lb_getChildrenHandles", 1,
                                          {HostValue::string("arithmetica/Functions/Min//Max")});
    EXPECT_TRUE(minMax.ok) << minMax.errorMessage;

    const double hold = fixture.childNamed("kinetics/Discrete", "Zero-Order\nHold");
    ASSERT_NE(hold, 0) << "the name keeps its line feed";
    for (const char* path : {"kinetics/Discrete/Zero-Order Hold", "kinetics/Discrete/Zero-Order\nHold"}) {
        const auto byPath = fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::string(path)});
        EXPECT_TRUE(byPath.ok) << path;
    }
    const auto wrong = fixture.tdprivate("lb_getChildrenHandles", 1,
                                         {HostValue::string("wavecraft/Signal Conversion/A/D Converter")});
    EXPECT_FALSE(wrong.ok) << "a single slash separates";
}

TEST_F(ExampleRoot, LibraryDataGivesRootRelativeFileSizeAndDate)
{
    const auto result = fixture.tdprivate("lb_getLibraryData", 3, {HostValue::string("kinetics")});
    ASSERT_TRUE(result.ok) << result.errorMessage;
    EXPECT_EQ(result.outputs[0].cell(0).toString(), "toolbox/kinetics/kinetics.tdlib.json");
    const QFileInfo info(HostOptions::bundledRoot() + "/toolbox/kinetics/kinetics.tdlib.json");
    EXPECT_EQ(result.outputs[1].scalar(), static_cast<double>(info.size()));
    EXPECT_EQ(result.outputs[2].scalar(), static_cast<double>(info.lastModified().toSecsSinceEpoch()));

    EXPECT_FALSE(fixture.tdprivate("lb_getLibraryData", 3, {HostValue::string("nowhere")}).ok);
    EXPECT_EQ(fixture.report().errors.size(), 1u);
}

TEST_F(ExampleRoot, BadArgumentsAndUnknownHandlesFailWithAReportLine)
{
    EXPECT_FALSE(fixture.tdprivate("lb_getBlockData", 6, {HostValue::doubleScalar(1e9)}).ok);
    EXPECT_FALSE(fixture.tdprivate("lb_getBlockData", 6, {HostValue::doubleScalar(0.5)}).ok);
    EXPECT_FALSE(fixture.tdprivate("lb_getBlockData", 6, {HostValue::string("tandril")}).ok);
    EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::logicalScalar(true)}).ok);
    EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::string("")}).ok);
    EXPECT_EQ(fixture.report().errors.size(), 5u);
    const auto tooMany = fixture.tdprivate("lb_getChildrenHandles", 2, {HostValue::string("tandril")});
    EXPECT_FALSE(tooMany.ok);
    EXPECT_EQ(tooMany.errorId, "Tandril:Host:TooManyOutputs");
    const auto unknown = fixture.host().callWithTrap("tdprivate", 0, {HostValue::string("lb_frobnicate")});
    EXPECT_EQ(unknown.errorId, "Tandril:Host:UnknownOperation");
    EXPECT_FALSE(fixture.host().callWithTrap("no_such_function", 0, {}).ok);
}

TEST_F(ExampleRoot, SubSystemIconsAreWrittenOnePerChildAsValidSvg)
{
    QTemporaryDir out;
    const std::string parent = "switchyard/Logic";
    const auto handles = fixture.children(parent);
    std::vector<std::string> paths, files;
    for (std::size_t i = 0; i < handles.size(); ++i) {
        paths.push_back(parent + "/" + fixture.blockData(handles[i]).at(0).toString());
        files.push_back((out.path() + QStringLiteral("/d1/f%1icon.xml").arg(i)).toStdString());
    }
    const auto result = fixture.tdprivate("lb_createSubSystemIcons", 0,
                                          {HostValue::string(parent), HostValue::cellOfStrings(paths),
                                           HostValue::cellOfStrings(files)});
    ASSERT_TRUE(result.ok) << result.errorMessage;
    for (const std::string& file : files) {
        QSvgRenderer renderer(QString::fromStdString(file));
        EXPECT_TRUE(renderer.isValid()) << file;
    }
    QFile zaehler(QString::fromStdString(files[10]));
    ASSERT_TRUE(zaehler.open(QIODevice::ReadOnly));
    EXPECT_TRUE(zaehler.readAll().contains("n++"));
}

TEST_F(ExampleRoot, IconCallWithAnUnknownChildWritesNothing)
{
    QTemporaryDir out;
    const std::vector<std::string> paths{"switchyard/Logic/AND Gate", "switchyard/Logic/Nothing Here"};
    const std::vector<std::string> files{(out.path() + "/a.svg").toStdString(), (out.path() + "/b.svg").toStdString()};
    const auto result = fixture.tdprivate("lb_createSubSystemIcons", 0,
                                          {HostValue::string("switchyard/Logic"), HostValue::cellOfStrings(paths),
                                           HostValue::cellOfStrings(files)});
    EXPECT_FALSE(result.ok);
    EXPECT_TRUE(QDir(out.path()).isEmpty());
    ASSERT_EQ(fixture.report().errors.size(), 1u);
    EXPECT_NE(fixture.report().errors[0].find("Nothing Here"), std::string::npos);

    const auto uneven = fixture.tdprivate("lb_createSubSystemIcons", 0,
                                          {HostValue::string("switchyard/Logic"), HostValue::cellOfStrings(paths),
                                           HostValue::cellOfStrings({files[0]})});
    EXPECT_FALSE(uneven.ok);
    EXPECT_TRUE(QDir(out.path()).isEmpty());
}

TEST(RemoveDirectory, RemovesATreeAndAnswersStatusMessageAndId)
{
    HostFixture fixture(HostOptions::bundledRoot());
    QTemporaryDir temp;
    const QString doomed = temp.path() + "/LBwriter1";
    QDir().mkpath(doomed + "/inner");
    QFile(doomed + "/inner/file.txt").open(QIODevice::WriteOnly);
    const auto call = [&](const QString& path) {
        return fixture.host().callWithTrap("tdprivate", 3,
                                           {HostValue::string("rmdir"), HostValue::string(path.toStdString()),
                                            HostValue::string("s")});
    };
    auto result = call(doomed);
    ASSERT_TRUE(result.ok);
    EXPECT_TRUE(result.outputs[0].isLogical());
    EXPECT_EQ(result.outputs[0].scalar(), 1.0);
    EXPECT_FALSE(QFileInfo::exists(doomed));

    result = call(doomed);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.outputs[0].scalar(), 0.0);
    EXPECT_FALSE(result.outputs[1].toString().empty());
    EXPECT_EQ(result.outputs[2].toString(), "Tandril:Host:rmdir:NotFound");

    result = call(QDir(HostOptions::bundledRoot()).absoluteFilePath(".."));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.outputs[0].scalar(), 0.0) << "never a directory that holds the root";
    EXPECT_TRUE(QFileInfo::exists(HostOptions::bundledRoot()));
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
