// The command line's own contract: help on every command, and usage errors
// with exit code 2 and a message on standard error, before any repository
// work.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

const QStringList Commands = {"update",   "list",    "search",   "tree",  "show",
                              "generate", "destroy", "checksum", "report"};

TEST(TdlbUsageTest, TheOverviewListsEveryCommandAndEachHasItsHelp)
{
    const TdlbResult overview = TdlbProcess::runRaw({"--help"});
    ASSERT_FALSE(overview.crashed);
    EXPECT_EQ(overview.exitCode, 0);
    EXPECT_TRUE(overview.out.contains("--root"));
    for (const QString& command : Commands) {
        EXPECT_TRUE(overview.out.contains("  " + command + " ")) << qPrintable(command) << "\n"
                                                                << qPrintable(overview.out);
        const TdlbResult result = TdlbProcess::runRaw({command, "--help"});
        ASSERT_FALSE(result.crashed) << qPrintable(command);
        EXPECT_EQ(result.exitCode, 0) << qPrintable(command);
        EXPECT_TRUE(result.out.contains("Usage:")) << qPrintable(command);
        EXPECT_TRUE(result.out.contains(" " + command)) << qPrintable(result.out);
    }
    EXPECT_TRUE(TdlbProcess::runRaw({"search", "--help"}).out.contains("--whole-word"));
    EXPECT_TRUE(TdlbProcess::runRaw({"generate", "--help"}).out.contains("IgnoreTimestamp"));
    EXPECT_TRUE(TdlbProcess::runRaw({"show", "--help"}).out.contains("--icon"));
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

TEST(TdlbUsageTest, UsageErrorsExitWithTwoAndSayWhy)
{
    struct Case {
        QStringList arguments;
        QString message;
    };
    const Case cases[] = {
        {{}, "no command given"},
        {{"frobnicate"}, "unknown command 'frobnicate'"},
        {{"--bogus", "list"}, "bogus"},
        {{"list", "--bogus"}, "bogus"},
        {{"list", "extra"}, "takes no arguments"},
        {{"search"}, "needs exactly one pattern"},
        {{"search", "a", "b"}, "needs exactly one pattern"},
        {{"show"}, "needs exactly one object"},
        {{"tree", "--depth", "deep"}, "--depth"},
        {{"tree", "--depth", "-1"}, "--depth"},
        {{"generate", "--mode", "Sometimes"}, "unknown mode 'Sometimes'"},
        {{"checksum"}, "needs exactly one file"},
        {{"list", "--root"}, "root"},
        {{"show", "arithmetica", "--size", "0"}, "--size"},
        {{"search", "(", "--regexp"}, "invalid regular expression '('"},
    };
    TdlbProcess tdlb;
    ASSERT_TRUE(tdlb.isReady());
    for (const Case& c : cases) {
        const TdlbResult result = tdlb.run(c.arguments);
        ASSERT_FALSE(result.crashed) << qPrintable(c.arguments.join(' '));
        EXPECT_EQ(result.exitCode, 2) << qPrintable(c.arguments.join(' ')) << "\n" << qPrintable(result.err);
        EXPECT_TRUE(result.err.contains(c.message)) << qPrintable(c.arguments.join(' ')) << "\n"
                                                    << qPrintable(result.err);
        EXPECT_TRUE(result.out.isEmpty()) << qPrintable(result.out);
    }
}

TEST(TdlbUsageTest, AMissingRootIsAUsageError)
{
    QTemporaryDir preferences;
    const TdlbResult result =
        TdlbProcess::runRaw({"--root", preferences.filePath("no-such-root"), "--prefdir", preferences.path(), "list"});
    ASSERT_FALSE(result.crashed);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_TRUE(result.err.contains("no-such-root' does not exist")) << qPrintable(result.err);
    EXPECT_TRUE(result.out.isEmpty());
}

// Without --root, tdlb serves the build's copy of the example root: the
// sources stay exactly as they were, shipped store or not.
TEST(TdlbUsageTest, ARunWithoutARootLeavesTheSourcesAlone)
{
    QTemporaryDir preferences;
    const auto before = snapshot(TDLB_EXAMPLE_ROOT);
    const TdlbResult result = TdlbProcess::runRaw({"--prefdir", preferences.path(), "list"});
    ASSERT_FALSE(result.crashed);
    EXPECT_EQ(result.exitCode, 0) << qPrintable(result.err);
    EXPECT_TRUE(result.out.contains("Arithmetica")) << qPrintable(result.out);
    EXPECT_TRUE(snapshot(TDLB_EXAMPLE_ROOT) == before);
}

} // namespace
} // namespace LibraryBrowser::Testing
