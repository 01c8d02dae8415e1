// The window's host commands against the embedded host: what reaches the
// host, what comes back, and that a failing call gives the empty result.

#include "PageTestSupport.h"

#include "gui/BrowserHostCommands.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

class BrowserHostCommandsTest : public ::testing::Test {
protected:
    std::vector<std::string> logged()
    {
        std::vector<std::string> texts;
        for (const auto& entry : session.host().commandLog().entries())
            texts.push_back(entry.text());
        session.host().commandLog().clear();
        return texts;
    }
    ExampleRootSession session;
};

TEST_F(BrowserHostCommandsTest, CommandsReachTheHostWithTheirArguments)
{
    logged();
    using namespace BrowserUtils;
    dropBlock("kinetics/Continuous/Integrator", "untitled", 120, 45);
    openBlockDialog("arithmetica/Basic Operations/Sum", BlockDialogType::Parameters);
    addBlockToModel("", "untitled");
    const std::vector<std::string> texts = logged();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_NE(texts[0].find("private_td_drop_block"), std::string::npos);
    EXPECT_NE(texts[0].find("[120 45]"), std::string::npos);
    EXPECT_NE(texts[1].find("params"), std::string::npos);
}

TEST_F(BrowserHostCommandsTest, WarningsAreMutedDuringACommandAndRestoredAfter)
{
    HostEnvironment& environment = Platform::environment();
    for (bool on : {true, false}) {
        environment.setWarningMode(3, on);
        BrowserUtils::openSystem("no such library", "loadOnly");
        EXPECT_EQ(environment.isWarningModeOn(3), on);
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
