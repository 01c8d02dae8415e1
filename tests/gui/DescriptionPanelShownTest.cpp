// The "Block Description" dock shows its icon and text inside the window,
// not in a stray window of their own.

#include "BrowserWindowFixture.h"

#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>

namespace LibraryBrowser::Testing {
namespace {

class DescriptionPanelShownTest : public BrowserWindowFixture {};

TEST_F(DescriptionPanelShownTest, TheDescriptionsIconAndTextSitInTheVisibleDock)
{
    StandaloneBrowser& window = open();
    QDockWidget* descriptions = dock("LBDescDockWidget");
    ASSERT_TRUE(descriptions->isVisible());
    for (const char* name : {"LBDescText", "LBDescIcon"}) {
        auto* label = descriptions->findChild<QLabel*>(name);
        ASSERT_NE(label, nullptr) << name;
        EXPECT_TRUE(label->isVisible()) << name;
        EXPECT_EQ(label->window(), window.window()) << name;
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
