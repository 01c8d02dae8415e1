// The search box's tip explains it while it shows the prompt; a search that
// found blocks takes the tip away, and going back to the prompt brings it back.

#include "BrowserWindowFixture.h"

#include <QComboBox>

namespace LibraryBrowser::Testing {
namespace {

class SearchBoxTipTest : public BrowserWindowFixture {};

TEST_F(SearchBoxTipTest, ThePromptBringsBackTheTipThatAFoundSearchTookAway)
{
    StandaloneBrowser& window = open();
    const QString tip = window.searchComboBox()->toolTip();
    ASSERT_FALSE(tip.isEmpty());
    window.searchForBlock("gain");
    settle();
    ASSERT_TRUE(window.searchComboBox()->toolTip().isEmpty());
    window.searchForBlock("  a ");
    settle();
    EXPECT_EQ(window.searchComboBox()->currentText(), "Enter search term");
    EXPECT_EQ(window.searchComboBox()->toolTip(), tip);
}

} // namespace
} // namespace LibraryBrowser::Testing
