// "Search descriptions too", the fourth entry of the search options: a block
// whose description matches is found as well, in the usual sections.

#include "BrowserWindowFixture.h"

#include "gui/BrowserPreferences.h"

#include <QAction>
#include <QLabel>
#include <QMenu>

namespace LibraryBrowser::Testing {
namespace {

class SearchDescriptionsTest : public BrowserWindowFixture {};

TEST_F(SearchDescriptionsTest, FindsBlocksByDescriptionOnlyWhenAskedAndKeepsTheChoice)
{
    StandaloneBrowser& window = open();
    auto* descriptions = window.window()->findChild<QAction*>("searchDescriptionsAction");
    ASSERT_NE(descriptions, nullptr);
    QMenu* menu = nullptr;
    for (QObject* object : descriptions->associatedObjects())
        menu = menu ? menu : qobject_cast<QMenu*>(object);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions().indexOf(descriptions), 3);
    EXPECT_EQ(menu->actions().size(), 4);
    EXPECT_EQ(descriptions->text(), "Search descriptions too");
    EXPECT_TRUE(descriptions->isCheckable());
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
