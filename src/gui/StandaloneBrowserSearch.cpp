// The search bar's flow: validation, history, the walk over the libraries
// with a running status, and the hand-over to the results page.

#include "gui/StandaloneBrowser.h"

#include "frame/MessageCatalogue.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SearchHistory.h"
#include "repository/TandrilObjectDeferredIterator.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QScrollArea>
#include <QTabWidget>
#include <QTimer>

#include <stdexcept>

namespace LibraryBrowser {

using namespace BrowserUtils;

bool StandaloneBrowser::validateSearchString(std::string& text) const { return SearchHistory::validateSearchString(text); }

void StandaloneBrowser::searchForBlock(const std::string& text)
{
    m_searchComboBox->setEditText(QString::fromStdString(text));
    internalSearchForString(text);
}

std::vector<bool> StandaloneBrowser::getSearchOptions() const
{
    return {action(BrowserAction::RegularExpression)->isChecked(), action(BrowserAction::MatchCase)->isChecked(),
            action(BrowserAction::WholeWord)->isChecked()};
}

void StandaloneBrowser::setSearchOptions(const std::vector<bool>& options)
{
    if (options.size() < 3)
        throw std::out_of_range("setSearchOptions needs three values");
    const BrowserAction ids[] = {BrowserAction::RegularExpression, BrowserAction::MatchCase, BrowserAction::WholeWord};
    for (int i = 0; i < 3; ++i) {
        action(ids[i])->setChecked(options[i]);
        internalSetSearchOption(ids[i], options[i]);
    }
}

void StandaloneBrowser::internalSetSearchOption(BrowserAction id, bool on)
{
    // An option only takes effect at the next search.
    if (id == BrowserAction::RegularExpression)
        m_useRegExp = on;
    else if (id == BrowserAction::MatchCase)
        m_matchCase = on;
    else if (id == BrowserAction::WholeWord)
        m_matchWholeWord = on;
}

void StandaloneBrowser::internalResetSearchResults()
{
    std::vector<Library> libraries = std::move(m_searchResults.libraries);
    m_searchResults = SearchResults();
    m_searchResults.libraries = std::move(libraries);
}

void StandaloneBrowser::internalSearchForString(std::string text)
{
    if (m_searching)
        return;
    if (!validateSearchString(text))
        text = m_searchPrompt;
    const QString prompt = QString::fromStdString(m_searchPrompt);
    if (text == m_searchPrompt) {
        m_searchComboBox->setEditText(prompt);
        m_searchComboBox->setToolTip(QString::fromStdString(xlatedMessageFromId(MessageId::TDLB_GuiSearchEditAreaToolTip)));
        internalFocusSearchBoxSelected();
        return;
    }

    QStringList items;
    for (int i = 0; i < m_searchComboBox->count(); ++i)
        items.append(m_searchComboBox->itemText(i));
    const QString entered = QString::fromStdString(text);
    items = SearchHistory::beforeSearch(items, entered, QString::fromStdString(m_lastFailedSearch), prompt,
                                        SEARCH_HISTORY_LIMIT);
    m_searchComboBox->clear();
    m_searchComboBox->addItems(items);
    m_searchComboBox->setCurrentIndex(int(items.indexOf(entered)));
    m_searchComboBox->setEditText(entered);

    const bool regExp = m_useRegExp;
    const bool wholeWord = m_matchWholeWord;
    const bool matchCase = m_matchCase;
    const bool descriptions = m_searchDescriptions;
    internalEnableBrowser(false);
    m_searching = true;
    // Results cut short by Escape are never taken for a finished search.
    const bool lastCancelled = m_searchCancelled;
    m_searchCancelled = false;
    // Escape must reach the window while it is disabled.
    qApp->installEventFilter(this);
    m_searchListBox->clear();
    if (m_listBoxShowable) {
        m_searchPanelVisible = true;
        action(BrowserAction::SearchList)->setChecked(true);
        m_searchDock->show();
    }

    m_searchResults.searchResults.clear();
    internalSetStatusBarMessage(xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarSearchingForString, text));
    int blocks = 0;
    int subsystems = 0;
    int librariesWithHits = 0;

    SearchResults& results = m_searchResults;
    const bool repeat = !lastCancelled && !results.resultsNeedReload && m_resultsPage->getResults().searchString == text &&
                        m_resultsPage->getResults().useRegExp == regExp &&
                        m_resultsPage->getResults().matchWholeWord == wholeWord &&
                        m_resultsPage->getResults().matchCase == matchCase &&
                        m_resultsPage->getResults().searchDescriptions == descriptions;
    if (!repeat) {
        std::string longestName;
        std::string longestPath;
        int maxHits = 0;
        int libraries = 0;
        std::vector<std::string> listed;
        QElapsedTimer sinceEvents;
        for (const Library& library : results.libraries) {
            if (m_searchCancelled)
                break;
            const std::string path = library.getDisplayPath();
            if (path.size() > longestPath.size())
                longestPath = path;
            const std::string running = xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(
                MessageId::TDLB_GuiStatusBarSearchResultsNowSearching, text, librariesWithHits, subsystems, blocks,
                path);
            m_resultsPage->setStatusMessage(running);
            internalSetStatusBarMessage(running);
            // The running text is painted, and Escape heard, between libraries;
            // often enough that one slow library read on top of the wait still
            // keeps the window answering within a tenth of a second.
            if (!sinceEvents.isValid() || sinceEvents.elapsed() >= 15) {
                QApplication::processEvents();
                sinceEvents.start();
            }
            const auto regExpOption = regExp ? SearchOptions::RegExpOn : SearchOptions::RegExpOff;
            const auto wholeWordOption = wholeWord ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff;
            const auto matchCaseOption = matchCase ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff;
            const auto walk = [repository = m_repository, text, library, descriptions, regExpOption, wholeWordOption,
                               matchCaseOption] {
                return descriptions ? repository->findBlocksByNameOrDescription(
                                          text, TandrilObject(library), regExpOption, wholeWordOption, matchCaseOption)
                                    : repository->findBlocks(text, TandrilObject(library), regExpOption,
                                                             wholeWordOption, matchCaseOption);
            };
            SingleLibrarySearchResults_tag hits;
            listed.clear();
            // The store's index gives the counts and the list; the page walks
            // the manifests only for the sections it opens.
            if (std::optional<IndexedSearch::Hits> indexed = m_repository->searchIndexed(
                    library, text, regExpOption, wholeWordOption, matchCaseOption, descriptions)) {
                if (indexed->matched == 0)
                    continue;
                hits = indexedSearchHits(*indexed, TandrilObjectDeferredIterator::defer(walk), libraries, listed);
            } else {
                TandrilObjectIterator found = walk();
                if (found.isEmpty())
                    continue;
                hits = countSearchHits(found, libraries, &listed);
            }
            QStringList items;
            items.reserve(int(listed.size()));
            for (const std::string& item : listed)
                items.append(QString::fromStdString(item));
            m_searchListBox->addItems(items);
            if (hits.longestName.size() > longestName.size())
                longestName = hits.longestName;
            if (hits.hits() > 0) {
                ++librariesWithHits;
                maxHits = std::max(maxHits, hits.hits());
            }
            blocks += hits.numBlocks;
            subsystems += hits.numSubsystems;
            results.searchResults[library] = std::move(hits);
        }
        results.numBlocks = blocks;
        results.numSubsystems = subsystems;
        results.numLibraries = libraries;
        results.numLibrariesWithHits = librariesWithHits;
        results.maxHitsPerLibrary = maxHits;
        results.longestBlockName = longestName;
        results.longestLibraryPath = longestPath;
        // A cancelled walk, and the one after it, are new results even for
        // the same text.
        results.resultsNeedReload = m_searchCancelled || lastCancelled || results.searchString != text ||
                                    results.useRegExp != regExp || results.matchWholeWord != wholeWord ||
                                    results.searchDescriptions != descriptions ||
                                    results.matchCase != matchCase || results.resultsNeedReload;
        results.searchString = text;
        results.useRegExp = regExp;
        results.matchWholeWord = wholeWord;
        results.matchCase = matchCase;
        results.searchDescriptions = descriptions;
    }

    const std::string quoted = escapeAmpersands(text);
    const bool found = results.numBlocks + results.numSubsystems > 0;
    bool listTakesFocus = false;
    if (found) {
        m_lastFailedSearch.clear();
        m_searchComboBox->setToolTip(QString());
        const std::string status = xlatedMessageFromIdAndCharStarAndThreeInts(MessageId::TDLB_GuiStatusBarSearchResults,
                                                                        text, librariesWithHits, subsystems, blocks);
        m_resultsPage->setStatusMessage(status);
        internalSetStatusBarMessage(status);
        if (m_listBoxShowable && m_listBoxPrimary && m_searchListBox->count() > 0) {
            m_searchListBox->setCurrentRow(0);
            listTakesFocus = true;
        }
        m_tabContainer->setTabText(1, QString::fromStdString(xlatedMessageFromIdAndCharStar(
                                          MessageId::TDLB_GuiSearchResultsTabLabel_Found, quoted)));
    } else {
        m_lastFailedSearch = text;
        const std::string status = xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarNoMatchesForString, text);
        m_resultsPage->setStatusMessage(status);
        internalSetStatusBarMessage(status);
        m_searchListBox->insertItem(0, QString::fromStdString(xlatedMessageFromIdAndCharStar(
                                           MessageId::TDLB_WarningNoSearchResultsFoundForString, text)));
        m_tabContainer->setTabText(1, QString::fromStdString(xlatedMessageFromIdAndCharStar(
                                          MessageId::TDLB_GuiSearchResultsTabLabel_NotFound, quoted)));
    }

    const bool cancelled = m_searchCancelled;
    qApp->removeEventFilter(this);
    internalSelectTab(1, true);
    m_searching = false;
    internalEnableBrowser(true);
    // Focus goes where a keyboard user goes on, and only now: a disabled
    // window gives it to nobody. The hits, or the text to mend.
    if (!found)
        internalFocusSearchBoxSelected();
    else if (listTakesFocus)
        m_searchListBox->setFocus();
    else
        m_resultsPage->getScrollView()->setFocus(Qt::OtherFocusReason);
    if (cancelled) {
        // The page's last text is the one the mark goes on.
        m_resultsPage->completeSections();
        m_statusMessage += "    " + xlatedMessageFromId(MessageId::TDLB_GuiStatusBarSearchCancelled);
        internalSetStatusBarMessage(m_statusMessage);
    }
}

void StandaloneBrowser::internalFocusSearchBox() { m_searchComboBox->setFocus(Qt::TabFocusReason); }

void StandaloneBrowser::internalFocusSearchBoxSelected()
{
    m_searchComboBox->setFocus(Qt::OtherFocusReason);
    m_searchComboBox->lineEdit()->selectAll();
}

bool StandaloneBrowser::internalFilterSearchBoxEvent(QEvent* event)
{
    // The box forwards its keys to its line edit without event filters: both
    // are watched, for keys sent to either.
    if (event->type() == QEvent::KeyPress) {
        const auto* press = static_cast<QKeyEvent*>(event);
        if (press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter) {
            internalSearchForString(m_searchComboBox->currentText().toStdString());
            return true;
        }
        // Whatever the cursor's place in the prompt, what is typed replaces it.
        const bool typed = !press->text().isEmpty() && press->text().front().isPrint() &&
                           !(press->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        if (typed && m_searchComboBox->currentText().toStdString() == m_searchPrompt)
            m_searchComboBox->lineEdit()->selectAll();
    } else if (event->type() == QEvent::FocusIn &&
               m_searchComboBox->currentText().toStdString() == m_searchPrompt) {
        // The prompt is no text of the user's: focused in any way, it is
        // selected, so that typing replaces it. After the click that gave the
        // focus has placed the cursor.
        QTimer::singleShot(0, m_searchComboBox, [this] {
            if (m_searchComboBox->hasFocus() && m_searchComboBox->currentText().toStdString() == m_searchPrompt)
                m_searchComboBox->lineEdit()->selectAll();
        });
    }
    return false;
}

void StandaloneBrowser::internalSearchResultsListBoxItemChosen(int index)
{
    if (!m_listBoxSelectsInLibraryPanel && !m_listBoxSelectsInResultsPanel)
        return;
    const QListWidgetItem* item = m_searchListBox->item(index);
    if (item && !item->text().isEmpty())
        selectBlockInLibraryView(item->text().toStdString());
}

void StandaloneBrowser::selectBlockInLibraryView(const std::string& displayPath)
{
    if (GuiBlock* tile = m_resultsPage->getBlockByPathName(displayPath))
        internalSelectGuiBlockInLibraryView(tile);
}

void StandaloneBrowser::selectSearchResultByDisplayPathName(const std::string& displayPath)
{
    if (!m_resultsPage->getBlockByPathName(displayPath))
        return;
    internalSelectTab(1, true);
    // Brought to the front, the page may have made its tiles anew: the tile
    // is looked up again, never kept across.
    if (GuiBlock* tile = m_resultsPage->getBlockByPathName(displayPath))
        m_resultsPage->setSelectedBlock(tile);
}

void StandaloneBrowser::internalSelectSelectedResultsBlockInLibraryView()
{
    if (m_currentTabIndex == 1)
        internalSelectGuiBlockInLibraryView(m_resultsPage->getSelectedBlock());
}

std::vector<std::string> StandaloneBrowser::getSearchResultsDisplayPathNames() const
{
    std::vector<std::string> names;
    for (int i = 0; i < m_searchListBox->count(); ++i)
        names.push_back(m_searchListBox->item(i)->text().toStdString());
    return names;
}

bool StandaloneBrowser::showResultsSectionByName(const std::string& name)
{
    return m_resultsPage->showResultsSectionByName(name);
}

bool StandaloneBrowser::hideResultsSectionByName(const std::string& name)
{
    return m_resultsPage->hideResultsSectionByName(name);
}

bool StandaloneBrowser::isResultsSectionVisibleGui(const std::string& name) const
{
    return m_resultsPage->isResultsSectionVisibleGui(name);
}

std::vector<std::string> StandaloneBrowser::getResultsSectionBlockNames(const std::string& name) const
{
    return m_resultsPage->getPageSectionBlocksDisplayPathNames(name);
}

std::vector<std::string> StandaloneBrowser::getResultsPageSectionNames() const
{
    return m_resultsPage->getPageSectionNames();
}

std::vector<std::string> StandaloneBrowser::getResultsPageBlockNames() const
{
    return m_resultsPage->getBlocksDisplayPathNames();
}

std::vector<std::string> StandaloneBrowser::getLibraryPageBlockNames() const
{
    return m_libraryPage->getBlocksDisplayPathNames();
}

int StandaloneBrowser::getLibraryNumIconCols() const { return m_libraryPage->getNumIconCols(); }

int StandaloneBrowser::getResultsNumIconCols() const { return m_resultsPage->getNumIconCols(); }

} // namespace LibraryBrowser
