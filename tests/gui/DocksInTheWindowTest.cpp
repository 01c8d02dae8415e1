// The tree, the search results list and the description are docks of the
// window, so that they move, hide and come back with it.

#include "BrowserWindowFixture.h"

#include <QDockWidget>
#include <QMainWindow>

namespace LibraryBrowser::Testing {
namespace {

class DocksInTheWindowTest : public BrowserWindowFixture {};

TEST_F(DocksInTheWindowTest, EveryPanelIsDockedInTheWindow)
{
    StandaloneBrowser& window = open();
    for (const char* name : {"LBTreeDockWidget", "LBSearchDockWidget", "LBDescDockWidget"})
        EXPECT_NE(window.window()->dockWidgetArea(dock(name)), Qt::NoDockWidgetArea) << name;
}

} // namespace
} // namespace LibraryBrowser::Testing
