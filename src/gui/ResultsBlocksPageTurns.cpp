// The results page's later turns: the sections of a large result made a
// slice at a time, and the widgets of the result before deleted in slices,
// so that neither holds the event loop for long.

#include "gui/ResultsBlocksPage.h"

#include "frame/MessageCatalogue.h"
#include "gui/PageSection.h"

#include <QGridLayout>
#include <QScrollArea>
#include <QTimer>
#include <QWidget>

namespace LibraryBrowser {

using namespace BrowserUtils;

void ResultsBlocksPage::makeSections(bool all)
{
    const int first = int(m_sections.size());
    m_makingSections = true;
    // A header shown in a shown panel lays out every section there and
    // then: the grid waits for the end of the turn and lays out once.
    QGridLayout* grid = getGridLayout();
    grid->setEnabled(false);
    for (int index = first; all ? index < m_slices.sections() : m_slices.makes(first, index, m_opening.overflow());
         ++index) {
        const Library& library = m_sectionLibraries[std::size_t(index)];
        const SingleLibrarySearchResults_tag& hits = m_results.searchResults.at(library);
        const std::string name = library.getDisplayPath();
        const bool open = m_opening.startsOpen(hits.hits(), m_hiddenSections.count(name), m_userShownSections.count(name));
        setStatus(open ? MessageId::TDLB_GuiStatusBarSearchResultsNowShowing
                       : MessageId::TDLB_GuiStatusBarSearchResultsNowHiding,
                  name);
        createSection(library, hits, index, open, m_sectionsWidth);
        PageSection& section = *m_sections.back();
        if (open) {
            m_opening.opened(expandSection(section));
        } else {
            m_contentsHeight += section.height;
            shrinkSection(section);
        }
        showPageBlocks();
    }
    m_makingSections = false;
    setPanelPosition();
    grid->setEnabled(true);
    grid->activate();
    if (sectionsPending())
        scheduleLaterTurn();
    else
        showFinalStatus();
}

void ResultsBlocksPage::showFinalStatus()
{
    m_statusMessage = xlatedMessageFromIdAndCharStarAndThreeInts(
        MessageId::TDLB_GuiStatusBarSearchResults, m_results.searchString, m_results.numLibrariesWithHits,
        m_results.numSubsystems, m_results.numBlocks);
    showStatus();
}

bool ResultsBlocksPage::sectionsPending() const { return m_sections.size() < m_sectionLibraries.size(); }

void ResultsBlocksPage::completeSections()
{
    if (sectionsPending())
        makeSections(true);
}

void ResultsBlocksPage::laterTurn()
{
    retireSome();
    // The window is disabled while a search walks or products are made,
    // with the event loop turning for their progress: the sections wait,
    // their texts and reads must not mix with that work.
    if (!m_scrollView->isEnabled()) {
        m_sliceTimer->start(20);
        return;
    }
    if (sectionsPending()) {
        m_laterTurn = true;
        makeSections(false);
        m_laterTurn = false;
    }
    scheduleLaterTurn();
}

void ResultsBlocksPage::scheduleLaterTurn()
{
    if (laterTurnsPending() && !m_sliceTimer->isActive())
        m_sliceTimer->start(0);
}

bool ResultsBlocksPage::laterTurnsPending() const { return sectionsPending() || !m_retiredPanels.empty(); }

void ResultsBlocksPage::disposePanel(QWidget* panel)
{
    // A thousand sections take a tenth of a second to delete: the panel,
    // hidden already, goes a few hundred widgets a turn.
    if (!panel)
        return;
    m_retiredPanels.push_back(panel);
    scheduleLaterTurn();
}

void ResultsBlocksPage::retireSome()
{
    int deleted = 0;
    while (!m_retiredPanels.empty() && deleted < widgetsRetiredPerTurn) {
        QWidget* panel = m_retiredPanels.front();
        // From the back: each goes off the end of its parent's list.
        for (; !panel->children().isEmpty() && deleted < widgetsRetiredPerTurn; ++deleted)
            delete panel->children().last();
        if (panel->children().isEmpty()) {
            delete panel;
            m_retiredPanels.pop_front();
        }
    }
}

void ResultsBlocksPage::placePanel()
{
    // Each resize of a shown panel lays out all its sections again: a turn
    // that makes sections sizes it once, at its end.
    if (!m_makingSections)
        setPanelPosition();
}

} // namespace LibraryBrowser
