// The description's text goes beside the block's icon in a wide dock and
// below it in a narrow one, as the dock is resized.

#include "BrowserWindowFixture.h"

#include <QDockWidget>
#include <QGridLayout>
#include <QLabel>

namespace LibraryBrowser::Testing {
namespace {

class DescriptionTextPlaceTest : public BrowserWindowFixture {
protected:
    // The text's row and column in the description's grid.
    std::pair<int, int> textCell(QDockWidget* descriptions)
    {
        auto* text = descriptions->findChild<QLabel*>("LBDescText");
        auto* grid = qobject_cast<QGridLayout*>(text->parentWidget()->layout());
        int row = -1, column = -1, rows = 0, columns = 0;
        grid->getItemPosition(grid->indexOf(text), &row, &column, &rows, &columns);
        return {row, column};
    }
};

TEST_F(DescriptionTextPlaceTest, TheTextMovesBelowTheIconInANarrowDockAndBackInAWideOne)
{
    open();
    QDockWidget* descriptions = dock("LBDescDockWidget");
    descriptions->widget()->resize(150, 400);
    settle();
    EXPECT_EQ(textCell(descriptions), std::make_pair(1, 0));
    descriptions->widget()->resize(600, 90);
    settle();
    EXPECT_EQ(textCell(descriptions), std::make_pair(0, 1));
}

} // namespace
} // namespace LibraryBrowser::Testing
