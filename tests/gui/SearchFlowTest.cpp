// The search bar of the real window: texts typed and entered, options,
// history, the walk over the libraries and what the results tab shows.

#include "BrowserWindowFixture.h"

#include "gui/BrowserPreferences.h"
#include "gui/ResultsBlocksPage.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMessageBox>
#include <QScrollArea>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

namespace LibraryBrowser::Testing {
namespace {

class SearchFlowTest : public BrowserWindowFixture {
protected:
    // Types the text into the search box and presses Return, as a user does.
    void enter(const QString& text)
    {
        QLineEdit* edit = browser().searchComboBox()->lineEdit();
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }
    QStringList history() const
    {
        QStringList items;
        for (int i = 0; i < m_window->searchComboBox()->count(); ++i)
            items.append(m_window->searchComboBox()->itemText(i));
        return items;
    }
    QString resultsTabTitle() const
    {
        return m_window->window()->findChild<QTabWidget*>("LBTabContainer")->tabText(1);
    }
    void SetUp() override
    {
        BrowserWindowFixture::SetUp();
        m_window = &open();
    }

    StandaloneBrowser* m_window = nullptr;
};

TEST_F(SearchFlowTest, HitsInSeveralLibrariesGiveOneSectionEachInTreeOrder)
{
    enter("Delay");
    StandaloneBrowser& window = browser();
    EXPECT_EQ(window.getCurrentTabIndex(), 1);
    EXPECT_EQ(window.getResultsPageSectionNames(), (std::vector<std::string>{"Tandril", "Kinetics"}));
    EXPECT_EQ(window.getResultsSectionBlockNames("Kinetics"),
              (std::vector<std::string>{"Kinetics/Continuous/Transport Delay", "Kinetics/Continuous/Variable Delay",
                                        "Kinetics/Discrete/Unit Delay"}));
    EXPECT_EQ(window.getCurrentStatusBarMessage(),
              "Matches for 'Delay'    2 blocksets    0 subsystems    6 blocks");
    EXPECT_EQ(resultsTabTitle(), "Found: 'Delay'");
    EXPECT_EQ(window.getSearchResultsDisplayPathNames().size(), 6u);
    EXPECT_TRUE(window.isEnabled());
    // The running text named each library as the walk reached it.
    const QStringList texts = statusTexts();
    EXPECT_TRUE(texts.contains("Searching for 'Delay'"));
    EXPECT_TRUE(texts.contains("Matches for 'Delay'    1 blocksets    0 subsystems    3 blocks    Searching Kinetics"));

    // Ctrl+R goes to the selected hit in its library, and back by the tab.
    window.selectSearchResultByDisplayPathName("Kinetics/Discrete/Unit Delay");
    QTest::keyClick(window.window(), Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(window.getCurrentTabIndex(), 0);
    EXPECT_EQ(window.getCurrentTreeNode(), "Kinetics/Discrete");
    EXPECT_EQ(window.getSelectedBlockName(), "Kinetics/Discrete/Unit Delay");
    window.selectTabByIndex(1);
    EXPECT_EQ(window.getSelectedBlockName(), "Kinetics/Discrete/Unit Delay");
}

TEST_F(SearchFlowTest, TheHistoryKeepsTwentyFourAndForgetsWhatFoundNothing)
{
    StandaloneBrowser& window = browser();
    enter("zzzz");
    EXPECT_EQ(resultsTabTitle(), "Not found: 'zzzz'");
    EXPECT_EQ(window.getSearchResultsDisplayPathNames(),
              (std::vector<std::string>{"No search results found for 'zzzz'"}));
    EXPECT_EQ(history().front(), "zzzz");
    enter("Delay");
    EXPECT_FALSE(history().contains("zzzz"));
    // Twenty-seven texts that all find something: the oldest ones go.
    const std::string name = "Transport Delay";
    for (std::size_t start = 0; start < 2; ++start)
        for (std::size_t end = start + 2; end <= name.size(); ++end)
            window.searchForBlock(name.substr(start, end - start));
    QStringList items = history();
    EXPECT_EQ(items.size(), 24);
    EXPECT_EQ(items.front(), "ransport Delay");
    EXPECT_FALSE(items.contains("Delay"));
    window.searchForBlock("zzzz");
    items = history();
    EXPECT_EQ(items.size(), 24);
    EXPECT_EQ(items.front(), "zzzz");
    // The last one found nothing, and isn't kept on disk.
    window.closeBrowser();
    const QStringList saved = BrowserPreferences(preferencesFile()).getStringList(PrefKey::LBSearchHistory);
    EXPECT_EQ(saved, items.mid(1));
}

TEST_F(SearchFlowTest, ShortTextsAndThePromptRunNoSearch)
{
    StandaloneBrowser& window = browser();
    const std::string before = window.getCurrentStatusBarMessage();
    enter("  a ");
    EXPECT_EQ(window.searchComboBox()->currentText(), "Enter search term");
    EXPECT_EQ(window.getCurrentTabIndex(), 0);
    EXPECT_EQ(window.getCurrentStatusBarMessage(), before);
    EXPECT_TRUE(history().isEmpty());
    // Two characters between blanks are searched without the blanks.
    enter("  in ");
    EXPECT_EQ(resultsTabTitle(), "Found: 'in'");
}

TEST_F(SearchFlowTest, OptionsChangeTheMatchAndAreKept)
{
    StandaloneBrowser& window = browser();
    window.setSearchOptions({true, false, false});
    window.searchForBlock("^Unit");
    EXPECT_EQ(window.getResultsPageBlockNames(),
              (std::vector<std::string>{"Tandril/Frequently Used/Discrete Dynamics/Unit Delay",
                                        "Kinetics/Discrete/Unit Delay"}));

    window.setSearchOptions({false, false, true});
    window.searchForBlock("Dela");
    EXPECT_EQ(resultsTabTitle(), "Not found: 'Dela'");
    window.searchForBlock("Delay");
    EXPECT_EQ(window.getResultsPageBlockNames().size(), 6u);

    // A broken expression is no match, and no message box.
    window.setSearchOptions({true, false, false});
    window.searchForBlock("(Delay");
    EXPECT_EQ(resultsTabTitle(), "Not found: '(Delay'");
    EXPECT_TRUE(window.window()->findChildren<QMessageBox*>().isEmpty());

    window.action(BrowserAction::MatchCase)->trigger();
    EXPECT_EQ(window.getSearchOptions(), (std::vector<bool>{true, true, false}));
    EXPECT_THROW(window.setSearchOptions({true}), std::out_of_range);
    window.closeBrowser();
    BrowserPreferences stored(preferencesFile());
    EXPECT_TRUE(stored.getBool(PrefKey::LBSearch_UseRegExp));
    EXPECT_TRUE(stored.getBool(PrefKey::LBSearch_MatchCase));
    EXPECT_FALSE(stored.getBool(PrefKey::LBSearch_MatchWholeWord));
}

TEST_F(SearchFlowTest, AnIdenticalSearchIsNotWalkedAgainButAnOptionChangeIs)
{
    StandaloneBrowser& window = browser();
    window.searchForBlock("Delay");
    window.searchForBlock("Delay");
    EXPECT_EQ(window.getCurrentStatusBarMessage(),
              "Matches for 'Delay'    0 blocksets    0 subsystems    0 blocks");
    EXPECT_TRUE(window.getSearchResultsDisplayPathNames().empty());
    // The page still shows what the first search found.
    EXPECT_EQ(window.getResultsPageSectionNames().size(), 2u);
    window.setSearchOptions({false, true, false});
    window.searchForBlock("Delay");
    EXPECT_EQ(window.getCurrentStatusBarMessage(),
              "Matches for 'Delay'    2 blocksets    0 subsystems    6 blocks");
}

TEST_F(SearchFlowTest, EscapeStopsTheWalkAndShowsWhatWasFound)
{
    StandaloneBrowser& window = browser();
    // Escape arrives while the first library is being searched.
    QTimer::singleShot(0, window.window(), [&window] {
        QTest::keyClick(window.window()->focusWidget() ? window.window()->focusWidget() : window.window(),
                        Qt::Key_Escape);
    });
    window.searchForBlock("Delay");
    EXPECT_EQ(window.getResultsPageSectionNames(), (std::vector<std::string>{"Tandril"}));
    EXPECT_NE(window.getCurrentStatusBarMessage().find("Search cancelled"), std::string::npos);
    EXPECT_TRUE(window.isEnabled());
    // The same text again is a new walk, not a repeat of the cut one.
    window.searchForBlock("Delay");
    EXPECT_EQ(window.getResultsPageSectionNames().size(), 2u);
}

// Keys reach an editable combo box, not its line edit: the box forwards
// them without the line edit's event filters. So the keys below go where a
// keyboard sends them.
TEST_F(SearchFlowTest, TheSearchBoxActsAsAPromptAndFocusGoesWhereTheUserGoesOn)
{
    StandaloneBrowser& window = browser();
    QComboBox* box = window.searchComboBox();
    window.window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.window()));

    // Focused, the prompt is selected: typing replaces it.
    QTest::mouseClick(box->lineEdit(), Qt::LeftButton, {}, QPoint(30, 5));
    settle(50);
    EXPECT_EQ(box->lineEdit()->selectedText(), "Enter search term");
    // A second click places the cursor in the prompt; typing still replaces it.
    QTest::mouseClick(box->lineEdit(), Qt::LeftButton, {}, QPoint(30, 5));
    QTest::keyClicks(box, "Delay");
    EXPECT_EQ(box->currentText(), "Delay");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(resultsTabTitle(), "Found: 'Delay'");
    EXPECT_EQ(QApplication::focusWidget(), window.resultsPage()->getScrollView());

    // The history offers "Delay" in its list but never completes into what
    // is typed: Ctrl+F searches "del".
    box->setFocus();
    box->lineEdit()->selectAll();
    QTest::keyClicks(box, "del");
    QTest::keyClick(window.window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(resultsTabTitle(), "Found: 'del'");

    // Nothing found: the box has the focus back, its text selected.
    box->setFocus();
    box->lineEdit()->selectAll();
    QTest::keyClicks(box, "zzqq");
    QTest::keyClick(box, Qt::Key_Enter);
    EXPECT_EQ(resultsTabTitle(), "Not found: 'zzqq'");
    EXPECT_EQ(QApplication::focusWidget(), box);
    EXPECT_EQ(box->lineEdit()->selectedText(), "zzqq");

    // An empty box and Ctrl+F: the prompt, selected, and no search.
    box->lineEdit()->clear();
    QTest::keyClick(window.window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(box->lineEdit()->selectedText(), "Enter search term");
    EXPECT_EQ(resultsTabTitle(), "Not found: 'zzqq'");
}

} // namespace
} // namespace LibraryBrowser::Testing
