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
    HostInterpreter::CallResult run(const std::string& command, std::vector<HostValue> inputs, int outputs = 0)
    {
        return fixture.run(command, std::move(inputs), outputs);
    }
    std::string newSystem(const std::string& type) { return run("private_td_new_system", {str(type)}, 1).outputs.at(0).toString(); }
    // Name, type and lock of the system in front.
    Strings front()
    {
        const auto out = run("private_td_get_current_open_mdl", {}, 3).outputs;
        return out.size() == 3 && out[2].isLogical()
                   ? Strings{out[0].toString(), out[1].toString(), std::to_string(int(out[2].scalar()))}
                   : Strings{};
    }
    std::string current() { return front().at(0); }
    double loaded(const std::string& name) { return run("private_td_is_system_loaded", {str(name)}, 1).outputs.at(0).scalar(); }
    const std::vector<BlockRecord>& blocks(const std::string& system)
    {
        return fixture.host().systems().find(system)->document.blocks;
    }

    HostFixture fixture{HostOptions::bundledRoot()};
};

TEST_F(WindowCommandsTest, NewSystemsTakeTheFirstFreeUntitledNameAndOpeningShowsOnlyWhenAsked)
{
    EXPECT_EQ(current(), "") << "nothing open yet";
    EXPECT_EQ((Strings{newSystem("Model"), newSystem("Library"), newSystem("Model")}),
              (Strings{"untitled", "untitled1", "untitled2"}));
    EXPECT_FALSE(run("private_td_new_system", {str("Spreadsheet")}, 1).ok);
    EXPECT_EQ(front(), (Strings{"untitled2", "Model", "0"}));

    // Loading a library brings no window to the front; closing puts the last shown system there.
    EXPECT_EQ(loaded("kinetics"), 0.0);
    ASSERT_TRUE(run("open_system", {str("kinetics"), str("loadOnly")}).ok);
    EXPECT_EQ(loaded("kinetics"), 1.0);
    EXPECT_EQ(current(), "untitled2");
    const auto close = [&](const std::string& name) { return run("close_system", {str(name)}).ok; };
    EXPECT_TRUE(close("untitled2"));
    EXPECT_EQ(current(), "untitled1");
    EXPECT_TRUE(close("kinetics"));
    EXPECT_EQ(loaded("kinetics"), 0.0);
    EXPECT_EQ(current(), "untitled1");
    EXPECT_TRUE(close("untitled1") && close("untitled"));
    EXPECT_EQ(current(), "");
    EXPECT_TRUE(contains(run("close_system", {str("untitled")}).errorMessage, "no open system \"untitled\""));
    EXPECT_FALSE(run("close_system", {}).ok);
    EXPECT_EQ(newSystem("Model"), "untitled");

    ASSERT_TRUE(run("open_system", {str("kinetics/Mechanical/Rotational")}).ok);
    EXPECT_EQ(front(), (Strings{"kinetics", "Library", "1"}));
    for (const auto& inputs : std::vector<std::vector<HostValue>>{
             {str("nowhere")}, {str("kinetics/Nothing")}, {str("kinetics"), str("loadEverything")}})
        EXPECT_FALSE(run("open_system", inputs).ok) << inputs[0].toString();
}

TEST_F(WindowCommandsTest, AddedBlocksAreCopiesWithUniqueNamesAndOnlyIntoUnlockedSystems)
{
    newSystem("Model");
    const auto add = [&](const std::string& block, const std::string& into) {
        return run("private_td_add_block", {str(block), str(into)}).ok;
    };
    const std::string gain = "arithmetica/Basic Operations/Gain";
    for (const char* block : {"arithmetica/Basic Operations/Gain", "arithmetica/Basic Operations/Gain",
                              "arithmetica/Basic Operations/Gain", "wavecraft/Signal Conversion/A//D Converter",
                              "kinetics/Discrete/Zero-Order Hold"})
        ASSERT_TRUE(add(block, "untitled")) << block;
    Strings names;
    for (const BlockRecord& block : blocks("untitled"))
        names.push_back(block.name);
    EXPECT_EQ(names, (Strings{"Gain", "Gain1", "Gain2", "A/D Converter", "Zero-Order\nHold"}));
    EXPECT_LT(blocks("untitled")[0].position.right, blocks("untitled")[1].position.left) << "placed side by side";
    EXPECT_EQ(blocks("untitled")[0].description.rfind("Multiplies its input", 0), 0u);

    ASSERT_TRUE(run("private_td_drop_block",
                    {str("kinetics/Mechanical"), str("untitled"), HostValue::doubleMatrix(1, 2, {300, 200})})
                    .ok);
    const BlockRecord& dropped = blocks("untitled").back();
    EXPECT_EQ(std::make_tuple(dropped.name, dropped.position.left, dropped.position.top, dropped.blocks.size()),
              std::make_tuple(std::string("Mechanical"), 300.0, 200.0, std::size_t(2)))
        << "a subsystem comes with its contents";
    ASSERT_TRUE(add("arithmetica/Basic Operations/Sum", "untitled/Mechanical"));

    run("open_system", {str("switchyard")});
    EXPECT_FALSE(add(gain, "switchyard")) << "a shipped library is locked";
    fixture.host().systems().setLocked("switchyard", false);
    EXPECT_TRUE(add(gain, "switchyard/Logic"));
    for (const auto& [block, target] : std::vector<std::pair<std::string, std::string>>{
             {gain, "closed"}, {"arithmetica/Nope", "switchyard"}, {gain, "switchyard/Logic/AND Gate"}})
        EXPECT_FALSE(add(block, target)) << block << " into " << target;
    EXPECT_FALSE(run("private_td_drop_block", {str(gain), str("switchyard")}).ok) << "a drop needs its point";
}

// A saved system reads back as a library file and open_system given that
// file opens it again, unlocked; a damaged file opens nothing and says which.
TEST_F(WindowCommandsTest, SavedSystemsReadBackAsLibraryFilesAndOpenFromThem)
{
    QTemporaryDir out;
    const std::string name = newSystem("Model");
    run("private_td_add_block", {str("switchyard/Logic/Zähler"), str(name)});
    run("private_td_add_block", {str("tandril/Frequently Used/Displays"), str(name)});
    EXPECT_FALSE(run("save_system", {str(name)}).ok) << "a new system has no file yet";
    const QString file = out.path() + "/untitled.tdlib.json";
    ASSERT_TRUE(run("save_system", {str(name), str(file.toStdString())}).ok);
    EXPECT_FALSE(fixture.host().systems().find(name)->dirty);

    FileIssue issue;
    const auto document = LibraryFileParser::parseFile(file, "untitled", issue);
    ASSERT_TRUE(document) << issue.toString();
    ASSERT_EQ(document->blocks.size(), 2u);
    EXPECT_EQ(std::make_tuple(document->blocks[0].name, document->blocks[1].type, document->blocks[1].target.library,
                              document->blocks[1].target.path),
              std::make_tuple(std::string("Zähler"), BlockType::LibraryRef, std::string("wavecraft"),
                              std::string("Displays")));

    ASSERT_TRUE(run("close_system", {str(name)}).ok);
    ASSERT_FALSE(fixture.host().systems().isLoaded(name));
    const auto opened = run("open_system", {str(file.toStdString())});
    ASSERT_TRUE(opened.ok) << opened.errorMessage;
    EXPECT_EQ(front(), (Strings{name, "Model", "0"}));
    ASSERT_EQ(blocks(name).size(), 2u);
    EXPECT_EQ(blocks(name)[0].name, "Zähler");

    const std::string bad = (out.path() + "/bad.tdlib.json").toStdString();
    LibraryBrowser::Testing::writeFile(bad, "{ not json");
    const auto failed = run("open_system", {str(bad)});
    EXPECT_FALSE(failed.ok);
    EXPECT_TRUE(contains(failed.errorMessage, "bad.tdlib.json")) << failed.errorMessage;
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

} // namespace
} // namespace LibraryBrowser::Host::Testing
