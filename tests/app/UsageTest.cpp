// The command line's own contract without a root: help on every command,
// the window commands without a display, and the build's example root by
// default. Usage errors: TdlbReadTest.EachCommandPrintsItsAnswerOrSaysWhyNotWithItsExitCode.

#include "TdlbProcess.h"

#include "support/Files.h"

namespace LibraryBrowser::Testing {
namespace {

TEST(TdlbUsageTest, EveryCommandHasItsHelpAndTheWindowCommandsSayWhatToDoWithoutADisplay)
{
    std::vector<ExpectedRun> runs{{{"--help"}, 0, {"--root"}}};
    const std::pair<QString, QString> commands[] = {
        {"update", ""}, {"list", ""},    {"search", "--whole-word"}, {"tree", ""},   {"show", "--icon"},
        {"generate", "IgnoreTimestamp"}, {"destroy", ""},            {"checksum", ""}, {"report", ""}};
    for (const auto& [command, option] : commands) {
        runs[0].out.append("  " + command + " ");
        runs.push_back({{command, "--help"}, 0, {"Usage:", " " + command, option}});
    }
    expectRuns({}, runs);
    QProcessEnvironment bare = TdlbProcess::environment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        bare.remove(name);
    expectRuns({}, {{{"browse"}, 2, {}, {"--screenshot FILE"}}, {{"page"}, 2, {}, {"--screenshot FILE"}},
                    {{"browse", "--help"}, 0, {"--screenshot"}}, {{"page", "--help"}, 0, {"--screenshot"}}}, bare);
}

// Without --root, tdlb serves the build's copy of the example root: the
// sources stay exactly as they were, shipped store or not.
TEST(TdlbUsageTest, ARunWithoutARootLeavesTheSourcesAlone)
{
    QTemporaryDir preferences;
    const auto before = snapshot(TDLB_EXAMPLE_ROOT);
    expectRuns({"--prefdir", preferences.path()}, {{{"list"}, 0, {"Arithmetica"}}});
    EXPECT_TRUE(snapshot(TDLB_EXAMPLE_ROOT) == before);
}

} // namespace
} // namespace LibraryBrowser::Testing
