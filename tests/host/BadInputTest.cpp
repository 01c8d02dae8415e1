#include "HostTestSupport.h"
#include "support/Files.h"

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
    void TearDown() override { EXPECT_EQ(snapshot(), before) << "the host changed a file"; }

    std::map<QString, QByteArray> snapshot() const
    {
        return LibraryBrowser::Testing::snapshot(root.path().toStdString());
    }
    void breakFile(const QString& relative, const QByteArray& bytes)
    {
        root.write(relative, bytes);
        before = snapshot();
    }
    // The one error line of a failed children call.
    std::string childrenError(const std::string& path)
    {
        HostFixture fixture(root.path());
        const auto result = fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::string(path)});
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(fixture.errors().size(), 1u);
        return fixture.errors().empty() ? std::string() : fixture.errors().front();
    }

    RootCopy root;
    std::map<QString, QByteArray> before = snapshot();
};

TEST_F(BadInput, FileErrorsNameFileLineColumnAndField)
{
    struct Case {
        QByteArray file;
        std::vector<std::string> says;
    };
    const QByteArray empty = libraryJson("broken", "[]");
    const std::vector<Case> cases{
        {libraryJson("broken",
                     "[\n    {\"name\": \"Fine\", \"type\": \"Block\"},\n    {\"name\": 5, \"type\": \"Block\"}\n  ]"),
         {"broken.tdlib.json:7:14: blocks[1].name:", "expected a string"}},
        {libraryJson("broken", "[\n    {\"name\": \"Odd\", \"type\": \"Widget\"}\n  ]"),
         {"broken.tdlib.json:6:29: blocks[0].type:", "unknown block type \"Widget\""}},
        {libraryJson("broken", "[\n    {\"name\": \"S\", \"type\": \"SubSystem\", \"blocks\": [\n"
                               "      {\"name\": \"G\", \"type\": \"Block\", "
                               "\"icon\": {\"inputs\": \"two\"}}\n    ]}\n  ]"),
         {"broken.tdlib.json:7:57: blocks[0].blocks[0].icon.inputs:", "whole number"}},
        {libraryJson("broken", "[\n    {\"name\": \"A\", \"type\": \"Block\", \"position\": [1, 2, 3]}\n  ]"),
         {"broken.tdlib.json:6:48: blocks[0].position:", "four numbers"}},
        // Columns count characters, not bytes.
        {libraryJson("broken", "[\n    {\"name\": \"Zähler\", \"type\": \"Block\", \"colour\": \"red\"}\n  ]"),
         {"broken.tdlib.json:6:51: blocks[0].colour:", "unknown field"}},
        {libraryJson("broken", "[\n    {\"name\": \"Two\\nLines\", \"type\": \"Block\"},\n"
                               "    {\"name\": \"Two Lines\", \"type\": \"Block\"}\n  ]"),
         {"broken.tdlib.json:7:14: blocks[1].name:", "already named"}},
        {libraryJson("broken", "[\n    {\"name\": \"Bell\\u0007\", \"type\": \"Block\"}\n  ]"),
         {"broken.tdlib.json:6:14: blocks[0].name:", "control character"}},
        {libraryJson("broken", "[\n    {\"name\": \"R\", \"type\": \"LibraryRef\"}\n  ]"),
         {"broken.tdlib.json:6:5: blocks[0].target:", "needs a target"}},
        {libraryJson("broken", "[\n    {\"name\": \"B\", \"type\": \"Block\", \"blocks\": []}\n  ]"),
         {"broken.tdlib.json:6:46: blocks[0].blocks:", "only a SubSystem"}},
        {libraryJson("broken",
                     "[\n    {\"name\": \"I\", \"type\": \"Block\", \"icon\": {\"svg\": \"<svg><g></svg>\"}}\n  ]"),
         {"broken.tdlib.json:6:52: blocks[0].icon.svg:", "well-formed"}},
        {libraryJson("broken", "{}"), {"broken.tdlib.json:5:13: blocks:", "expected an array"}},
        {QByteArray(empty).replace("\"version\": 1", "\"version\": 7"), {":3:14: version: version 7 is not supported"}},
        {QByteArray(empty).replace("tandril-library", "something-else"), {"format:"}},
        {libraryJson("other", "[]"), {"name: the library is named \"other\""}},
        {"[1, 2]", {"one JSON object"}},
        {empty.left(empty.size() - 8), {"broken.tdlib.json:5:", "not valid JSON"}},
    };
    for (const Case& c : cases) {
        breakFile("toolbox/kinetics/broken.tdlib.json", c.file);
        const std::string error = childrenError("broken");
        for (const std::string& part : c.says)
            EXPECT_TRUE(contains(error, part)) << error;
    }

    QFile::remove(root.file("toolbox/kinetics/broken.tdlib.json"));
    QDir().mkpath(root.file("toolbox/kinetics/broken.tdlib.json"));
    before = snapshot();
    EXPECT_TRUE(contains(childrenError("broken"), "broken.tdlib.json: cannot read the file"));
}

TEST_F(BadInput, BrokenAndCyclicReferencesFailOnlyTheCallsThatNeedThem)
{
    const std::string ref = "{\"name\": \"%1\", \"type\": \"LibraryRef\", \"target\": {\"library\": \"%2\"%3}}";
    const auto reference = [&](const char* name, const char* library, const char* path = "") {
        return QString::fromStdString(ref).arg(name, library, *path ? QStringLiteral(", \"path\": \"%1\"").arg(path) : "")
            .toStdString();
    };
    breakFile("toolbox/kinetics/refs.tdlib.json",
              libraryJson("refs", "[\n    {\"name\": \"Fine\", \"type\": \"Block\"},\n    " + reference("Lost", "nowhere")
                                      + ",\n    " + reference("Astray", "kinetics", "Continuous/Missing") + ",\n    "
                                      + reference("Leaf", "kinetics", "Continuous/Integrator") + "\n  ]"));
    breakFile("toolbox/kinetics/loopa.tdlib.json", libraryJson("loopa", "[\n    " + reference("R", "loopb", "S") + "\n  ]"));
    breakFile("toolbox/kinetics/loopb.tdlib.json", libraryJson("loopb", "[\n    " + reference("S", "loopa", "R") + "\n  ]"));
    breakFile("toolbox/kinetics/selfish.tdlib.json",
              libraryJson("selfish", "[\n    {\"name\": \"Outer\", \"type\": \"SubSystem\", \"blocks\": [\n      "
                                         + reference("Inner", "selfish", "Outer") + "\n    ]}\n  ]"));
    HostFixture fixture(root.path());
    const auto handles = fixture.children("refs");
    ASSERT_EQ(handles.size(), 4u) << "the library itself reads fine";
    EXPECT_EQ(fixture.blockData(handles[0]).size(), 6u);
    EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::doubleScalar(handles[1])}).ok);

    const std::vector<std::pair<std::pair<std::string, std::size_t>, std::vector<std::string>>> cases{
        {{"refs", 1}, {"refs.tdlib.json:7:", "blocks[1].target.library: the reference \"refs/Lost\" cannot be resolved",
                       "no library \"nowhere\" on the path"}},
        {{"refs", 2}, {"refs.tdlib.json:8:", "blocks[2].target.path:", "no block \"Missing\""}},
        {{"refs", 3}, {"refs.tdlib.json:9:", "names the block \"kinetics/Continuous/Integrator\""}},
        {{"loopa", 0}, {"loopa.tdlib.json:6:", "the references form a cycle: loopa/R -> loopb/S -> loopa/R"}},
        {{"selfish/Outer", 0}, {"\"selfish/Outer/Inner\" lies inside its own target", "blocks[0].blocks[0].target:"}}};
    for (const auto& [block, says] : cases) {
        fixture.clearErrors();
        EXPECT_TRUE(fixture.blockData(fixture.children(block.first).at(block.second)).empty());
        ASSERT_EQ(fixture.errors().size(), 1u) << block.first;
        for (const std::string& part : says)
            EXPECT_TRUE(contains(fixture.errors()[0], part)) << fixture.errors()[0];
    }
}

// A refused file says so once: no warning about a name left out of an entry
// that is left out whole.
TEST_F(BadInput, BadTdBlocksFileDropsOnlyItsOwnEntries)
{
    const std::string head = R"({"format": "tandril-tdblocks", "version": 1, "entries": [)"
                             "\n    {\"name\": \"K\", \"library\": \"kinetics\", ";
    const std::vector<std::pair<std::string, std::string>> cases{
        {R"("type": "Toolbox"}]})", "tdblocks.json:2:50: entries[0].type: unknown entry type \"Toolbox\""},
        {R"("type": "product", "children": ["x"]}]})", "entries[0].children: only a Palette lists children"},
        {R"("type": "Product", "children": ["a,b"], "dependencies": ["x|y"]}]})", "only a Palette lists children"}};
    for (const auto& [tail, says] : cases) {
        breakFile("toolbox/kinetics/tdblocks.json", QByteArray::fromStdString(head + tail));
        HostFixture fixture(root.path());
        const auto result = fixture.tdprivate("lb_getTdBlocksData", 9, {HostValue::cellArray(0, 0)});
        ASSERT_TRUE(result.ok);
        EXPECT_EQ(result.outputs[0].toStringList(),
                  (std::vector<std::string>{"Arithmetica", "Switchyard", "Tandril", "Wavecraft Signals",
                                            "Signal Workbench"}));
        ASSERT_EQ(fixture.errors().size(), 1u);
        EXPECT_TRUE(contains(fixture.errors()[0], says)) << fixture.errors()[0];
        EXPECT_TRUE(fixture.warnings().empty()) << fixture.warnings().front();
    }
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
