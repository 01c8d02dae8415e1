#include "repository/RepositoryReport.h"

#include "platform/HostValue.h"
#include "platform/Platform.h"
#include "support/RecordingHost.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Issues = std::vector<RepositoryReport::Issue>;
using Lines = std::vector<std::string>;

Lines lines(const RepositoryReport& report)
{
    return Lines(report.getLog().begin(), report.getLog().end());
}

// Lines carry indentation and prefixes; a level drops deeper lines but still
// raises the flags; the log keeps the newest thousand lines; taking empties
// the lists and clears the flags but not the log, and unique warnings keep
// the first of each text; the echo goes to the host console only when asked.
TEST(RepositoryReportTest, LinesLevelsListsAndEcho)
{
    Testing::RecordingEnvironment environment("/root", "/prefs");
    Platform::setEnvironment(&environment);
    RepositoryReport report;
    report.indentation = 2;
    report.logWarning("W:id", "careful");
    report.logError("E:id", "broken");
    report.indentation = -3;
    report.log("below zero");
    EXPECT_EQ(lines(report), (Lines{"**Warning**   careful\n", "??? **Error**   broken\n", "Action: below zero\n"}));
    report.logError("E:2", "two");
    EXPECT_EQ(report.takeErrors(), (Issues{{"E:id", "broken"}, {"E:2", "two"}}));
    EXPECT_FALSE(report.hasError());
    EXPECT_TRUE(report.hasWarning());
    report.clearWarning();
    EXPECT_TRUE(report.getWarnings().empty());
    EXPECT_EQ(report.getLog().size(), 4u);
    for (const auto& [id, text] : Issues{{"first", "library X is broken"}, {"other", "something else"},
                                         {"second", "library X is broken"}, {"third", "library X is broken "}})
        report.logWarning(id, text);
    EXPECT_EQ(report.takeUniqueWarnings(), (Issues{{"first", "library X is broken"}, {"other", "something else"},
                                                   {"third", "library X is broken "}}));
    EXPECT_FALSE(report.hasWarning());
    EXPECT_TRUE(report.takeUniqueWarnings().empty());
    for (int i = 0; i < 1001; ++i)
        report.log(std::to_string(i));
    ASSERT_EQ(report.getLog().size(), 1000u);
    EXPECT_EQ(report.getLog().front(), "Action: 1\n");
    EXPECT_EQ(report.getLog().back(), "Action: 1000\n");
    EXPECT_TRUE(environment.console.empty());

    report.logToConsoleInteractively(true);
    report.indentation = 1;
    report.log("loud");
    report.logError("e", "failed");
    report.indentation = 0;
    report.setLogLevel(0);
    report.log("dropped");
    report.logWarning("w", "dropped");
    EXPECT_EQ(environment.console, "  Action: loud\n??? **Error**   failed\n");
    EXPECT_EQ(report.getLog().back(), "??? **Error**   failed\n");
    EXPECT_TRUE(report.getWarnings().empty());
    EXPECT_TRUE(report.hasWarning());
    Platform::setEnvironment(nullptr);

    // Level 2 keeps depths 0 and 1 only.
    RepositoryReport shallow(2);
    for (int depth = 0; depth < 4; ++depth) {
        shallow.indentation = depth;
        shallow.log("depth " + std::to_string(depth));
    }
    EXPECT_EQ(lines(shallow), (Lines{"Action: depth 0\n", "  Action: depth 1\n"}));
}

TEST(RepositoryReportTest, HostOperationsReachItAsALogSink)
{
    auto report = RepositoryReport::create();
    const HostValue argument = HostValue::object(report);
    ASSERT_EQ(argument.hostObject()->hostClassName(), "Repository.RepositoryReport");
    auto* sink = dynamic_cast<HostLogSink*>(argument.hostObject().get());
    ASSERT_NE(sink, nullptr);
    sink->logAction("host step");
    sink->logWarning("Host:W", "host warning");
    sink->logError("Host:E", "host error");
    EXPECT_EQ(report->getLog().front(), "Action: host step\n");
    EXPECT_EQ(report->getErrors(), (Issues{{"Host:E", "host error"}}));
}

} // namespace
} // namespace LibraryBrowser
