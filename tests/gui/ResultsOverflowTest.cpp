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

// The sections open while the hits opened so far stay within 144: four
// libraries of 36 open all; five of 29 make 145 and the fifth stays shut,
// with no tile made for it; once over, every later section starts hidden.
TEST_F(ResultsOverflowTest, TheFirst144HitsOpenByThemselves)
{
    struct Case {
        const char* pattern;
        bool regExp;
        int libraries;
        std::size_t shown;
        std::size_t tiles;
    };
    const std::vector<Case> cases{
        {thirtySix, true, 4, 4, 144},
        {twentyNine, true, 5, 4, 116},
        {"Block", false, 5, 3, 120},
    };
    for (const Case& c : cases) {
        auto window = makeWindow();
        window->walkedLibraries = c.libraries;
        window->search(c.pattern, c.regExp);
        window->update();
        ResultsBlocksPage& page = window->page();
        const Names sections = page.getPageSectionNames();
        ASSERT_EQ(sections.size(), std::size_t(c.libraries)) << c.pattern;
        const Names shown(sections.begin(), sections.begin() + c.shown);
        EXPECT_EQ(visibleSections(page), shown) << c.pattern;
        EXPECT_EQ(page.getBlocksDisplayPathNames().size(), c.tiles) << c.pattern;
        for (std::size_t s = c.shown; s < sections.size(); ++s)
            EXPECT_TRUE(page.getPageSectionBlocksDisplayPathNames(sections[s]).empty()) << sections[s];
        // The status bar names the last section as it is made.
        const std::string wanted = (c.shown == sections.size() ? "    Showing " : "    Hiding ") + sections.back();
        EXPECT_TRUE(std::any_of(window->statusMessages.begin(), window->statusMessages.end(),
                                [&](const std::string& m) {
                                    return m.size() > wanted.size() &&
                                           m.compare(m.size() - wanted.size(), wanted.size(), wanted) == 0;
                                }))
            << c.pattern;
    }
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
