#include "repository/RepositoryReport.h"

#include "platform/HostValue.h"
#include "platform/Platform.h"
#include "support/RecordingHost.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Issue = RepositoryReport::Issue;
using Issues = std::vector<Issue>;
using Lines = std::vector<std::string>;

Lines lines(const RepositoryReport& report)
{
    return Lines(report.getLog().begin(), report.getLog().end());
}

TEST(RepositoryReportTest, LinesCarryIndentationAndPrefixes)
{
    RepositoryReport report;
    report.indentation = 2;
    report.logWarning("W:id", "careful");
    report.logError("E:id", "broken");
    report.indentation = -3;
    report.log("below zero");

    EXPECT_EQ(lines(report), (Lines{"**Warning**   careful\n", "??? **Error**   broken\n", "Action: below zero\n"}));
    EXPECT_EQ(report.getWarnings(), (Issues{{"W:id", "careful"}}));
    EXPECT_EQ(report.getErrors(), (Issues{{"E:id", "broken"}}));

}

TEST(RepositoryReportTest, LevelDropsLinesButStillRaisesFlags)
{
    RepositoryReport silent(0);
    silent.log("gone");
    silent.logWarning("w", "gone");
    silent.logError("e", "gone");
    EXPECT_TRUE(silent.getLog().empty() && silent.getWarnings().empty() && silent.getErrors().empty());
    EXPECT_TRUE(silent.hasWarning() && silent.hasError());

    // Level 2 keeps depths 0 and 1 only.
    RepositoryReport shallow(2);
    for (int depth = 0; depth < 4; ++depth) {
        shallow.indentation = depth;
        shallow.log("depth " + std::to_string(depth));
    }
    EXPECT_EQ(lines(shallow), (Lines{"Action: depth 0\n", "  Action: depth 1\n"}));
}

TEST(RepositoryReportTest, LogKeepsTheNewestThousandLines)
{
    RepositoryReport report;
    for (int i = 0; i < 1001; ++i)
        report.log(std::to_string(i));
    ASSERT_EQ(report.getLog().size(), 1000u);
    EXPECT_EQ(report.getLog().front(), "Action: 1\n");
    EXPECT_EQ(report.getLog().back(), "Action: 1000\n");

}

TEST(RepositoryReportTest, TakingEmptiesTheListsAndClearsTheFlagsButNotTheLog)
{
    RepositoryReport report;
    report.logError("a", "one");
    report.logError("b", "two");
    report.logWarning("c", "three");
    EXPECT_EQ(report.takeErrors(), (Issues{{"a", "one"}, {"b", "two"}}));
    EXPECT_FALSE(report.hasError());
    EXPECT_TRUE(report.hasWarning());
    report.clearWarning();
    EXPECT_TRUE(report.getWarnings().empty());
    EXPECT_EQ(report.getLog().size(), 3u);

    // Unique warnings keep the first of each text.
    report.logWarning("first", "library X is broken");
    report.logWarning("other", "something else");
    report.logWarning("second", "library X is broken");
    report.logWarning("third", "library X is broken ");
    EXPECT_EQ(report.takeUniqueWarnings(), (Issues{{"first", "library X is broken"},
                                                   {"other", "something else"},
                                                   {"third", "library X is broken "}}));
    EXPECT_FALSE(report.hasWarning());
    EXPECT_TRUE(report.takeUniqueWarnings().empty());
}

TEST(RepositoryReportTest, EchoGoesToTheHostConsoleOnlyWhenAsked)
{
    Testing::RecordingEnvironment environment("/root", "/prefs");
    Platform::setEnvironment(&environment);
    RepositoryReport report;
    report.log("quiet");
    report.logToConsoleInteractively(true);
    report.indentation = 1;
    report.log("loud");
    report.logError("e", "failed");
    report.indentation = 0;
    report.setLogLevel(0);
    report.log("dropped");
    Platform::setEnvironment(nullptr);
    EXPECT_EQ(environment.console, "  Action: loud\n??? **Error**   failed\n");
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
