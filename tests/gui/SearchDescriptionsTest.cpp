// "Search descriptions too", the fourth entry of the search options: a block
// whose description matches is found as well, in the usual sections.

#include "BrowserWindowFixture.h"

#include "gui/BrowserPreferences.h"

#include <QAction>
#include <QLabel>

namespace LibraryBrowser::Testing {
namespace {

class SearchDescriptionsTest : public BrowserWindowFixture {};

TEST_F(SearchDescriptionsTest, FindsBlocksByDescriptionOnlyWhenAskedAndKeepsTheChoice)
{
    StandaloneBrowser& window = open();
    auto* descriptions = window.window()->findChild<QAction*>("searchDescriptionsAction");
    ASSERT_NE(descriptions, nullptr);
    EXPECT_FALSE(descriptions->isChecked());

    const auto noResultsText = [&window] {
        const auto* label = window.window()->findChild<QLabel*>("noResultsText");
        return label ? label->text() : QString();
    };
    // Only the PID controller's description speaks of windup.
    window.searchForBlock("windup");
    EXPECT_TRUE(window.getResultsPageBlockNames().empty());
    EXPECT_FALSE(noResultsText().isEmpty());
    EXPECT_FALSE(noResultsText().contains("Search options"));
    descriptions->trigger();
    window.searchForBlock("windup");
    EXPECT_EQ(window.getResultsPageSectionNames(), (std::vector<std::string>{"Tandril", "Kinetics"}));
    EXPECT_EQ(window.getResultsSectionBlockNames("Kinetics"),
              (std::vector<std::string>{"Kinetics/Continuous/PID Controller"}));
    EXPECT_EQ(window.getCurrentStatusBarMessage(),
              "Matches for 'windup'    2 blocksets    0 subsystems    2 blocks");
    // Names still count: a name match is not lost by the option.
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getResultsPageBlockNames().size(), 2u);
    // The three design options still shape the match of the description.
    window.setSearchOptions({false, true, false});
    window.searchForBlock("Windup");
    EXPECT_TRUE(window.getResultsPageBlockNames().empty());
    // The page that says nothing was found names the option too.
    EXPECT_TRUE(noResultsText().endsWith(", Search descriptions too")) << noResultsText().toStdString();

    window.closeBrowser();
    EXPECT_TRUE(BrowserPreferences(preferencesFile()).getBool(PrefKey::LBSearch_Descriptions));
}

} // namespace
} // namespace LibraryBrowser::Testing
