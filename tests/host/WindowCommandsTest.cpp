#include "HostTestSupport.h"

#include "LibraryFileParser.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

class WindowCommandsTest : public ::testing::Test {
protected:
    HostInterpreter::CallResult run(const std::string& command, std::vector<HostValue> inputs, int outputs = 0)
    {
        return fixture.host().callWithTrap(command, outputs, inputs);
    }
    static HostValue s(const std::string& text) { return HostValue::string(text); }
    std::string current() { return run("private_td_get_current_open_mdl", {}, 1).outputs.at(0).toString(); }
    double loaded(const std::string& name)
    {
        return run("private_td_is_system_loaded", {s(name)}, 1).outputs.at(0).scalar();
    }
    std::vector<std::string> blockNames(const std::string& system)
    {
        std::vector<std::string> names;
        for (const BlockRecord& block : fixture.host().systems().find(system)->document.blocks)
            names.push_back(block.name);
        return names;
    }

    HostFixture fixture{HostOptions::bundledRoot()};
};

TEST_F(WindowCommandsTest, NewSystemsTakeTheFirstFreeUntitledNameAndClosingFreesIt)
{
    EXPECT_EQ(current(), "") << "nothing open yet";
    for (const auto& [type, name] : std::vector<std::pair<std::string, std::string>>{
             {"Model", "untitled"}, {"Library", "untitled1"}, {"Model", "untitled2"}})
        EXPECT_EQ(run("private_td_new_system", {s(type)}, 1).outputs.at(0).toString(), name);
    EXPECT_FALSE(run("private_td_new_system", {s("Spreadsheet")}, 1).ok);
    const auto front = run("private_td_get_current_open_mdl", {}, 3);
    ASSERT_EQ(front.outputs.size(), 3u);
    EXPECT_EQ((std::vector<std::string>{front.outputs[0].toString(), front.outputs[1].toString()}),
              (std::vector<std::string>{"untitled2", "Model"}));
    EXPECT_TRUE(front.outputs[2].isLogical());
    EXPECT_EQ(front.outputs[2].scalar(), 0.0);

    // Loading a library brings no window to the front; closing puts the last shown system there.
    EXPECT_EQ(loaded("kinetics"), 0.0);
    ASSERT_TRUE(run("open_system", {s("kinetics"), s("loadOnly")}).ok);
    EXPECT_EQ(loaded("kinetics"), 1.0);
    EXPECT_EQ(current(), "untitled2");
    EXPECT_TRUE(run("close_system", {s("untitled2")}).ok);
    EXPECT_EQ(current(), "untitled1");
    EXPECT_TRUE(run("close_system", {s("kinetics")}).ok);
    EXPECT_EQ(loaded("kinetics"), 0.0);
    EXPECT_EQ(current(), "untitled1");
    EXPECT_TRUE(run("close_system", {s("untitled1")}).ok);
    EXPECT_TRUE(run("close_system", {s("untitled")}).ok);
    EXPECT_EQ(current(), "");
    const auto again = run("close_system", {s("untitled")});
    EXPECT_NE(again.errorMessage.find("no open system \"untitled\""), std::string::npos) << again.errorMessage;
    EXPECT_FALSE(run("close_system", {}).ok);
    EXPECT_EQ(run("private_td_new_system", {s("Model")}, 1).outputs.at(0).toString(), "untitled");
}

TEST_F(WindowCommandsTest, OpeningShowsALockedLibraryOnlyWhenAsked)
{
    ASSERT_TRUE(run("open_system", {s("kinetics/Mechanical/Rotational")}).ok);
    const auto front = run("private_td_get_current_open_mdl", {}, 3);
    ASSERT_EQ(front.outputs.size(), 3u);
    EXPECT_EQ((std::vector<std::string>{front.outputs[0].toString(), front.outputs[1].toString()}),
              (std::vector<std::string>{"kinetics", "Library"}));
    EXPECT_EQ(front.outputs[2].scalar(), 1.0);
    for (const auto& inputs : std::vector<std::vector<HostValue>>{
             {s("nowhere")}, {s("kinetics/Nothing")}, {s("kinetics"), s("loadEverything")}})
        EXPECT_FALSE(run("open_system", inputs).ok) << inputs[0].toString();
}

TEST_F(WindowCommandsTest, AddedBlocksAreCopiesWithUniqueNames)
{
    run("private_td_new_system", {s("Model")}, 1);
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(run("private_td_add_block", {s("arithmetica/Basic Operations/Gain"), s("untitled")}).ok);
    ASSERT_TRUE(run("private_td_add_block", {s("wavecraft/Signal Conversion/A//D Converter"), s("untitled")}).ok);
    ASSERT_TRUE(run("private_td_add_block", {s("kinetics/Discrete/Zero-Order Hold"), s("untitled")}).ok);
    EXPECT_EQ(blockNames("untitled"),
              (std::vector<std::string>{"Gain", "Gain1", "Gain2", "A/D Converter", "Zero-Order\nHold"}));
    const auto& blocks = fixture.host().systems().find("untitled")->document.blocks;
    EXPECT_LT(blocks[0].position.right, blocks[1].position.left) << "placed side by side";
    EXPECT_EQ(blocks[0].description.rfind("Multiplies its input", 0), 0u);

    ASSERT_TRUE(run("private_td_drop_block", {s("kinetics/Mechanical"), s("untitled"),
                                              HostValue::doubleMatrix(1, 2, {300, 200})})
                    .ok);
    const BlockRecord& dropped = fixture.host().systems().find("untitled")->document.blocks.back();
    EXPECT_EQ(dropped.name, "Mechanical");
    EXPECT_EQ(std::make_pair(dropped.position.left, dropped.position.top), std::make_pair(300.0, 200.0));
    EXPECT_EQ(dropped.blocks.size(), 2u) << "a subsystem comes with its contents";
    ASSERT_TRUE(run("private_td_add_block", {s("arithmetica/Basic Operations/Sum"), s("untitled/Mechanical")}).ok);
}

TEST_F(WindowCommandsTest, AddingFailsForLockedMissingOrWrongTargets)
{
    const std::string gain = "arithmetica/Basic Operations/Gain";
    run("open_system", {s("switchyard")});
    EXPECT_FALSE(run("private_td_add_block", {s(gain), s("switchyard")}).ok) << "a shipped library is locked";
    fixture.host().systems().setLocked("switchyard", false);
    EXPECT_TRUE(run("private_td_add_block", {s(gain), s("switchyard/Logic")}).ok);
    for (const auto& [block, target] : std::vector<std::pair<std::string, std::string>>{
             {gain, "closed"}, {"arithmetica/Nope", "switchyard"}, {gain, "switchyard/Logic/AND Gate"}})
        EXPECT_FALSE(run("private_td_add_block", {s(block), s(target)}).ok) << block << " into " << target;
    EXPECT_FALSE(run("private_td_drop_block", {s(gain), s("switchyard")}).ok) << "a drop needs its point";
}

TEST_F(WindowCommandsTest, SavedSystemsReadBackAsLibraryFiles)
{
    QTemporaryDir out;
    const std::string name = run("private_td_new_system", {s("Library")}, 1).outputs.at(0).toString();
    run("private_td_add_block", {s("switchyard/Logic/Zähler"), s(name)});
    run("private_td_add_block", {s("tandril/Frequently Used/Displays"), s(name)});
    EXPECT_FALSE(run("save_system", {s(name)}).ok) << "a new system has no file yet";
    const QString file = out.path() + "/untitled.tdlib.json";
    ASSERT_TRUE(run("save_system", {s(name), s(file.toStdString())}).ok);
    EXPECT_FALSE(fixture.host().systems().find(name)->dirty);

    FileIssue issue;
    const auto document = LibraryFileParser::parseFile(file, "untitled", issue);
    ASSERT_TRUE(document) << issue.toString();
    ASSERT_EQ(document->blocks.size(), 2u);
    EXPECT_EQ(document->blocks[0].name, "Zähler");
    EXPECT_EQ(document->blocks[1].type, BlockType::LibraryRef);
    EXPECT_EQ(document->blocks[1].target.library, "wavecraft");
    EXPECT_EQ(document->blocks[1].target.path, "Displays");
}

TEST_F(WindowCommandsTest, WindowlessCommandsAreRecordedAndCheckTheirBlocks)
{
    std::vector<std::string> echoed;
    fixture.host().commandLog().setEcho([&](const std::string& line) { echoed.push_back(line); });
    const std::string docroot = HostOptions::bundledRoot().toStdString() + "/help";
    const std::vector<std::tuple<std::string, std::vector<HostValue>, bool>> commands{
        {"private_td_open_block_dialog", {s("kinetics/Continuous/Integrator"), s("params")}, true},
        {"private_td_open_block_dialog", {s("kinetics/Continuous/Integrator"), s("wide")}, false},
        {"private_td_open_block_dialog", {s("kinetics/Continuous/Nope"), s("default")}, false},
        {"private_td_show_block_help", {s("wavecraft/Displays/Scope")}, true},
        {"private_td_show_block_help", {s("wavecraft/Displays/Oscilloscope")}, false},
        {"uiopen", {s("*.mdl")}, true},
        {"tdhelp", {}, true},
        {"helpview", {s(docroot + "/toolbox/tandril/helptargets.map"), s("librarybrowsergui")}, true},
        {"tdprivate", {s("showprefs")}, true}};
    for (const auto& [command, inputs, ok] : commands)
        EXPECT_EQ(run(command, inputs).ok, ok) << command;
    ASSERT_EQ(fixture.host().windowCommands().openDialogs().size(), 1u);
    EXPECT_TRUE(run("private_td_close_block_dialogs", {}).ok);
    EXPECT_TRUE(fixture.host().windowCommands().openDialogs().empty());
    EXPECT_EQ(run("docroot", {}, 1).outputs.at(0).toString(), docroot);
    EXPECT_EQ(run("private_td_sys_name_under_mouse", {}, 1).outputs.at(0).toString(), "");
    fixture.host().windowCommands().setSystemUnderMouse("untitled");
    EXPECT_EQ(run("private_td_sys_name_under_mouse", {}, 1).outputs.at(0).toString(), "untitled");

    const auto& log = fixture.host().commandLog().entries();
    ASSERT_EQ(log.size(), 13u);
    EXPECT_EQ(log[0].text(), "private_td_open_block_dialog('kinetics/Continuous/Integrator', 'params')");
    EXPECT_EQ(log[8].text(), "tdprivate('showprefs')");
    EXPECT_EQ(echoed.size(), log.size());
    EXPECT_EQ(echoed[6], "host: tdhelp()\n");
}

TEST(VerboseHost, EchoesCommandsToItsConsole)
{
    QTemporaryDir preferences;
    HostOptions options;
    options.root = HostOptions::bundledRoot();
    options.preferencesDirectory = preferences.path();
    options.verbose = true;
    EmbeddedHost host(options);
    std::string console;
    host.environment().setConsole([&](const std::string& text) { console += text; });
    host.callWithTrap("uiopen", 0, {HostValue::string("*.mdl")});
    EXPECT_EQ(console, "host: uiopen('*.mdl')\n");
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
