// The search box's tip explains it while it shows the prompt; a search that
// found blocks takes the tip away, and going back to the prompt brings it back.

#include "BrowserWindowFixture.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>

namespace LibraryBrowser::Testing {
namespace {

class SearchBoxTipTest : public BrowserWindowFixture {
protected:
    void enter(const QString& text)
    {
        QLineEdit* edit = browser().searchComboBox()->lineEdit();
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }
};

TEST_F(SearchBoxTipTest, ThePromptBringsBackTheTipThatAFoundSearchTookAway)
{
    const QString tip = open().searchComboBox()->toolTip();
    ASSERT_FALSE(tip.isEmpty());
    enter("gain");
    ASSERT_TRUE(browser().searchComboBox()->toolTip().isEmpty());
    enter("  a ");
    EXPECT_EQ(browser().searchComboBox()->currentText(), "Enter search term");
    EXPECT_EQ(browser().searchComboBox()->toolTip(), tip);
}

} // namespace
} // namespace LibraryBrowser::Testing
