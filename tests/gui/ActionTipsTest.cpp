// What a tool-bar button says when the mouse rests on it: its own tip where
// it has one; a command without one says its name, not somebody else's tip.

#include "BrowserWindowFixture.h"

#include "frame/MessageCatalogue.h"
#include "gui/BrowserActionTable.h"
#include "gui/BrowserUtils.h"

#include <QAction>

namespace LibraryBrowser::Testing {
namespace {

class ActionTipsTest : public BrowserWindowFixture {};

TEST_F(ActionTipsTest, CommandsShowTheirOwnTipOrTheirName)
{
    StandaloneBrowser& window = open();
    EXPECT_EQ(window.action(BrowserAction::NewModel)->toolTip().toStdString(),
              BrowserUtils::xlatedMessageFromId(MessageId::TDLB_GuiToolBarNewModelToolTip));
    EXPECT_EQ(window.action(BrowserAction::StayOnTop)->toolTip().toStdString(),
              BrowserUtils::xlatedMessageFromId(MessageId::TDLB_GuiToolBarStayOnTopToolTip));
    for (BrowserAction plain : {BrowserAction::Close, BrowserAction::Preferences, BrowserAction::Find}) {
        const QAction* action = window.action(plain);
        EXPECT_EQ(action->toolTip(), action->iconText()) << action->text().toStdString() << "/" << action->toolTip().toStdString();
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
