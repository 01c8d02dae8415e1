// The command line's own contract without a root: help on every command,
// the window commands without a display, and the build's example root by
// default. Usage errors: TdlbReadTest.RefusalsSayWhyWithTheirExitCode.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

TEST(TdlbUsageTest, TheOverviewListsEveryCommandAndEachHasItsHelp)
{
    const TdlbResult overview = TdlbProcess::runRaw({"--help"});
    ASSERT_EQ(overview.exitCode, 0);
    EXPECT_TRUE(overview.out.contains("--root"));
    const std::pair<QString, QString> commands[] = {
        {"update", ""},          {"list", ""},         {"search", "--whole-word"}, {"tree", ""},
        {"show", "--icon"},      {"generate", "IgnoreTimestamp"}, {"destroy", ""}, {"checksum", ""},
        {"report", ""}};
    for (const auto& [command, option] : commands) {
        EXPECT_TRUE(overview.out.contains("  " + command + " ")) << qPrintable(command);
        const TdlbResult result = TdlbProcess::runRaw({command, "--help"});
        EXPECT_EQ(result.exitCode, 0) << qPrintable(command);
        EXPECT_TRUE(result.out.contains("Usage:") && result.out.contains(" " + command) && result.out.contains(option))
            << qPrintable(result.out);
    }
}

TEST(TdlbUsageTest, WithoutADisplayTheWindowCommandsSayWhatToDoAndStillGiveTheirHelp)
{
    QProcessEnvironment bare = TdlbProcess::environment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        bare.remove(name);
    for (const QString& command : {QString("browse"), QString("page")}) {
        const TdlbResult refused = TdlbProcess::runRaw({command}, bare);
        EXPECT_EQ(refused.exitCode, 2) << qPrintable(command);
        EXPECT_TRUE(refused.err.contains("--screenshot FILE")) << qPrintable(refused.err);
        const TdlbResult help = TdlbProcess::runRaw({command, "--help"}, bare);
        EXPECT_EQ(help.exitCode, 0) << qPrintable(command) << qPrintable(help.err);
        EXPECT_TRUE(help.out.contains("--screenshot")) << qPrintable(help.out);
    }
}

// Without --root, tdlb serves the build's copy of the example root: the
// sources stay exactly as they were, shipped store or not.
TEST(TdlbUsageTest, ARunWithoutARootLeavesTheSourcesAlone)
{
    QTemporaryDir preferences;
    const auto before = snapshot(TDLB_EXAMPLE_ROOT);
    const TdlbResult result = TdlbProcess::runRaw({"--prefdir", preferences.path(), "list"});
    EXPECT_EQ(result.exitCode, 0) << qPrintable(result.err);
    EXPECT_TRUE(result.out.contains("Arithmetica")) << qPrintable(result.out);
    EXPECT_TRUE(snapshot(TDLB_EXAMPLE_ROOT) == before);
}

} // namespace
} // namespace LibraryBrowser::Testing
