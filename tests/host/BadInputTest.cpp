#include "HostTestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// Each case breaks files in a copy of the example root; at the end of every
// case the files must be exactly as the case left them.
class BadInput : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(root.snapshot(), before) << "the host changed a file"; }

    void breakFile(const QString& relative, const QByteArray& bytes)
    {
        root.write(relative, bytes);
        before = root.snapshot();
    }
    // The one error line of a failed children call.
    std::string childrenError(const std::string& path)
    {
        HostFixture fixture(root.path());
        const auto result = fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::string(path)});
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(fixture.report().errors.size(), 1u);
        return fixture.report().errors.empty() ? std::string() : fixture.report().errors.front();
    }

    RootCopy root;
    std::map<QString, QByteArray> before = root.snapshot();
};

TEST_F(BadInput, TruncatedJsonNamesFileLineAndColumn)
{
    QFile original(root.file("toolbox/kinetics/kinetics.tdlib.json"));
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    const QByteArray truncated = original.readAll().left(1000);
    original.close();
    breakFile("toolbox/kinetics/kinetics.tdlib.json", truncated);
    const std::string error = childrenError("kinetics");
    const int lastLine = static_cast<int>(truncated.count('\n')) + 1;
    EXPECT_TRUE(contains(error, "kinetics.tdlib.json:" + std::to_string(lastLine) + ":")) << error;
    EXPECT_TRUE(contains(error, "not valid JSON")) << error;
}

TEST_F(BadInput, SchemaErrorsNameLineColumnAndField)
{
    struct Case {
        std::string blocks;
        std::string where;
        std::string says;
    };
    const std::vector<Case> cases{
        {"[\n    {\"name\": \"Fine\", \"type\": \"Block\"},\n    {\"name\": 5, \"type\": \"Block\"}\n  ]",
         ":7:14: blocks[1].name:", "expected a string"},
        {"[\n    {\"name\": \"Odd\", \"type\": \"Widget\"}\n  ]",
         ":6:29: blocks[0].type:", "unknown block type \"Widget\""},
        {"[\n    {\"name\": \"S\", \"type\": \"SubSystem\", \"blocks\": [\n"
         "      {\"name\": \"G\", \"type\": \"Block\", "
         "\"icon\": {\"inputs\": \"two\"}}\n    ]}\n  ]",
         ":7:57: blocks[0].blocks[0].icon.inputs:", "whole number"},
        {"[\n    {\"name\": \"A\", \"type\": \"Block\", \"position\": [1, 2, 3]}\n  ]", ":6:48: blocks[0].position:",
         "four numbers"},
        {"[\n    {\"name\": \"A\", \"type\": \"Block\", \"colour\": \"red\"}\n  ]",
         ":6:46: blocks[0].colour:", "unknown field"},
        {"[\n    {\"name\": \"Two\\nLines\", \"type\": \"Block\"},\n"
         "    {\"name\": \"Two Lines\", \"type\": \"Block\"}\n  ]",
         ":7:14: blocks[1].name:", "already named"},
        {"[\n    {\"name\": \"R\", \"type\": \"LibraryRef\"}\n  ]", ":6:5: blocks[0].target:", "needs a target"},
        {"[\n    {\"name\": \"B\", \"type\": \"Block\", \"blocks\": []}\n  ]",
         ":6:46: blocks[0].blocks:", "only a SubSystem"},
        {"[\n    {\"name\": \"I\", \"type\": \"Block\", \"icon\": {\"svg\": \"<svg><g></svg>\"}}\n  ]",
         ":6:52: blocks[0].icon.svg:", "well-formed"},
        {"{}", ":5:13: blocks:", "expected an array"},
    };
    for (const Case& c : cases) {
        breakFile("toolbox/kinetics/broken.tdlib.json", libraryJson("broken", c.blocks));
        const std::string error = childrenError("broken");
        EXPECT_TRUE(contains(error, "broken.tdlib.json" + c.where)) << error;
        EXPECT_TRUE(contains(error, c.says)) << error;
    }
}

TEST_F(BadInput, HeaderErrorsAreCaught)
{
    QByteArray text = libraryJson("broken", "[]");
    breakFile("toolbox/kinetics/broken.tdlib.json", QByteArray(text).replace("\"version\": 1", "\"version\": 7"));
    EXPECT_TRUE(contains(childrenError("broken"), ":3:14: version: version 7 is not supported"));
    breakFile("toolbox/kinetics/broken.tdlib.json", QByteArray(text).replace("tandril-library", "something-else"));
    EXPECT_TRUE(contains(childrenError("broken"), "format:"));
    breakFile("toolbox/kinetics/broken.tdlib.json", libraryJson("other", "[]"));
    EXPECT_TRUE(contains(childrenError("broken"), "name: the library is named \"other\""));
    breakFile("toolbox/kinetics/broken.tdlib.json", "[1, 2]");
    EXPECT_TRUE(contains(childrenError("broken"), "one JSON object"));
}

TEST_F(BadInput, UnreadableFileIsNamed)
{
    QFile::remove(root.file("toolbox/kinetics/kinetics.tdlib.json"));
    QDir().mkpath(root.file("toolbox/kinetics/kinetics.tdlib.json"));
    before = root.snapshot();
    const std::string error = childrenError("kinetics");
    EXPECT_TRUE(contains(error, "kinetics.tdlib.json: cannot read the file")) << error;
}

TEST_F(BadInput, BrokenReferencesFailOnlyTheCallsThatNeedThem)
{
    breakFile("toolbox/kinetics/refs.tdlib.json",
              libraryJson("refs", "[\n    {\"name\": \"Fine\", \"type\": \"Block\"},\n"
                                  "    {\"name\": \"Lost\", \"type\": \"LibraryRef\", \"target\": {\"library\": "
                                  "\"nowhere\"}},\n"
                                  "    {\"name\": \"Astray\", \"type\": \"LibraryRef\", \"target\": {\"library\": "
                                  "\"kinetics\", \"path\": \"Continuous/Missing\"}},\n"
                                  "    {\"name\": \"Leaf\", \"type\": \"LibraryRef\", \"target\": {\"library\": "
                                  "\"kinetics\", \"path\": \"Continuous/Integrator\"}}\n  ]"));
    HostFixture fixture(root.path());
    const auto handles = fixture.children("refs");
    ASSERT_EQ(handles.size(), 4u) << "the library itself reads fine";
    EXPECT_EQ(fixture.blockData(handles[0]).size(), 6u);

    const auto expectFailure = [&](double handle, const std::string& where, const std::string& says) {
        fixture.report().errors.clear();
        EXPECT_TRUE(fixture.blockData(handle).empty());
        ASSERT_EQ(fixture.report().errors.size(), 1u);
        const std::string& error = fixture.report().errors[0];
        EXPECT_TRUE(contains(error, "refs.tdlib.json" + where)) << error;
        EXPECT_TRUE(contains(error, says)) << error;
    };
    expectFailure(handles[1], ":7:", "blocks[1].target.library: the reference \"refs/Lost\" cannot be resolved");
    expectFailure(handles[1], ":7:", "no library \"nowhere\" on the path");
    expectFailure(handles[2], ":8:", "blocks[2].target.path:");
    expectFailure(handles[2], ":8:", "no block \"Missing\"");
    expectFailure(handles[3], ":9:", "names the block \"kinetics/Continuous/Integrator\"");
    EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::doubleScalar(handles[1])}).ok);
}

TEST_F(BadInput, CyclesOfReferencesAreFoundAndNamed)
{
    breakFile("toolbox/kinetics/loopa.tdlib.json",
              libraryJson("loopa", "[\n    {\"name\": \"R\", \"type\": \"LibraryRef\", \"target\": {\"library\": "
                                   "\"loopb\", \"path\": \"S\"}}\n  ]"));
    breakFile("toolbox/kinetics/loopb.tdlib.json",
              libraryJson("loopb", "[\n    {\"name\": \"S\", \"type\": \"LibraryRef\", \"target\": {\"library\": "
                                   "\"loopa\", \"path\": \"R\"}}\n  ]"));
    breakFile("toolbox/kinetics/selfish.tdlib.json",
              libraryJson("selfish", "[\n    {\"name\": \"Outer\", \"type\": \"SubSystem\", \"blocks\": [\n"
                                     "      {\"name\": \"Inner\", \"type\": \"LibraryRef\", \"target\": {\"library\": "
                                     "\"selfish\", \"path\": \"Outer\"}}\n    ]}\n  ]"));
    HostFixture fixture(root.path());
    const auto loop = fixture.children("loopa");
    ASSERT_EQ(loop.size(), 1u);
    EXPECT_TRUE(fixture.blockData(loop[0]).empty());
    ASSERT_EQ(fixture.report().errors.size(), 1u);
    EXPECT_TRUE(contains(fixture.report().errors[0], "the references form a cycle: loopa/R -> loopb/S -> loopa/R"))
        << fixture.report().errors[0];
    EXPECT_TRUE(contains(fixture.report().errors[0], "loopa.tdlib.json:6:"));

    const auto inner = fixture.children("selfish/Outer");
    ASSERT_EQ(inner.size(), 1u);
    EXPECT_TRUE(fixture.blockData(inner[0]).empty());
    EXPECT_TRUE(contains(fixture.report().errors.back(), "\"selfish/Outer/Inner\" lies inside its own target"));
    EXPECT_TRUE(contains(fixture.report().errors.back(), "blocks[0].blocks[0].target:"));
}

TEST_F(BadInput, BadTdBlocksFileDropsOnlyItsOwnEntries)
{
    breakFile("toolbox/kinetics/tdblocks.json",
              "{\n  \"format\": \"tandril-tdblocks\",\n  \"version\": 1,\n  \"entries\": [\n"
              "    {\"name\": \"Kinetics\", \"library\": \"kinetics\", \"type\": \"Toolbox\"}\n  ]\n}\n");
    HostFixture fixture(root.path());
    const auto result = fixture.tdprivate("lb_getTdBlocksData", 9, {HostValue::cellArray(0, 0)});
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.outputs[0].toStringList(),
              (std::vector<std::string>{"Arithmetica", "Switchyard", "Tandril", "Wavecraft Signals",
                                        "Signal Workbench"}));
    ASSERT_EQ(fixture.report().errors.size(), 1u);
    EXPECT_TRUE(contains(fixture.report().errors[0],
                         "tdblocks.json:5:57: entries[0].type: unknown entry type \"Toolbox\""))
        << fixture.report().errors[0];

    breakFile("toolbox/kinetics/tdblocks.json",
              "{\"format\": \"tandril-tdblocks\", \"version\": 1, \"entries\": [{\"name\": \"K\", \"library\": "
              "\"kinetics\", \"type\": \"product\", \"children\": [\"x\"]}]}");
    HostFixture again(root.path());
    again.tdprivate("lb_getTdBlocksData", 9, {});
    ASSERT_EQ(again.report().errors.size(), 1u);
    EXPECT_TRUE(contains(again.report().errors[0], "entries[0].children: only a Palette lists children"));
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
