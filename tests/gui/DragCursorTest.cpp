// The cursor a drag of a tile puts on the page ends with the drag.

#include "BlockActionsFixture.h"

#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"

namespace LibraryBrowser::Testing {
namespace {

class DragCursorTest : public BlockActionsFixture {};

TEST_F(DragCursorTest, ThePageGetsItsOwnCursorBackWhenTheDragEnds)
{
    openOn("Kinetics/Continuous");
    const std::string model = newSystem("Model");
    Host::ModelWindow* target = modelWindow(model);
    placeBesideBrowser(target);
    GuiBlock* integrator = tile("Kinetics/Continuous/Integrator");
    ASSERT_NE(integrator, nullptr);
    BlocksPanel* page = integrator->getPanel();
    ASSERT_NE(page, nullptr);
    drag(integrator, Qt::LeftButton, target->viewport()->mapToGlobal(QPoint(60, 40)));
    ASSERT_EQ(blocksOf(model), QStringList{"Integrator"}) << "the drag reached the model";
    EXPECT_FALSE(page->testAttribute(Qt::WA_SetCursor)) << page->cursor().shape();
}

} // namespace
} // namespace LibraryBrowser::Testing
