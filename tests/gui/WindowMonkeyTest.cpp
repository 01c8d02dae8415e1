// The window's monkey test: a seeded random user of the real window, offscreen.
// TDLB_WINDOW_MONKEY_SEEDS ("1-10" or "4,7") and TDLB_WINDOW_MONKEY_STEPS
// make the long form; TDLB_WINDOW_MONKEY_TRACE=1 prints every step before it
// runs, so that a crash's last line names the step; TDLB_WINDOW_MONKEY_ALL_STEPS=1
// takes in the steps left out for a finding (WindowMonkey.cpp).

#include "BrowserWindowFixture.h"
#include "WindowMonkey.h"

#include <QMainWindow>

#include <iostream>
#include <vector>

namespace LibraryBrowser::Testing {
namespace {

class WindowMonkeyTest : public BrowserWindowFixture {};

std::vector<unsigned> seedsToRun()
{
    const QString text = qEnvironmentVariable("TDLB_WINDOW_MONKEY_SEEDS", QStringLiteral("1,2,3"));
    std::vector<unsigned> seeds;
    for (const QString& part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList range = part.split(QLatin1Char('-'));
        const unsigned first = range.front().trimmed().toUInt();
        const unsigned last = range.back().trimmed().toUInt();
        for (unsigned seed = first; seed <= last; ++seed)
            seeds.push_back(seed);
    }
    return seeds;
}

TEST_F(WindowMonkeyTest, TheWindowAnswersAndHangsTogetherAfterEveryRandomStep)
{
    const std::vector<unsigned> seeds = seedsToRun();
    ASSERT_FALSE(seeds.empty()) << "TDLB_WINDOW_MONKEY_SEEDS names no seed";
    const int steps = qEnvironmentVariableIntValue("TDLB_WINDOW_MONKEY_STEPS") > 0
                          ? qEnvironmentVariableIntValue("TDLB_WINDOW_MONKEY_STEPS")
                          : 3000;
    const bool trace = qEnvironmentVariableIsSet("TDLB_WINDOW_MONKEY_TRACE");
    for (unsigned seed : seeds) {
        // Each seed starts from a new window on preferences of its own.
        closeWindow();
        SetUp();
        StandaloneBrowser& window = open();
        window.window()->activateWindow();
        settle();
        WindowMonkey monkey(window, seed, trace, qEnvironmentVariableIsSet("TDLB_WINDOW_MONKEY_ALL_STEPS"));
        const QString before = monkey.check();
        ASSERT_TRUE(before.isEmpty()) << "seed " << seed << " before the first step: " << before.toStdString();
        for (int step = 1; step <= steps; ++step) {
            if (trace)
                std::cerr << "seed " << seed << " step " << step << std::endl;
            const QString done = monkey.step();
            if (trace)
                std::cerr << "  " << done.toStdString() << std::endl;
            const QString fault = monkey.check();
            if (!fault.isEmpty()) {
                ADD_FAILURE() << "seed " << seed << " step " << step << ": " << fault.toStdString()
                              << "\nthe last steps:\n  " << monkey.recentSteps().join(QStringLiteral("\n  ")).toStdString();
                return;
            }
        }
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
