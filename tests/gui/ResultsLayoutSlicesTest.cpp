// The results page makes a large result's sections over several turns of
// the event loop: which sections each turn makes, and a window that answers
// while turns are pending and ends with every section made, laid out and
// told, and the widgets of the result before deleted.

#include "BrowserWindowFixture.h"

#include "gui/PageSection.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SectionHeader.h"
#include "gui/SectionSlices.h"

#include <QRegularExpression>


namespace LibraryBrowser::Testing {
namespace {

struct SliceCase {
    const char* what;
    int sections;
    int screenful;
    int perTurn;
    int lastShownByUser;
    // The opening rule overflows at this section (after it is made); -1: never.
    int overflowAt;
    std::vector<int> turns;
};

// The number of sections each turn makes, each turn starting where the last
// one stopped.
std::vector<int> turns(const SliceCase& c)
{
    const SectionSlices slices(c.sections, c.screenful, c.perTurn, c.lastShownByUser);
    std::vector<int> sizes;
    int first = 0;
    while (first < slices.sections() && sizes.size() < 100) {
        int index = first;
        while (slices.makes(first, index, c.overflowAt >= 0 && index > c.overflowAt))
            ++index;
        sizes.push_back(index - first);
        first = index;
    }
    return sizes;
}

TEST(ResultsLayoutSlicesTest, TheFirstTurnMakesWhatMayOpenAndAScreenfulLaterTurnsTheRest)
{
    const std::vector<SliceCase> cases{
        {"a screenful first, then turns of the given size", 100, 10, 40, -1, 1, {10, 40, 40, 10}},
        {"every section up to the overflow comes first", 100, 10, 40, -1, 29, {30, 40, 30}},
        {"and through the last one the user opened", 100, 10, 40, 70, 1, {71, 29}},
        {"a user's section within the screenful adds nothing", 100, 10, 40, 3, 1, {10, 40, 40, 10}},
        {"no overflow: every section may open, all at once", 100, 10, 40, -1, -1, {100}},
        {"a small result in one turn", 5, 10, 40, -1, 0, {5}},
        {"nothing to make", 0, 10, 40, -1, -1, {}},
    };
    for (const SliceCase& c : cases)
        EXPECT_EQ(turns(c), c.turns) << c.what;
}

// 120 products of three plain blocks: 48 sections open (144 hits), and the
// rest come as hidden headers in later turns.
class ResultsLayoutSlicesWindowTest : public BrowserWindowFixture {
protected:
    static void SetUpTestSuite() { s_session = ExampleRootSession::synthetic(120, 3).release(); }

    // Lets the later turns run, without asking the page anything that would
    // make the sections at once.
    bool waitForTurns() { return QTest::qWaitFor([this] { return !browser().resultsPage()->laterTurnsPending(); }, 10000); }

    static int headersAlive()
    {
        int count = 0;
        for (const QWidget* widget : QApplication::allWidgets())
            count += widget->objectName() == "sectionHeader";
        return count;
    }
};

std::string selectedPath(const ResultsBlocksPage& page)
{
    return page.getSelectedBlock() ? page.getSelectedBlock()->getDisplayPath() : std::string();
}

// While turns are pending the tiles are there, selected and moved between;
// the status bar tells the last section made, and the totals at the end;
// every section ends made and laid out one below the other in library order;
// a later search deletes the widgets of the one before over its turns.
TEST_F(ResultsLayoutSlicesWindowTest, APendingPageAnswersAndEndsWithEverySectionLaidOut)
{
    StandaloneBrowser& window = open();
    ResultsBlocksPage& page = *window.resultsPage();
    const std::vector<std::string> names = window.getSortedLibraryNames();
    ASSERT_EQ(names.size(), 120u);
    window.searchForBlock("Block");
    ASSERT_TRUE(page.sectionsPending());
    EXPECT_EQ(page.getBlocksDisplayPathNames().size(), 144u);
    EXPECT_EQ(selectedPath(page), names[0] + "/Block 0");
    EXPECT_EQ(window.getCurrentStatusBarMessage(),
              "Matches for 'Block'    120 blocksets    0 subsystems    360 blocks    Hiding " + names[48]);
    for (int i = 0; i < 3; ++i)
        page.selectBlockRight();
    EXPECT_EQ(selectedPath(page), names[1] + "/Block 0");
    page.selectBlockLeft();
    EXPECT_EQ(selectedPath(page), names[0] + "/Block 2");
    ASSERT_TRUE(page.sectionsPending()) << "the moves must not make the sections";

    ASSERT_TRUE(waitForTurns());
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'Block'    120 blocksets    0 subsystems    360 blocks");
    ASSERT_EQ(page.getPageSectionNames(), names);
    QApplication::processEvents();
    int bottom = 0;
    for (const std::string& name : names) {
        const PageSection* section = page.getSectionByName(name);
        const QRect header = section->header->geometry();
        EXPECT_GE(header.top(), bottom) << name;
        EXPECT_EQ(header.height(), section->header->minimumHeight()) << name;
        bottom = header.bottom() + (section->expanded ? section->body->height() : 0);
    }
    EXPECT_GE(page.getMainPanel()->height(), bottom);
    EXPECT_EQ(page.getMainPanel()->height(), page.getContentsHeight());

    // A new search (another option, the same hits) while the library page
    // is in front: its turns make the sections but leave the status bar to
    // the library page.
    window.setSearchOptions({false, true, false});
    window.searchForBlock("Block");
    window.selectTreeNodeByName(names[5]);
    const std::string libraryStatus = window.getCurrentStatusBarMessage();
    ASSERT_TRUE(page.sectionsPending());
    ASSERT_TRUE(waitForTurns());
    EXPECT_EQ(window.getCurrentStatusBarMessage(), libraryStatus);
    EXPECT_EQ(headersAlive(), 120) << "the first result's headers are deleted";
    EXPECT_EQ(page.getStatusMessage(), "Matches for 'Block'    120 blocksets    0 subsystems    360 blocks");

    // A result that opens whole is made at once; the widgets before it still
    // go over later turns.
    window.searchForBlock("Block 2");
    EXPECT_FALSE(page.sectionsPending());
    ASSERT_TRUE(waitForTurns());
    EXPECT_EQ(std::make_pair(headersAlive(), page.getBlocksDisplayPathNames().size()), std::make_pair(120, std::size_t(120)));
}

// A search started while the page still makes the last result's sections
// walks first, with nothing of the old result told meanwhile; a scripted
// question about the sections makes those still to come at once.
TEST_F(ResultsLayoutSlicesWindowTest, TurnsWaitForASearchAndAQuestionByNameMakesEverySection)
{
    StandaloneBrowser& window = open();
    ResultsBlocksPage& page = *window.resultsPage();
    const std::vector<std::string> names = window.getSortedLibraryNames();
    window.searchForBlock("Block");
    ASSERT_TRUE(page.sectionsPending());
    QStringList texts;
    QObject::connect(window.window()->statusBar(), &QStatusBar::messageChanged, window.window(),
                     [&texts](const QString& text) { texts.append(text); });
    window.setSearchOptions({false, true, false});
    window.searchForBlock("Block");
    ASSERT_TRUE(page.sectionsPending());
    const qsizetype lastSearching = texts.lastIndexOf(QRegularExpression(".*    Searching .*"));
    EXPECT_TRUE(lastSearching > 0 && lastSearching < texts.indexOf(QRegularExpression(".*    (Showing|Hiding) .*")))
        << texts.join(" | ").toStdString();

    EXPECT_FALSE(page.isResultsSectionVisibleGui(names.back()));
    EXPECT_FALSE(page.sectionsPending());
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'Block'    120 blocksets    0 subsystems    360 blocks");
    window.setSearchOptions({false, false, false});
    window.searchForBlock("Block");
    ASSERT_TRUE(page.sectionsPending());
    EXPECT_TRUE(page.showResultsSectionByName(names.back()));
    EXPECT_EQ(page.getPageSectionBlocksDisplayPathNames(names.back()).size(), 3u);
}

} // namespace
} // namespace LibraryBrowser::Testing
