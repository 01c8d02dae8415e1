// The search bar and results page of the real window: texts typed and
// entered, options, history, the walk over the libraries, a section per
// library hidden and shown by the user, the selection's moves across
// sections, and roots unlike the example's (a product the store can no
// longer resolve, a root without "Tandril").

#include "BrowserWindowFixture.h"

#include "gui/LBImageLink.h"
#include "gui/LibraryTreeView.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SectionHeader.h"
#include "gui/SectionTitleLink.h"
#include "repository/TandrilObjectReferenceIterator.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScrollArea>
#include <QTabWidget>
#include <algorithm>
#include <cstdlib>

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
};

// The walk names each library as it goes and gives a section per library in
// tree order; Escape stops it and shows what was found; an identical search
// is not walked again, an option change is; the options and the search of
// descriptions shape the match and are kept.
TEST_F(SearchFlowTest, HitsInSeveralLibrariesGiveOneSectionEachInTreeOrder)
{
    StandaloneBrowser& window = open();
    enter("Delay");
    EXPECT_EQ(std::make_tuple(window.getCurrentTabIndex(), window.getResultsPageSectionNames(),
                              window.getResultsSectionBlockNames("Kinetics"), window.getCurrentStatusBarMessage(),
                              resultsTabTitle()),
              std::make_tuple(1, Names{"Tandril", "Kinetics"},
                              Names{"Kinetics/Continuous/Transport Delay", "Kinetics/Continuous/Variable Delay",
                                    "Kinetics/Discrete/Unit Delay"},
                              std::string("Matches for 'Delay'    2 blocksets    0 subsystems    6 blocks"),
                              QString("Found: 'Delay'")));
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
    EXPECT_TRUE(window.getResultsPageSectionNames() == Names{"Tandril"} && window.isEnabled() &&
                window.getCurrentStatusBarMessage().find("Search cancelled") != std::string::npos);
    // The same text again is a new walk, not a repeat of the cut one.
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getResultsPageSectionNames().size(), 2u);
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'Unit Delay'    0 blocksets    0 subsystems    0 blocks");
    EXPECT_TRUE(window.getSearchResultsDisplayPathNames().empty() && window.getResultsPageSectionNames().size() == 2u)
        << "the page still shows the first search";
    window.setSearchOptions({false, true, false});
    window.searchForBlock("Unit Delay");
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'Unit Delay'    2 blocksets    0 subsystems    2 blocks");

    // "Search descriptions too": only the PID controller's description speaks
    // of windup; names still count, and the other options shape the match.
    window.setSearchOptions({false, false, false});
    auto* descriptions = window.window()->findChild<QAction*>("searchDescriptionsAction");
    ASSERT_TRUE(descriptions && !descriptions->isChecked());
    const auto noResultsText = [&window] {
        const auto* label = window.window()->findChild<QLabel*>("noResultsText");
        return label ? label->text() : QString();
    };
    window.searchForBlock("windup");
    EXPECT_TRUE(window.getResultsPageBlockNames().empty() &&
                noResultsText() == "<font color=red>No search results found for 'windup'</font>");
    descriptions->trigger();
    window.searchForBlock("windup");
    EXPECT_EQ(std::make_tuple(noResultsText(), window.getResultsPageSectionNames(),
                              window.getResultsSectionBlockNames("Kinetics"), window.getCurrentStatusBarMessage()),
              std::make_tuple(QString(), Names{"Tandril", "Kinetics"}, Names{"Kinetics/Continuous/PID Controller"},
                              std::string("Matches for 'windup'    2 blocksets    0 subsystems    2 blocks")));
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
    StandaloneBrowser& window = open();
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

using ResultsPageTest = BrowserWindowFixture;

// The sections in order with their tiles, "-" before a hidden one.
std::string sections(ResultsBlocksPage& page)
{
    std::string text;
    for (const std::string& name : page.getPageSectionNames())
        text += (text.empty() ? "" : ", ") + std::string(page.isResultsSectionVisibleGui(name) ? "" : "-") + name + " " +
                std::to_string(page.getPageSectionBlocksDisplayPathNames(name).size());
    return text;
}

std::string selectedPath(ResultsBlocksPage& page)
{
    return page.getSelectedBlock() ? page.getSelectedBlock()->getDisplayPath() : std::string();
}

void clickToggle(ResultsBlocksPage& page, const std::string& name)
{
    QTest::mouseClick(page.getSectionByName(name)->header->imageLink(), Qt::LeftButton);
    QApplication::processEvents();
}

// Sections in tree order with their counts and tiles; the header's image
// hides and shows a section, whose tiles outlive the hide; with the
// preference a hidden library stays hidden in the next search, without it
// a new search opens every section again; a resize keeps what the user hid.
TEST_F(ResultsPageTest, SectionsFollowTheLibrariesAndAHiddenOneIsRememberedOrForgotten)
{
    StandaloneBrowser& window = open();
    ResultsBlocksPage& page = *window.resultsPage();
    window.searchForBlock("port");
    EXPECT_EQ(sections(page), "Tandril 9, Kinetics 1, Switchyard 1");
    EXPECT_EQ(page.getSectionByName("Tandril")->header->count()->text(), "9");
    EXPECT_EQ(page.getPageSectionBlocksDisplayPathNames("Switchyard"), (Names{"Switchyard/Routing/Multiport Switch"}));
    SectionTitleLink* title = page.getSectionByName("Switchyard")->header->titleLink();
    // The first tile is selected and described; the status tells the totals.
    EXPECT_EQ(selectedPath(page), "Tandril/Ports & Subsystems");
    EXPECT_TRUE(window.descriptionText()->text().startsWith("<b>Tandril/Ports &amp; Subsystems</b>: "));
    EXPECT_EQ(window.getCurrentStatusBarMessage(), "Matches for 'port'    3 blocksets    1 subsystems    10 blocks");
    EXPECT_TRUE(statusTexts().contains("Matches for 'port'    3 blocksets    1 subsystems    10 blocks    Showing Switchyard"));
    // The title opens its library in the tree.
    emit title->linkActivated(QStringLiteral("library"));
    EXPECT_EQ(window.getCurrentTreeNode(), "Switchyard");

    window.searchForBlock("wave");
    ASSERT_EQ(sections(page), "Tandril 4, Kinetics 3, Signal Workbench 4, Switchyard 3");
    clickToggle(page, "Switchyard");
    EXPECT_EQ(sections(page), "Tandril 4, Kinetics 3, Signal Workbench 4, -Switchyard 3") << "the tiles outlive the hide";
    // The picture for the docs, where TDLB_SCREENSHOT_DIR names a directory.
    if (const char* directory = std::getenv("TDLB_SCREENSHOT_DIR")) {
        EXPECT_TRUE(page.getScrollView()->grab().save(QString::fromLocal8Bit(directory) + "/results-page.png", "PNG"));
    }
    EXPECT_TRUE(page.getSectionByName("Switchyard")->header->imageLink()->expandsOnClick());

    window.searchForBlock("gate");
    EXPECT_EQ(sections(page), "Tandril 9, Signal Workbench 1, -Switchyard 0") << "filled only when shown";
    EXPECT_TRUE(statusTexts().contains("Matches for 'gate'    3 blocksets    0 subsystems    16 blocks    Hiding Switchyard"));
    clickToggle(page, "Switchyard");
    EXPECT_EQ(sections(page), "Tandril 9, Signal Workbench 1, Switchyard 6");
    EXPECT_FALSE(page.getSectionByName("Switchyard")->header->imageLink()->expandsOnClick());

    // The window that forgets: by name, unknown sections answer false.
    closeWindow();
    BrowserPreferences prefs(preferencesFile());
    prefs.setBool(PrefKey::LBSearchResults_rememberUserHiddenSections, false);
    ASSERT_TRUE(prefs.save());
    StandaloneBrowser& forgetting = open();
    ResultsBlocksPage& again = *forgetting.resultsPage();
    forgetting.searchForBlock("delay");
    EXPECT_TRUE(again.hideResultsSectionByName("Kinetics") && again.hideResultsSectionByName("Kinetics"));
    EXPECT_FALSE(again.hideResultsSectionByName("Nowhere") || again.showResultsSectionByName("Nowhere"));
    EXPECT_EQ(sections(again), "Tandril 3, -Kinetics 3");
    const long long tiles = GuiBlock::instancesCreated();
    forgetting.window()->resize(forgetting.window()->size() + QSize(0, 20));
    settle();
    EXPECT_EQ(std::make_pair(sections(again), GuiBlock::instancesCreated()), std::make_pair(std::string("Tandril 3, -Kinetics 3"), tiles));
    forgetting.searchForBlock("wave");
    EXPECT_EQ(sections(again), "Tandril 4, Kinetics 3, Signal Workbench 4, Switchyard 3");

    // Moves cross from section to section by the rows of two columns, take the
    // last tile of a shorter last row, pass over hidden sections and never wrap.
    forgetting.setIconSize(IconSize::Compact);
    forgetting.window()->resize(750, 600);
    settle();
    forgetting.searchForBlock("wave");
    ASSERT_EQ(again.getNumIconCols(), 2);
    const auto select = [&](const std::string& path) { again.setSelectedBlock(again.getBlockByPathName(path)); };
    const std::string tandril = "Tandril/Frequently Used/Wave Sources";
    const std::string kinetics = "Kinetics/Test Signals/";
    const std::string workbench = "Signal Workbench/Wavecraft Signals";
    const std::string switchyard = "Switchyard/Timing Sources/";
    // Which move lands where is the section arithmetic's to pin; here the
    // page's wiring of it: across sections, no wrap, the short last row.
    const std::vector<std::tuple<void (ResultsBlocksPage::*)(), std::string, std::string>> moves{
        {&ResultsBlocksPage::selectBlockDown, kinetics + "Triangle Wave", workbench},
        {&ResultsBlocksPage::selectBlockUp, workbench + "/Sources/Sine Wave", kinetics + "Triangle Wave"},
        {&ResultsBlocksPage::selectBlockRight, kinetics + "Triangle Wave", workbench},
        {&ResultsBlocksPage::selectBlockLeft, tandril, tandril},
        {&ResultsBlocksPage::selectBlockDown, switchyard + "Square Wave", switchyard + "Triangle Wave"},
    };
    for (const auto& [move, from, to] : moves) {
        select(from);
        (again.*move)();
        EXPECT_EQ(selectedPath(again), to) << "from " << from;
    }
    // A hidden section is passed over (which tile each move lands on: the
    // section arithmetic), and a key press reaches the same moves.
    again.hideResultsSectionByName("Kinetics");
    select(tandril + "/Square Wave");
    QTest::keyClick(again.getScrollView(), Qt::Key_Down);
    EXPECT_EQ(selectedPath(again), workbench);
}

// The default stores, with one more product at the top that names nothing
// the store holds.
class RepositoryWithUnresolvedProduct : public XMLRepository {
public:
    TandrilObjectIterator getTopLevelIterator() override
    {
        TandrilObjectList products;
        for (TandrilObjectIterator it = XMLRepository::getTopLevelIterator(); it.isValidIterator(); it.next())
            products.push_back(it.current());
        products.push_back(getTandrilObject("Unresolved"));
        return TandrilObjectReferenceIterator::overList(getCache(), std::move(products));
    }
};

TEST(BrowserInvalidLibraryTest, AnUnresolvedProductHasANodeButIsNotSearched)
{
    ExampleRootSession session;
    auto repository = std::make_shared<RepositoryWithUnresolvedProduct>();
    repository->updateProducts();
    ASSERT_FALSE(repository->getTandrilObject("Unresolved").isValid());

    const auto texts = std::make_shared<QStringList>();
    std::unique_ptr<StandaloneBrowser> window = showBrowser(repository, texts);

    QStringList topLevel;
    for (int i = 0; i < window->tree()->topLevelItemCount(); ++i)
        topLevel.append(window->tree()->topLevelItem(i)->text(0).trimmed());
    EXPECT_TRUE(topLevel.contains("InvalidLibrary") && topLevel.contains("Kinetics")) << topLevel.join(", ").toStdString();

    QLineEdit* edit = window->searchComboBox()->lineEdit();
    edit->setText("Delay");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(window->getResultsPageSectionNames(), (std::vector<std::string>{"Tandril", "Kinetics"}));
    EXPECT_TRUE(!texts->filter("Searching Kinetics").isEmpty() && texts->filter("InvalidLibrary").isEmpty())
        << texts->join(" | ").toStdString();
}

// Five products of forty plain blocks, "Block 0" to "Block 39" each, so
// that a pattern picks the same number of hits in every library: 29 each
// make 145, so the fifth section stays shut with no tile made and the status
// says so; opened by the user it is filled, and forgotten at the next search.
// (Which section opens in every other case is the opening rule's table.)
TEST(BrowserWithoutMainLibraryTest, TheProductsInOrderAndTheFirst144HitsOpenByThemselves)
{
    const std::unique_ptr<ExampleRootSession> session = ExampleRootSession::synthetic(5, 40);
    ASSERT_NE(session, nullptr);
    const auto texts = std::make_shared<QStringList>();
    std::unique_ptr<StandaloneBrowser> window = showBrowser(session->repositoryPtr(), texts);
    const std::vector<std::string> names = window->getSortedLibraryNames();
    ASSERT_EQ(names.size(), 5u);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()) && window->getCurrentTreeNode() == names.front());
    EXPECT_FALSE(window->libraryPage()->getBlocksDisplayPathNames().empty());

    window->setSearchOptions({true, false, false});
    window->searchForBlock("^Block ([0-9]|1[0-9]|2[0-8])$");
    ResultsBlocksPage& page = *window->resultsPage();
    ASSERT_EQ(page.getPageSectionNames(), names);
    const std::string fifth = names.back();
    for (const std::string& name : names)
        EXPECT_EQ(page.isResultsSectionVisibleGui(name), name != fifth) << name;
    EXPECT_EQ(page.getBlocksDisplayPathNames().size(), 116u);
    EXPECT_TRUE(page.getPageSectionBlocksDisplayPathNames(fifth).empty());
    EXPECT_FALSE(texts->filter(QRegularExpression(QString::fromStdString("    Hiding " + fifth + "$"))).isEmpty());

    EXPECT_TRUE(page.showResultsSectionByName(fifth) && page.isResultsSectionVisibleGui(fifth));
    EXPECT_EQ(std::make_pair(page.getPageSectionBlocksDisplayPathNames(fifth).size(), page.getBlocksDisplayPathNames().size()),
              std::make_pair(std::size_t(29), std::size_t(145)));
    window->searchForBlock("^Block ([0-9]|[12][0-9]|3[0-5])$");
    EXPECT_TRUE(!page.isResultsSectionVisibleGui(fifth) && page.isResultsSectionVisibleGui(names[3]));
}

} // namespace
} // namespace LibraryBrowser::Testing
