#include "ResultsPageFixture.h"

#include "gui/ResultsBlocksPage.h"

#include <QApplication>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

using Names = std::vector<std::string>;

// Five products of forty plain blocks, "Block 0" to "Block 39" each, so
// that a pattern picks the same number of hits in every library.
class ResultsOverflowTest : public ResultsPageFixture {
protected:
    static void SetUpTestSuite() { openSyntheticRoot(5, 40); }

    static constexpr const char* thirtySix = "^Block ([0-9]|[12][0-9]|3[0-5])$";
    static constexpr const char* twentyNine = "^Block ([0-9]|1[0-9]|2[0-8])$";
};

} // namespace

// Five libraries of 29 hits make 145: the fifth section stays shut, with no
// tile made for it, and the status bar says it is hidden. (Which section
// opens in every other case is the opening rule's table.)
TEST_F(ResultsOverflowTest, TheFirst144HitsOpenByThemselves)
{
    auto window = makeWindow();
    window->search(twentyNine, true);
    window->update();
    ResultsBlocksPage& page = window->page();
    const Names sections = page.getPageSectionNames();
    ASSERT_EQ(sections.size(), 5u);
    EXPECT_EQ(visibleSections(page), Names(sections.begin(), sections.begin() + 4));
    EXPECT_EQ(page.getBlocksDisplayPathNames().size(), 116u);
    EXPECT_TRUE(page.getPageSectionBlocksDisplayPathNames(sections.back()).empty());
    const std::string hiding = "    Hiding " + sections.back();
    EXPECT_TRUE(std::any_of(window->statusMessages.begin(), window->statusMessages.end(), [&](const std::string& m) {
        return m.size() > hiding.size() && m.compare(m.size() - hiding.size(), hiding.size(), hiding) == 0;
    }));
}

// A section the user opens past the limit is filled then, and is forgotten
// at the next search. (A resize keeps what the user left: ResultsPageTest.)
TEST_F(ResultsOverflowTest, ASectionOpenedByTheUserLastsForOneResult)
{
    auto window = makeWindow();
    window->search(twentyNine, true);
    window->update();
    ResultsBlocksPage& page = window->page();
    const std::string fifth = page.getPageSectionNames().back();
    ASSERT_FALSE(page.isResultsSectionVisibleGui(fifth));

    EXPECT_TRUE(page.showResultsSectionByName(fifth));
    EXPECT_TRUE(page.isResultsSectionVisibleGui(fifth));
    EXPECT_EQ(page.getPageSectionBlocksDisplayPathNames(fifth).size(), 29u);
    EXPECT_EQ(page.getBlocksDisplayPathNames().size(), 145u);

    window->search(thirtySix, true);
    window->update();
    EXPECT_FALSE(page.isResultsSectionVisibleGui(fifth));
    EXPECT_EQ(visibleSections(page).size(), 4u);
}
