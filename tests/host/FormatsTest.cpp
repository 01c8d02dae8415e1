#include "HostTestSupport.h"

#include "BlockPath.h"
#include "LibraryFileParser.h"
#include "LibraryFileWriter.h"

#include "platform/Platform.h"
#include "support/Files.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

using Names = std::vector<std::string>;

TEST(BlockPathTest, OddRunsSeparateEvenRunsStandForSlashesInNames)
{
    const std::vector<std::pair<std::string, Names>> splits{
        {"lib/Sub/Block", {"lib", "Sub", "Block"}}, {"lib/A//D Converter", {"lib", "A/D Converter"}},
        {"lib/a////b", {"lib", "a//b"}},           {"lib///x", {"lib", "x"}},
        {"lib", {"lib"}},                          {"lib/Zero-Order\nHold", {"lib", "Zero-Order\nHold"}}};
    for (const auto& [path, names] : splits)
        EXPECT_EQ(BlockPath::split(path), names) << path;

    const Names names{"lib", "Min/Max", "a//b", "Rate\nLimiter"};
    EXPECT_EQ(BlockPath::join(names), "lib/Min//Max/a////b/Rate\nLimiter");
    EXPECT_EQ(BlockPath::split(BlockPath::join(names)), names);
    EXPECT_EQ(BlockPath::matchKey("Rate\nLimiter"), "Rate Limiter");
    for (const char* path : {"/lead", "trail/", ""})
        EXPECT_FALSE(BlockPath::isAddressable(path)) << path;
    EXPECT_TRUE(BlockPath::isAddressable("in/out"));
}

// Save As may name a folder that is not there yet; where no folder can be
// made, the save fails with the reason and the file in the way stays as it was.
TEST(LibraryFileTest, WriterOutputReadsBackToTheSameDocument)
{
    const BlockRecord plain{"Rate\nLimiter", BlockType::Block, "Limits the slope.", true, {1.5, 2, 70, 52.25},
                            {IconShape::Diamond, "rate", 2, 0, ""}, true, {}, {}, {}};
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
    EXPECT_EQ(std::make_tuple(read->blocks[0].name, read->blocks[0].icon.shape, read->blocks[0].position.bottom),
              std::make_tuple(plain.name, IconShape::Diamond, 52.25));
    EXPECT_EQ(read->blocks[1].icon.svg, drawn.icon.svg);
    EXPECT_EQ(read->blocks[2].blocks[1].target.path, "Continuous");
    EXPECT_FALSE(read->blocks[2].blocks[1].hasDescription);

    const QByteArray saved = LibraryBrowser::Testing::readFile(file.toStdString());
    EXPECT_FALSE(LibraryFileWriter::save(document, file + "/inner.tdlib.json", error));
    EXPECT_TRUE(error.startsWith("cannot make the directory ")) << error.toStdString();
    EXPECT_EQ(LibraryBrowser::Testing::readFile(file.toStdString()), saved);
}

// Side by side, a new row after five; an icon may have up to 64 ports a side.
TEST(LibraryFileTest, MissingPositionsAndIconsGetDefaults)
{
    FileIssue issue;
    const auto document = LibraryFileParser::parseBytes(
        "mem", libraryJson("defaults", R"([{"name": "A", "type": "Block"}, {"name": "B", "type": "SubSystem"},
            {"name": "C", "type": "Block"}, {"name": "D", "type": "Block"}, {"name": "E", "type": "Block"},
            {"name": "F", "type": "Block", "icon": {"inputs": 64, "outputs": 64}}])"),
        "", issue);
    ASSERT_TRUE(document) << issue.toString();
    const auto& blocks = document->blocks;
    EXPECT_EQ(std::make_tuple(blocks[0].position.left, blocks[1].position.left, blocks[5].position.top),
              std::make_tuple(30.0, 140.0, 120.0));
    EXPECT_EQ(std::make_tuple(blocks[0].icon.shape, blocks[1].icon.shape, blocks[0].icon.inputs, blocks[5].icon.inputs,
                              blocks[5].icon.outputs),
              std::make_tuple(IconShape::Rectangle, IconShape::Rounded, 1, 64, 64));
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
    EXPECT_EQ(resolved({"--verbose"}, environment), (QStringList{"/env/root", "/env/prefs", "/env/a:/env/b", "", "verbose"}));
    EXPECT_EQ(resolved({"--prefdir"}, environment), QStringList{"refused: --prefdir needs a value"});
    EXPECT_TRUE(resolved({"--root="}, environment).front().startsWith("refused: "));

    // Without a root named, the build's copy of the example root serves, or a
    // clear refusal if it has not been built; never the sources themselves.
    EXPECT_FALSE(HostOptions::defaultRoot().startsWith(HostOptions::bundledRoot()));
    const QStringList plain = resolved({}, QProcessEnvironment());
    if (QFileInfo::exists(HostOptions::defaultRoot()))
        EXPECT_TRUE(plain.size() == 5 && plain[0] == HostOptions::defaultRoot() && !plain[1].isEmpty() && plain[2].isEmpty())
            << qPrintable(plain.join('|'));
    else
        EXPECT_TRUE(plain.front().contains("--root DIR")) << qPrintable(plain.front());
}

// A verbose host echoes the commands it runs to its console.
TEST(HostInstall, InstallsItselfAsInterpreterAndEnvironmentAndLeavesCleanly)
{
    QTemporaryDir preferences;
    HostOptions options;
    std::tie(options.root, options.preferencesDirectory, options.verbose) =
        std::make_tuple(HostOptions::bundledRoot(), preferences.path(), true);
    {
        EmbeddedHost host(options);
        host.install();
        std::string console;
        host.environment().setConsole([&](const std::string& text) { console += text; });
        EXPECT_EQ(&Platform::interpreter(), &host);
        EXPECT_EQ(Platform::environment().root(), options.root.toStdString());
        EXPECT_EQ(Platform::environment().preferencesDirectory(), preferences.path().toStdString());
        EXPECT_TRUE(Platform::environment().isWarningModeOn(3));
        EXPECT_TRUE(Platform::interpreter().callWithTrap("docroot", 1, {}).ok);
        host.callWithTrap("uiopen", 0, {str("*.mdl")});
        EXPECT_EQ(console, "host: docroot()\nhost: uiopen('*.mdl')\n");
    }
    EXPECT_FALSE(Platform::interpreter().callWithTrap("docroot", 1, {}).ok) << "the standalone default is back";
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
