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
    std::vector<std::string> blockNames(const std::string& system)
    {
        std::vector<std::string> names;
        for (const BlockRecord& block : fixture.host().systems().find(system)->document.blocks)
            names.push_back(block.name);
        return names;
    }

    HostFixture fixture{HostOptions::bundledRoot()};
};

TEST_F(WindowCommandsTest, NewSystemsTakeTheFirstFreeUntitledName)
{
    EXPECT_EQ(run("private_td_get_current_open_mdl", {}, 3).outputs.at(0).toString(), "") << "nothing open yet";
    EXPECT_EQ(run("private_td_is_system_loaded", {s("kinetics")}, 1).outputs.at(0).scalar(), 0.0);
    EXPECT_EQ(run("private_td_new_system", {s("Model")}, 1).outputs.at(0).toString(), "untitled");
    EXPECT_EQ(run("private_td_new_system", {s("Library")}, 1).outputs.at(0).toString(), "untitled1");
    EXPECT_EQ(run("private_td_new_system", {s("Model")}, 1).outputs.at(0).toString(), "untitled2");
    EXPECT_FALSE(run("private_td_new_system", {s("Spreadsheet")}, 1).ok);

    const auto current = run("private_td_get_current_open_mdl", {}, 3);
    ASSERT_TRUE(current.ok);
    EXPECT_EQ((std::vector<std::string>{current.outputs[0].toString(), current.outputs[1].toString()}),
              (std::vector<std::string>{"untitled2", "Model"}));
    EXPECT_TRUE(current.outputs[2].isLogical());
    EXPECT_EQ(current.outputs[2].scalar(), 0.0);
    EXPECT_EQ(run("private_td_get_current_open_mdl", {}, 1).outputs.size(), 1u);
}

TEST_F(WindowCommandsTest, OpeningLoadsLockedLibrariesAndShowsOnlyWhenAsked)
{
    ASSERT_TRUE(run("open_system", {s("kinetics"), s("loadOnly")}).ok);
    EXPECT_EQ(run("private_td_is_system_loaded", {s("kinetics")}, 1).outputs.at(0).scalar(), 1.0);
    EXPECT_EQ(run("private_td_get_current_open_mdl", {}, 1).outputs.at(0).toString(), "")
        << "loading alone brings no window to the front";
    ASSERT_TRUE(run("open_system", {s("kinetics/Mechanical/Rotational")}).ok);
    const auto current = run("private_td_get_current_open_mdl", {}, 3);
    ASSERT_EQ(current.outputs.size(), 3u);
    EXPECT_EQ((std::vector<std::string>{current.outputs[0].toString(), current.outputs[1].toString()}),
              (std::vector<std::string>{"kinetics", "Library"}));
    EXPECT_EQ(current.outputs[2].scalar(), 1.0);
    EXPECT_FALSE(run("open_system", {s("nowhere")}).ok);
    EXPECT_FALSE(run("open_system", {s("kinetics/Nothing")}).ok);
    EXPECT_FALSE(run("open_system", {s("kinetics"), s("loadEverything")}).ok);
}

TEST_F(WindowCommandsTest, ClosingPutsTheLastShownSystemInFrontAndFreesTheName)
{
    auto current = [&] { return run("private_td_get_current_open_mdl", {}, 1).outputs.at(0).toString(); };
    run("private_td_new_system", {s("Model")}, 1);
    run("private_td_new_system", {s("Library")}, 1);
    ASSERT_TRUE(run("open_system", {s("kinetics"), s("loadOnly")}).ok);
    ASSERT_EQ(current(), "untitled1");

    // A library only loaded has no window to come to the front.
    EXPECT_TRUE(run("close_system", {s("untitled1")}).ok);
    EXPECT_EQ(current(), "untitled");
    EXPECT_TRUE(run("close_system", {s("kinetics")}).ok);
    EXPECT_EQ(run("private_td_is_system_loaded", {s("kinetics")}, 1).outputs.at(0).scalar(), 0.0);
    EXPECT_EQ(current(), "untitled");
    EXPECT_TRUE(run("close_system", {s("untitled")}).ok);
    EXPECT_EQ(current(), "");

    const auto again = run("close_system", {s("untitled")});
    EXPECT_FALSE(again.ok);
    EXPECT_NE(again.errorMessage.find("no open system \"untitled\""), std::string::npos) << again.errorMessage;
    EXPECT_FALSE(run("close_system", {}).ok);
    EXPECT_EQ(run("private_td_new_system", {s("Model")}, 1).outputs.at(0).toString(), "untitled");
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
    run("open_system", {s("switchyard")});
    EXPECT_FALSE(run("private_td_add_block", {s("arithmetica/Basic Operations/Gain"), s("switchyard")}).ok)
        << "a shipped library is locked";
    fixture.host().systems().setLocked("switchyard", false);
    EXPECT_TRUE(run("private_td_add_block", {s("arithmetica/Basic Operations/Gain"), s("switchyard/Logic")}).ok);
    EXPECT_FALSE(run("private_td_add_block", {s("arithmetica/Basic Operations/Gain"), s("closed")}).ok);
    EXPECT_FALSE(run("private_td_add_block", {s("arithmetica/Nope"), s("switchyard")}).ok);
    EXPECT_FALSE(
        run("private_td_add_block", {s("arithmetica/Basic Operations/Gain"), s("switchyard/Logic/AND Gate")}).ok);
    EXPECT_FALSE(run("private_td_drop_block", {s("arithmetica/Basic Operations/Gain"), s("switchyard")}).ok)
        << "a drop needs its point";
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
    EXPECT_TRUE(run("private_td_open_block_dialog", {s("kinetics/Continuous/Integrator"), s("params")}).ok);
    EXPECT_FALSE(run("private_td_open_block_dialog", {s("kinetics/Continuous/Integrator"), s("wide")}).ok);
    EXPECT_FALSE(run("private_td_open_block_dialog", {s("kinetics/Continuous/Nope"), s("default")}).ok);
    ASSERT_EQ(fixture.host().windowCommands().openDialogs().size(), 1u);
    EXPECT_TRUE(run("private_td_close_block_dialogs", {}).ok);
    EXPECT_TRUE(fixture.host().windowCommands().openDialogs().empty());

    EXPECT_TRUE(run("private_td_show_block_help", {s("wavecraft/Displays/Scope")}).ok);
    EXPECT_FALSE(run("private_td_show_block_help", {s("wavecraft/Displays/Oscilloscope")}).ok);
    EXPECT_TRUE(run("uiopen", {s("*.mdl")}).ok);
    EXPECT_TRUE(run("tdhelp", {}).ok);
    const std::string docroot = run("docroot", {}, 1).outputs.at(0).toString();
    EXPECT_EQ(docroot, HostOptions::bundledRoot().toStdString() + "/help");
    EXPECT_TRUE(run("helpview", {s(docroot + "/toolbox/tandril/helptargets.map"), s("librarybrowsergui")}).ok);
    EXPECT_TRUE(fixture.host().callWithTrap("tdprivate", 0, {s("showprefs")}).ok);
    EXPECT_EQ(run("private_td_sys_name_under_mouse", {}, 1).outputs.at(0).toString(), "");
    fixture.host().windowCommands().setSystemUnderMouse("untitled");
    EXPECT_EQ(run("private_td_sys_name_under_mouse", {}, 1).outputs.at(0).toString(), "untitled");

    const auto& log = fixture.host().commandLog().entries();
    ASSERT_EQ(log.size(), 13u);
    EXPECT_EQ(log[0].text(), "private_td_open_block_dialog('kinetics/Continuous/Integrator', 'params')");
    EXPECT_EQ(log[10].text(), "tdprivate('showprefs')");
    EXPECT_EQ(echoed.size(), log.size());
    EXPECT_EQ(echoed[7], "host: tdhelp()\n");
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
