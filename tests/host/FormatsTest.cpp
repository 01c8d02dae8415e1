#include "HostTestSupport.h"

#include "LibraryFileParser.h"
#include "LibraryFileWriter.h"

#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

using Names = std::vector<std::string>;

// Everything the format can say, 64 ports a side (the limit) included. Save As
// may name a folder that is not there yet; where no folder can be made, the
// save fails with the reason and the file in the way stays as it was.
TEST(LibraryFileTest, WriterOutputReadsBackToTheSameDocument)
{
    const BlockRecord plain{"Rate\nLimiter", BlockType::Block, "Limits the slope.", true, {1.5, 2, 70, 52.25},
                            {IconShape::Diamond, "rate", 64, 64, ""}, true, {}, {}, {}};
    const BlockRecord drawn{"A/D", BlockType::Block, "", false, {}, {IconShape::Rectangle, "", 1, 1,
                            "<svg xmlns=\"http://www.w3.org/2000/svg\"/>"}, true, {}, {}, {}};
    const BlockRecord ref{"Über", BlockType::LibraryRef, "", false, {}, {}, false, {}, {"kinetics", "Continuous"}, {}};
    const BlockRecord sub{"Group", BlockType::SubSystem, "", false, {}, {}, false, {plain, ref}, {}, {}};
    LibraryDocument document;
    std::tie(document.name, document.description, document.blocks) =
        std::make_tuple("roundtrip", "Everything the format can say.", std::vector<BlockRecord>{plain, drawn, sub});

    QTemporaryDir directory;
    const QString file = directory.path() + "/new/roundtrip.tdlib.json";
    QString error;
    ASSERT_TRUE(LibraryFileWriter::save(document, file, error)) << error.toStdString();
    FileIssue issue;
    const auto read = LibraryFileParser::parseFile(file, "roundtrip", issue);
    ASSERT_TRUE(read) << issue.toString();
    EXPECT_EQ(LibraryFileWriter::toBytes(*read), LibraryFileWriter::toBytes(document));
    // The bytes agree even where writer and reader both drop a field; these do not.
    const BlockRecord& back = read->blocks[0];
    EXPECT_EQ(std::make_tuple(back.name, back.description, back.icon.shape, back.icon.inputs, back.icon.outputs,
                              back.position.bottom),
              std::make_tuple(plain.name, plain.description, IconShape::Diamond, 64, 64, 52.25));
    const BlockRecord& inner = read->blocks[2].blocks[1];
    EXPECT_EQ(std::make_tuple(read->blocks[1].icon.svg, inner.target.path, inner.hasDescription),
              std::make_tuple(drawn.icon.svg, std::string("Continuous"), false));

    const QByteArray saved = LibraryBrowser::Testing::readFile(file.toStdString());
    EXPECT_FALSE(LibraryFileWriter::save(document, file + "/inner.tdlib.json", error));
    EXPECT_TRUE(error.startsWith("cannot make the directory ")) << error.toStdString();
    EXPECT_EQ(LibraryBrowser::Testing::readFile(file.toStdString()), saved);
}

TEST(HostOptionsTest, FlagsBeatEnvironmentWhichBeatsDefaults)
{
    QProcessEnvironment environment;
    for (const auto& [name, value] : {std::pair{"NUMORA_ROOT", "/env/root"}, std::pair{"NUMORA_PREFDIR", "/env/prefs"},
                                      std::pair{"NUMORA_PATH", "/env/a::/env/b"}})
        environment.insert(name, value);
    HostOptions options;
    QStringList rest;
    QString error;
    // Root, preferences, path, what is left for the host, verbose; or the refusal.
    const auto resolved = [&](const QStringList& arguments, const QProcessEnvironment& from) {
        if (!HostOptions::resolve(arguments, from, options, rest, error))
            return QStringList{"refused: " + error};
        return QStringList{options.root, options.preferencesDirectory, options.path.join(':'), rest.join(' '),
                           options.verbose ? "verbose" : ""};
    };
    EXPECT_EQ(resolved({"--root", "/flag/root", "-x", "--path=/p1:/p2", "file.mdl"}, environment),
              (QStringList{"/flag/root", "/env/prefs", "/p1:/p2", "-x file.mdl", ""}));
    EXPECT_EQ(resolved({"--verbose"}, environment),
              (QStringList{"/env/root", "/env/prefs", "/env/a:/env/b", "", "verbose"}));
    EXPECT_EQ(resolved({"--prefdir"}, environment), QStringList{"refused: --prefdir needs a value"});
    EXPECT_TRUE(resolved({"--root="}, environment).front().startsWith("refused: "));
    // (Without a root named, the build's copy of the example root serves:
    // TdlbUsageTest runs tdlb so and sees the sources untouched.)
}

// Each case breaks files in a copy of the example root; at the end of every
// case the files must be exactly as the case left them.
class BadInput : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(snapshot(), before) << "the host changed a file"; }

    std::map<QString, QByteArray> snapshot() const { return LibraryBrowser::Testing::snapshot(root.path().toStdString()); }
    void breakFile(const QString& relative, const QByteArray& bytes)
    {
        root.write(relative, bytes);
        before = snapshot();
    }
    // The one error line of a failed children call.
    std::string childrenError(const std::string& path)
    {
        HostFixture fixture(root.path());
        EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {str(path)}).ok);
        EXPECT_EQ(fixture.errors().size(), 1u);
        return fixture.errors().empty() ? std::string() : fixture.errors().front();
    }

    RootCopy root;
    std::map<QString, QByteArray> before = snapshot();
};

TEST_F(BadInput, FileErrorsNameFileLineColumnAndField)
{
    const QByteArray empty = libraryJson("broken", "[]");
    const auto one = [](const std::string& block) { return libraryOf("broken", {block}); };
    // Where (after "broken.tdlib.json:"), and what.
    const std::vector<std::tuple<QByteArray, std::string, std::string>> cases{
        {libraryOf("broken", {R"({"name": "Fine", "type": "Block"})", R"({"name": 5, "type": "Block"})"}),
         "7:14: blocks[1].name:", "expected a string"},
        {one(R"({"name": "Odd", "type": "Widget"})"), "6:29: blocks[0].type:", "unknown block type \"Widget\""},
        {one("{\"name\": \"S\", \"type\": \"SubSystem\", \"blocks\": [\n      {\"name\": \"G\", \"type\": \"Block\", "
             "\"icon\": {\"inputs\": \"two\"}}\n    ]}"), "7:57: blocks[0].blocks[0].icon.inputs:", "whole number"},
        {one(R"({"name": "Bus", "type": "Block", "icon": {"inputs": 65}})"), "6:57: blocks[0].icon.inputs:", "from 0 to 64"},
        {one(R"({"name": "A", "type": "Block", "position": [1, 2, 3]})"), "6:48: blocks[0].position:", "four numbers"},
        // Columns count characters, not bytes.
        {one(R"({"name": "Zähler", "type": "Block", "colour": "red"})"), "6:51: blocks[0].colour:", "unknown field"},
        {libraryOf("broken", {R"({"name": "Two\nLines", "type": "Block"})", R"({"name": "Two Lines", "type": "Block"})"}),
         "7:14: blocks[1].name:", "already named"},
        {one(R"({"name": "Bell\u0007", "type": "Block"})"), "6:14: blocks[0].name:", "control character"},
        {one(R"({"name": "R", "type": "LibraryRef"})"), "6:5: blocks[0].target:", "needs a target"},
        {one(R"({"name": "B", "type": "Block", "blocks": []})"), "6:46: blocks[0].blocks:", "only a SubSystem"},
        {one(R"({"name": "I", "type": "Block", "icon": {"svg": "<svg><g></svg>"}})"), "6:52: blocks[0].icon.svg:",
         "well-formed"},
        {libraryJson("broken", "{}"), "5:13: blocks:", "expected an array"},
        {QByteArray(empty).replace("\"version\": 1", "\"version\": 7"), "3:14: version:", "version 7 is not supported"},
        {QByteArray(empty).replace("tandril-library", "something-else"), "2:13: format:", "expected \"tandril-library\""},
        {libraryJson("other", "[]"), "4:11: name:", "the library is named \"other\""},
        {QByteArray(empty).replace("\"version\": 1,", "\"version\": 1, \"kind\": \"palette\","), "3:25: kind:",
         "unknown kind \"palette\""},
        {"[1, 2]", "1:1:", "one JSON object"},
        {empty.left(empty.size() - 8), "5:10:", "not valid JSON"},
    };
    for (const auto& [file, where, what] : cases) {
        breakFile("toolbox/kinetics/broken.tdlib.json", file);
        const std::string error = childrenError("broken");
        EXPECT_TRUE(contains(error, "broken.tdlib.json:" + where + " ") && contains(error, what)) << error;
    }

    QFile::remove(root.file("toolbox/kinetics/broken.tdlib.json"));
    QDir().mkpath(root.file("toolbox/kinetics/broken.tdlib.json"));
    before = snapshot();
    EXPECT_TRUE(contains(childrenError("broken"), "broken.tdlib.json: cannot read the file"));
}

TEST_F(BadInput, BrokenAndCyclicReferencesFailOnlyTheCallsThatNeedThem)
{
    const auto ref = [](const std::string& name, const std::string& library, const std::string& path = "") {
        return R"({"name": ")" + name + R"(", "type": "LibraryRef", "target": {"library": ")" + library + "\""
               + (path.empty() ? "" : R"(, "path": ")" + path + "\"") + "}}";
    };
    breakFile("toolbox/kinetics/refs.tdlib.json",
              libraryOf("refs", {R"({"name": "Fine", "type": "Block"})", ref("Lost", "nowhere"),
                                 ref("Astray", "kinetics", "Continuous/Missing"),
                                 ref("Leaf", "kinetics", "Continuous/Integrator")}));
    breakFile("toolbox/kinetics/loopa.tdlib.json", libraryOf("loopa", {ref("R", "loopb", "S")}));
    breakFile("toolbox/kinetics/loopb.tdlib.json", libraryOf("loopb", {ref("S", "loopa", "R")}));
    breakFile("toolbox/kinetics/selfish.tdlib.json",
              libraryOf("selfish", {R"({"name": "Outer", "type": "SubSystem", "blocks": [)" "\n      "
                                    + ref("Inner", "selfish", "Outer") + "\n    ]}"}));
    HostFixture fixture(root.path());
    const auto handles = fixture.children("refs");
    ASSERT_EQ(handles.size(), 4u) << "the library itself reads fine";
    EXPECT_EQ(fixture.blockData(handles[0]).size(), 6u);
    EXPECT_FALSE(fixture.tdprivate("lb_getChildrenHandles", 1, {HostValue::doubleScalar(handles[1])}).ok);

    const std::vector<std::tuple<std::string, std::size_t, std::string, std::string>> cases{
        {"refs", 1, "refs.tdlib.json:7:", "blocks[1].target.library: the reference \"refs/Lost\" cannot be resolved: "
                                          "no library \"nowhere\" on the path"},
        {"refs", 2, "refs.tdlib.json:8:", "blocks[2].target.path:"},
        {"refs", 2, "refs.tdlib.json:8:", "no block \"Missing\""},
        {"refs", 3, "refs.tdlib.json:9:", "names the block \"kinetics/Continuous/Integrator\""},
        {"loopa", 0, "loopa.tdlib.json:6:", "the references form a cycle: loopa/R -> loopb/S -> loopa/R"},
        {"selfish/Outer", 0, "blocks[0].blocks[0].target:", "\"selfish/Outer/Inner\" lies inside its own target"}};
    for (const auto& [parent, index, where, what] : cases) {
        fixture.clearErrors();
        EXPECT_TRUE(fixture.blockData(fixture.children(parent).at(index)).empty());
        ASSERT_EQ(fixture.errors().size(), 1u) << parent;
        EXPECT_TRUE(contains(fixture.errors()[0], where) && contains(fixture.errors()[0], what)) << fixture.errors()[0];
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
        {R"("type": "Product", "children": ["a,b"], "dependencies": ["x|y"]}]})", "only a Palette lists children"},
        {R"("type": "Product"}], "extras": 1})", "extras: unknown field (expected one of: format, version, entries)"}};
    for (const auto& [tail, says] : cases) {
        breakFile("toolbox/kinetics/tdblocks.json", QByteArray::fromStdString(head + tail));
        HostFixture fixture(root.path());
        const auto result = fixture.tdprivate("lb_getTdBlocksData", 9, {HostValue::cellArray(0, 0)});
        ASSERT_TRUE(result.ok);
        EXPECT_EQ(result.outputs[0].toStringList(), (std::vector<std::string>{"Arithmetica", "Switchyard", "Tandril",
                                                                              "Wavecraft Signals", "Signal Workbench"}));
        ASSERT_EQ(fixture.errors().size(), 1u);
        EXPECT_TRUE(contains(fixture.errors()[0], says)) << fixture.errors()[0];
        EXPECT_TRUE(fixture.warnings().empty()) << fixture.warnings().front();
    }
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
