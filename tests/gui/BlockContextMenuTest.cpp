// What a tile's menu and the Edit menu offer, for each kind of tile, page
// and system in front; the window's host commands against the embedded host:
// what reaches the host, and the warnings muted while they run.

#include "BrowserWindowFixture.h"

#include "gui/BlockContextMenu.h"
#include "gui/BrowserHostCommands.h"
#include "gui/GuiSubsystem.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

using Action = BlockContextMenu::Action;

using BlockContextMenuTest = BrowserWindowFixture;

std::vector<std::string> labels(const std::vector<BlockContextMenu::Entry>& entries)
{
    std::vector<std::string> texts;
    for (const auto& entry : entries)
        texts.push_back((entry.separatorBefore ? "-- " : "") + entry.label +
                        (entry.accelerator.empty() ? "" : " [" + entry.accelerator + "]"));
    return texts;
}

TEST_F(BlockContextMenuTest, ABlocksMenuNamesTheSystemItWouldBeAddedToAndASubsystemsOpensItsLibrary)
{
    StandaloneBrowser& window = open();
    GuiBlock gain{&window, session().object("arithmetica/Basic Operations/Gain").toBlock(), nullptr};
    const OpenSystemState model{"untitled", ModelType::Model, false};
    const OpenSystemState lockedLibrary{"arithmetica", ModelType::Library, true};
    const OpenSystemState library{"mylib", ModelType::Library, false};
    EXPECT_EQ(labels(BlockContextMenu::entriesFor(gain, false, true, {})),
              (std::vector<std::string>{"Add to a new model [Ctrl+I]", "Help for the Gain block", "Go to parent",
                                        "-- Block parameters"}));
    for (const auto& [state, label] : {std::pair{model, "Add to untitled"}, {lockedLibrary, "Add to a new model"},
                                       {library, "Add to Library: mylib"}})
        EXPECT_EQ(BlockContextMenu::entriesFor(gain, false, false, state).front().label, label);
    // On the results page the way back to the library replaces the parent.
    EXPECT_EQ(labels(BlockContextMenu::entriesFor(gain, true, true, model)),
              (std::vector<std::string>{"Add to untitled [Ctrl+I]", "Help for the Gain block",
                                        "Select in library view [Ctrl+R]", "-- Block parameters"}));
    // A subsystem's menu opens its library.
    GuiSubsystem routing{&window, session().object("switchyard/Routing").toBlock(), nullptr};
    EXPECT_EQ((std::vector<std::vector<std::string>>{labels(BlockContextMenu::entriesFor(routing, false, true, {})),
                                                      labels(BlockContextMenu::entriesFor(routing, false, false, {})),
                                                      labels(BlockContextMenu::entriesFor(routing, true, true, {}))}),
              (std::vector<std::vector<std::string>>{{"Go to parent", "-- Open Routing library"},
                                                      {"Open Routing library"},
                                                      {"Select in library view [Ctrl+R]", "-- Open Routing library"}}));
}

TEST(BrowserHostCommandsTest, CommandsReachTheHostWithTheirArgumentsAndWarningsMutedWhileTheyRun)
{
    ExampleRootSession session;
    session.host().commandLog().clear();
    using namespace BrowserUtils;
    dropBlock("kinetics/Continuous/Integrator", "untitled", 120, 45);
    openBlockDialog("arithmetica/Basic Operations/Sum", BlockDialogType::Parameters);
    addBlockToModel("", "untitled");
    std::vector<std::string> texts;
    for (const auto& entry : session.host().commandLog().entries())
        texts.push_back(entry.text());
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_TRUE(texts[0].find("private_td_drop_block") == 0 && texts[0].find("[120 45]") != std::string::npos &&
                texts[1].find("'params'") != std::string::npos)
        << texts[0] << "\n" << texts[1];
    // Warnings are muted while a command runs, and restored after.
    HostEnvironment& environment = Platform::environment();
    for (bool on : {true, false}) {
        environment.setWarningMode(3, on);
        BrowserUtils::openSystem("no such library", "loadOnly");
        EXPECT_EQ(environment.isWarningModeOn(3), on);
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
