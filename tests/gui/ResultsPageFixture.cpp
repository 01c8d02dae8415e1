#include "ResultsPageFixture.h"

#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SectionHeader.h"

#include <QApplication>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace LibraryBrowser::Testing {

std::unique_ptr<ExampleRootSession> ResultsPageFixture::s_session;

ResultsWindow::ResultsWindow(Repository& repository, LayoutType layout, const QSize& size)
    : FakeHost(repository), m_repository(repository)
{
    this->layout = layout;
    iconSize = IconSize::Compact;
    m_window.resize(size);
    auto* layoutBox = new QVBoxLayout(&m_window);
    layoutBox->setContentsMargins(0, 0, 0, 0);
    m_page = std::make_unique<ResultsBlocksPage>(*this, layout, IconSize::Compact, font,
                                                 getColorPref(PrefKey::LBColorSearchResultsBackgroundTop), &m_window);
    currentPage = m_page.get();
    layoutBox->addWidget(m_page->getScrollView());
    m_window.show();
    QApplication::processEvents();
}

ResultsWindow::~ResultsWindow() = default;

void ResultsWindow::search(const std::string& text, bool regExp, bool wholeWord, bool matchCase)
{
    const SearchResults previous = results;
    results = SearchResults();
    for (TandrilObjectIterator it = m_repository.getTopLevelIterator(); it.isValidIterator(); it.next())
        results.libraries.push_back(it.current().toLibrary());
    for (const Library& library : results.libraries) {
        const TandrilObjectIterator found = m_repository.findBlocks(
            text, TandrilObject(library), regExp ? SearchOptions::RegExpOn : SearchOptions::RegExpOff,
            wholeWord ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff,
            matchCase ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff);
        if (TandrilObjectIterator(found).isEmpty())
            continue;
        int libraries = 0;
        const SingleLibrarySearchResults_tag hits = countSearchHits(found, libraries, nullptr);
        if (hits.hits() > 0) {
            ++results.numLibrariesWithHits;
            results.maxHitsPerLibrary = std::max(results.maxHitsPerLibrary, hits.hits());
        }
        if (hits.longestName.size() > results.longestBlockName.size())
            results.longestBlockName = hits.longestName;
        results.numBlocks += hits.numBlocks;
        results.numSubsystems += hits.numSubsystems;
        results.searchResults[library] = hits;
    }
    results.searchString = text;
    results.useRegExp = regExp;
    results.matchWholeWord = wholeWord;
    results.matchCase = matchCase;
    results.resultsNeedReload = previous.searchString != text || previous.useRegExp != regExp ||
                                previous.matchWholeWord != wholeWord || previous.matchCase != matchCase ||
                                previous.resultsNeedReload;
}

void ResultsWindow::update()
{
    statusMessages.clear();
    m_page->updateBlocks(0);
    QApplication::processEvents();
}

QColor ResultsWindow::getColorPref(const char* key) const
{
    return BrowserPreferences::defaultOf(key).value<QColor>();
}

void ResultsPageFixture::SetUp()
{
    BrowserUtils::setScreenDPIOverride(96);
    ASSERT_TRUE(s_session && s_session->repository().exists());
}

std::unique_ptr<ResultsWindow> ResultsPageFixture::makeWindow(LayoutType layout, QSize size)
{
    return std::make_unique<ResultsWindow>(s_session->repository(), layout, size);
}

std::vector<std::string> ResultsPageFixture::visibleSections(ResultsBlocksPage& page)
{
    std::vector<std::string> names;
    for (const std::string& name : page.getPageSectionNames())
        if (page.isResultsSectionVisibleGui(name))
            names.push_back(name);
    return names;
}

std::string ResultsPageFixture::sectionCount(ResultsBlocksPage& page, const std::string& name)
{
    const PageSection* section = page.getSectionByName(name);
    return section ? section->header->count()->text().toStdString() : std::string();
}

std::string ResultsPageFixture::selectedPath(ResultsBlocksPage& page)
{
    return page.getSelectedBlock() ? page.getSelectedBlock()->getDisplayPath() : std::string();
}

} // namespace LibraryBrowser::Testing
