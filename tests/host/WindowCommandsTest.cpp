#include "HostTestSupport.h"

#include "LibraryFileParser.h"
#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

using Strings = std::vector<std::string>;

class WindowCommandsTest : public ::testing::Test {
protected:
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

TEST_F(WindowCommandsTest, NewSystemsTakeTheFirstFreeUntitledNameAndOpeningShowsOnlyWhenAsked)
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
}

TEST_F(WindowCommandsTest, AddedBlocksAreCopiesWithUniqueNamesAndOnlyIntoUnlockedSystems)
{
    newSystem("Model");
    const auto add = [&](const std::string& block, const std::string& into) {
        return ok("private_td_add_block", {str(block), str(into)});
    };
    const std::string gain = "arithmetica/Basic Operations/Gain";
    for (const std::string& block :
         {gain, gain, gain, std::string("wavecraft/Signal Conversion/A//D Converter"), std::string("kinetics/Discrete/Zero-Order Hold")})
        ASSERT_TRUE(add(block, "untitled")) << block;
    EXPECT_EQ(blockNames("untitled"), (Strings{"Gain", "Gain1", "Gain2", "A/D Converter", "Zero-Order\nHold"}));
    const auto& blocks = fixture.host().systems().find("untitled")->document.blocks;
    EXPECT_LT(blocks[0].position.right, blocks[1].position.left) << "placed side by side";
    EXPECT_EQ(blocks[0].description.rfind("Multiplies its input", 0), 0u);

    ASSERT_TRUE(ok("private_td_drop_block", {str("kinetics/Mechanical"), str("untitled"), HostValue::doubleMatrix(1, 2, {300, 200})}));
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
              std::make_tuple(std::string("Zähler"), BlockType::LibraryRef, std::string("wavecraft"), std::string("Displays")));

    ASSERT_TRUE(ok("close_system", {str(name)}));
    ASSERT_FALSE(fixture.host().systems().isLoaded(name));
    const auto opened = fixture.run("open_system", {str(file)});
    ASSERT_TRUE(opened.ok) << opened.errorMessage;
    EXPECT_EQ(front(), (Strings{name, "Model", "0"}));
    EXPECT_EQ(blockNames(name), (Strings{"Zähler", "Displays"}));
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
