// The search bar of the real window: texts typed and entered, options,
// the search of descriptions, history, the walk over the libraries and what
// the results tab shows.

#include "BrowserWindowFixture.h"

#include "gui/BrowserPreferences.h"
#include "gui/ResultsBlocksPage.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

namespace LibraryBrowser::Testing {
namespace {

using Names = std::vector<std::string>;

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
    QStringList history()
    {
        QStringList items;
        for (int i = 0; i < browser().searchComboBox()->count(); ++i)
            items.append(browser().searchComboBox()->itemText(i));
        return items;
    }
    QString resultsTabTitle() { return browser().window()->findChild<QTabWidget*>("LBTabContainer")->tabText(1); }
    void SetUp() override
    {
        BrowserWindowFixture::SetUp();
        open();
    }
};

// The walk names each library as it goes and gives a section per library in
// tree order; Escape stops it and shows what was found; an identical search
// is not walked again, an option change is; the options and the search of
// descriptions shape the match and are kept.
TEST_F(SearchFlowTest, HitsInSeveralLibrariesGiveOneSectionEachInTreeOrder)
{
    StandaloneBrowser& window = browser();
    enter("Delay");
    EXPECT_EQ(window.getCurrentTabIndex(), 1);
    EXPECT_EQ(window.getResultsPageSectionNames(), (Names{"Tandril", "Kinetics"}));
    EXPECT_EQ(window.getResultsSectionBlockNames("Kinetics"),
              (Names{"Kinetics/Continuous/Transport Delay", "Kinetics/Continuous/Variable Delay",
                     "Kinetics/Discrete/Unit Delay"}));
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'Delay'    2 blocksets    0 subsystems    6 blocks");
    EXPECT_EQ(resultsTabTitle(), "Found: 'Delay'");
    EXPECT_TRUE(statusTexts().contains("Searching for 'Delay'") &&
                statusTexts().contains("Matches for 'Delay'    1 blocksets    0 subsystems    3 blocks    Searching Kinetics"));
    // Ctrl+R goes to the selected hit in its library, and back by the tab.
    window.selectSearchResultByDisplayPathName("Kinetics/Discrete/Unit Delay");
    QTest::keyClick(window.window(), Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(std::make_tuple(window.getCurrentTabIndex(), window.getCurrentTreeNode(), window.getSelectedBlockName()),
              std::make_tuple(0, std::string("Kinetics/Discrete"), std::string("Kinetics/Discrete/Unit Delay")));
    window.selectTabByIndex(1);
    EXPECT_EQ(window.getSelectedBlockName(), "Kinetics/Discrete/Unit Delay");

    // Escape arrives while the first library is being searched.
    QTimer::singleShot(0, window.window(), [&window] {
        QTest::keyClick(window.window()->focusWidget() ? window.window()->focusWidget() : window.window(),
                        Qt::Key_Escape);
    });
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getResultsPageSectionNames(), (Names{"Tandril"}));
    EXPECT_NE(window.getCurrentStatusBarMessage().find("Search cancelled"), std::string::npos);
    EXPECT_TRUE(window.isEnabled());
    // The same text again is a new walk, not a repeat of the cut one.
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getResultsPageSectionNames().size(), 2u);
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'Unit Delay'    0 blocksets    0 subsystems    0 blocks");
    EXPECT_TRUE(window.getSearchResultsDisplayPathNames().empty());
    EXPECT_EQ(window.getResultsPageSectionNames().size(), 2u) << "the page still shows the first search";
    window.setSearchOptions({false, true, false});
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'Unit Delay'    2 blocksets    0 subsystems    2 blocks");

    // "Search descriptions too": only the PID controller's description speaks
    // of windup; names still count, and the other options shape the match.
    window.setSearchOptions({false, false, false});
    auto* descriptions = window.window()->findChild<QAction*>("searchDescriptionsAction");
    ASSERT_NE(descriptions, nullptr);
    EXPECT_FALSE(descriptions->isChecked());
    const auto noResultsText = [&window] {
        const auto* label = window.window()->findChild<QLabel*>("noResultsText");
        return label ? label->text() : QString();
    };
    window.searchForBlock("windup");
    EXPECT_TRUE(window.getResultsPageBlockNames().empty());
    EXPECT_EQ(noResultsText(), "<font color=red>No search results found for 'windup'</font>");
    descriptions->trigger();
    window.searchForBlock("windup");
    EXPECT_TRUE(noResultsText().isEmpty());
    EXPECT_EQ(window.getResultsPageSectionNames(), (Names{"Tandril", "Kinetics"}));
    EXPECT_EQ(window.getResultsSectionBlockNames("Kinetics"), (Names{"Kinetics/Continuous/PID Controller"}));
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'windup'    2 blocksets    0 subsystems    2 blocks");
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getResultsPageBlockNames().size(), 2u);
    window.setSearchOptions({false, true, true});
    window.searchForBlock("Windup");
    EXPECT_TRUE(window.getResultsPageBlockNames().empty());
    EXPECT_EQ(noResultsText(),
              "<font color=red>No search results found for 'Windup'</font><br> <br>Search options: Match whole word, Match case, "
              "Search descriptions too");
    descriptions->trigger();

    window.setSearchOptions({true, false, false});
    window.searchForBlock("^Unit");
    EXPECT_EQ(window.getResultsPageBlockNames(),
              (Names{"Tandril/Frequently Used/Discrete Dynamics/Unit Delay", "Kinetics/Discrete/Unit Delay"}));
    // A broken expression is no match, and no message box; the page names
    // the options (one alone too), the text escaped.
    window.searchForBlock("(<Delay");
    EXPECT_EQ(std::make_tuple(resultsTabTitle(), window.getCurrentStatusBarMessage(), noResultsText(),
                              window.window()->findChildren<QMessageBox*>().size()),
              std::make_tuple(QString("Not found: '(<Delay'"), std::string("No matches for '(<Delay'"),
                              QString("<font color=red>No search results found for '(&lt;Delay'</font><br> <br>Search "
                                      "options: Regular expression"),
                              qsizetype(0)));
    window.action(BrowserAction::MatchCase)->trigger();
    EXPECT_EQ(window.getSearchOptions(), (std::vector<bool>{true, true, false}));
    descriptions->trigger();
    window.closeBrowser();
    BrowserPreferences stored(preferencesFile());
    EXPECT_EQ((std::vector<bool>{stored.getBool(PrefKey::LBSearch_UseRegExp), stored.getBool(PrefKey::LBSearch_MatchCase),
                                 stored.getBool(PrefKey::LBSearch_MatchWholeWord), stored.getBool(PrefKey::LBSearch_Descriptions)}),
              (std::vector<bool>{true, true, false, true}));
}

// Short texts and the prompt run no search; the history keeps twenty-four
// and forgets what found nothing.
TEST_F(SearchFlowTest, ShortTextsRunNoSearchAndTheHistoryKeepsTwentyFour)
{
    StandaloneBrowser& window = browser();
    const std::string before = window.getCurrentStatusBarMessage();
    const QString tip = window.searchComboBox()->toolTip();
    ASSERT_FALSE(tip.isEmpty());
    enter("  a ");
    EXPECT_EQ(std::make_tuple(window.searchComboBox()->currentText(), window.getCurrentTabIndex(),
                              window.getCurrentStatusBarMessage(), history()),
              std::make_tuple(QString("Enter search term"), 0, before, QStringList()));
    // Two characters between blanks are searched without the blanks.
    enter("  in ");
    EXPECT_EQ(resultsTabTitle(), "Found: 'in'");
    // The tip goes with a search and comes back with the prompt.
    EXPECT_TRUE(window.searchComboBox()->toolTip().isEmpty());
    window.searchForBlock("  a ");
    EXPECT_EQ(window.searchComboBox()->toolTip(), tip);

    enter("zzzz");
    EXPECT_EQ(resultsTabTitle(), "Not found: 'zzzz'");
    EXPECT_EQ(window.getSearchResultsDisplayPathNames(), (Names{"No search results found for 'zzzz'"}));
    EXPECT_EQ(history().front(), "zzzz");
    enter("Delay");
    EXPECT_FALSE(history().contains("zzzz"));
    // Twenty-seven texts that all find something: the oldest ones go.
    const std::string name = "Transport Delay";
    for (std::size_t start = 0; start < 2; ++start)
        for (std::size_t end = start + 2; end <= name.size(); ++end)
            window.searchForBlock(name.substr(start, end - start));
    QStringList items = history();
    EXPECT_EQ(std::make_tuple(items.size(), items.value(0), items.contains("Delay")),
              std::make_tuple(qsizetype(24), QString("ransport Delay"), false));
    window.searchForBlock("zzzz");
    items = history();
    EXPECT_EQ(std::make_pair(items.size(), items.value(0)), std::make_pair(qsizetype(24), QString("zzzz")));
    // An empty box and Ctrl+F: the prompt, selected, and no search. Typed
    // text is searched as typed, never completed from the history.
    window.searchComboBox()->lineEdit()->clear();
    QTest::keyClick(window.window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(window.searchComboBox()->lineEdit()->selectedText(), "Enter search term");
    EXPECT_EQ(resultsTabTitle(), "Not found: 'zzzz'");
    window.searchComboBox()->lineEdit()->setText("Unit Del");
    QTest::keyClick(window.window(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(resultsTabTitle(), "Found: 'Unit Del'");
    // The one that found nothing is gone, on disk too.
    window.closeBrowser();
    EXPECT_EQ(BrowserPreferences(preferencesFile()).getStringList(PrefKey::LBSearchHistory), QStringList{"Unit Del"} + items.mid(1));
}

} // namespace
} // namespace LibraryBrowser::Testing
