// Choosing the layout the page already has keeps its tiles; another layout
// builds them anew in that layout.

#include "BrowserWindowFixture.h"

#include "gui/GuiBlock.h"

namespace LibraryBrowser::Testing {
namespace {

class LayoutRebuildTest : public BrowserWindowFixture {};

TEST_F(LayoutRebuildTest, OnlyADifferentLayoutRebuildsThePage)
{
    StandaloneBrowser& window = open();
    const long long tiles = GuiBlock::instancesCreated();
    window.setLayout(window.getLayoutType());
    EXPECT_EQ(GuiBlock::instancesCreated(), tiles);
    const LayoutType other = window.getLayoutType() == LayoutType::List ? LayoutType::Grid : LayoutType::List;
    window.setLayout(other);
    EXPECT_EQ(window.getLayoutType(), other);
    EXPECT_GT(GuiBlock::instancesCreated(), tiles);
}

} // namespace
} // namespace LibraryBrowser::Testing
