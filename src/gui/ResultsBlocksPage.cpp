#include "gui/ResultsBlocksPage.h"

#include "frame/MessageCatalogue.h"
#include "gui/BlocksPanel.h"
#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/NoResultsMessage.h"
#include "gui/ResultsPageHost.h"
#include "gui/SectionHeader.h"
#include "gui/SectionOpening.h"

#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace LibraryBrowser {

using namespace BrowserUtils;

ResultsBlocksPage::ResultsBlocksPage(ResultsPageHost& browser, LayoutType layout, IconSize size, const QFont& font,
                                     const QColor& backgroundColor, QWidget* parent)
    : BlocksPage(browser, layout, size, font, backgroundColor, parent), m_host(browser),
      m_expandImage(getToolBarIconDir(true) + "/TDB_expand.png"),
      m_collapseImage(getToolBarIconDir(true) + "/TDB_collapse.png")
{
    const SearchResults& window = browser.getSearchResults();
    m_results.useRegExp = window.useRegExp;
    m_results.matchWholeWord = window.matchWholeWord;
    m_results.matchCase = window.matchCase;
    m_results.searchDescriptions = window.searchDescriptions;
    createMainPanel();
    m_sliceTimer = new QTimer(this);
    m_sliceTimer->setSingleShot(true);
    m_sliceTimer->setInterval(0);
    connect(m_sliceTimer, &QTimer::timeout, this, &ResultsBlocksPage::laterTurn);
}

ResultsBlocksPage::~ResultsBlocksPage()
{
    // The section bodies paint this page's tiles: they go with the page,
    // even where the scroll view outlives it in the window.
    m_sections.clear();
    delete m_scrollView->takeWidget();
    for (QWidget* panel : m_retiredPanels)
        delete panel;
}

void ResultsBlocksPage::createMainPanel()
{
    auto* panel = new QWidget;
    panel->setFocusPolicy(Qt::NoFocus);
    auto* grid = new QGridLayout(panel);
    grid->setSpacing(0);
    grid->setContentsMargins(0, 0, 0, 0);
    panel->hide();
    m_scrollView->setWidget(panel);
    // The view's background shows through the sections.
    panel->setAutoFillBackground(false);
    m_mainPanel = panel;
}

QGridLayout* ResultsBlocksPage::getGridLayout() const { return static_cast<QGridLayout*>(m_mainPanel->layout()); }

void ResultsBlocksPage::preComputeEffectiveViewSize()
{
    m_effectiveViewWidth = m_viewWidth;
    m_effectiveViewHeight = m_viewHeight;
    const int thickness = internalGetUsableScrollbarThickness();
    if (m_effectiveViewWidth < m_contentsWidth)
        m_effectiveViewHeight -= thickness;
    if (m_effectiveViewHeight < m_contentsHeight)
        m_effectiveViewWidth -= thickness;
    if (m_layoutType == LayoutType::List)
        m_effectiveListItemWidth = std::max(m_effectiveViewWidth - 2 * m_metrics.panelMargin, m_listViewWidth);
}

void ResultsBlocksPage::preComputeContentsSize()
{
    const int m = 2 * m_metrics.panelMargin;
    const int w = m_metrics.gridWidth;
    const int h = m_metrics.height;
    const int s = m_metrics.spacing;
    preComputeNumIconCols(m_layoutType, m_iconSize, m_font.pointSizeF(), m_results.maxHitsPerLibrary);
    m_contentsWidth = m;
    m_contentsHeight = m_headerHeight * m_results.numLibrariesWithHits;
    int total = 0;
    for (const Library& library : m_results.libraries) {
        const auto entry = m_results.searchResults.find(library);
        if (entry == m_results.searchResults.end())
            continue;
        const std::string name = library.getDisplayPath();
        if (m_userHiddenSections.count(name))
            continue;
        const int hits = entry->second.hits();
        total += hits;
        if (total > SearchResults::maxHitsShown)
            continue;
        int width = 0;
        int rows = 0;
        if (m_layoutType == LayoutType::List) {
            width = preComputeListViewWidgetWidth(entry->second.longestName);
            rows = hits;
        } else {
            const int columns = std::max(1, std::min(m_maxNumIconCols, hits));
            rows = int(std::ceil(double(hits) / columns));
            width = m + (w + s) * columns - s;
        }
        m_contentsWidth = std::max(m_contentsWidth, width);
        m_contentsHeight += m + rows * (h + s) - s;
    }
    preComputeEffectiveViewSize();
    m_contentsWidth = std::max(m_contentsWidth, m_effectiveViewWidth);
}

void ResultsBlocksPage::postComputeContentsSize()
{
    m_contentsWidth = m_metrics.gridWidth + 2 * m_metrics.panelMargin;
    m_contentsHeight = int(m_sections.size()) * m_headerHeight + std::max(0, m_minimumHeight);
    for (const auto& section : m_sections) {
        if (!section->expanded)
            continue;
        m_contentsHeight += section->height;
        m_contentsWidth = std::max(m_contentsWidth, section->minWidth);
    }
    preComputeEffectiveViewSize();
    // The headers span the view, and the bodies give their tiles the view's
    // width to wrap in: the panel is never narrower, with sections or not.
    m_contentsWidth = std::max(m_contentsWidth, m_effectiveViewWidth);
}

int ResultsBlocksPage::postComputeNumIconColsShown()
{
    int largest = -1;
    for (const auto& section : m_sections)
        if (section->expanded)
            largest = std::max(largest, section->hits());
    if (largest < 0)
        return 0;
    return preComputeNumIconCols(m_layoutType, m_iconSize, m_font.pointSizeF(), largest);
}

void ResultsBlocksPage::setStatus(std::uint32_t messageId, const std::string& name)
{
    m_statusMessage = xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(
        messageId, m_results.searchString, m_results.numLibrariesWithHits, m_results.numSubsystems,
        m_results.numBlocks, name);
    showStatus();
}

void ResultsBlocksPage::showStatus()
{
    // A later turn's texts are the page's; they reach the status bar only
    // while the page is the one shown.
    if (!m_laterTurn || m_browser.internalGetCurrentBlocksPage() == this)
        m_browser.internalSetStatusBarMessage(m_statusMessage);
}

void ResultsBlocksPage::updateBlocks(int)
{
    const SearchResults& window = m_host.getSearchResults();
    const bool reload = window.resultsNeedReload;
    if (reload) {
        m_results = window;
        m_longestName = m_results.longestBlockName;
        m_numBlocks = m_results.numBlocks + m_results.numSubsystems;
    }
    getViewSize();
    const int columns = preComputeNumIconCols(m_browser.getLayoutType(), m_browser.getIconSize(),
                                              m_browser.getGuiFont().pointSizeF(), m_results.maxHitsPerLibrary);
    // Tiles are drawn for one icon size: another size makes them anew, as
    // another layout or font does.
    const bool valid = isValid() && m_iconSize == m_browser.getIconSize();
    if (!reload && valid) {
        const int shownColumns = postComputeNumIconColsShown();
        if (shownColumns == m_numIconColsShown) {
            m_numIconCols = shownColumns;
            if (GuiBlock* saved = getBlockByPathName(m_savedBlockSelectionName)) {
                m_savedBlockSelectionName.clear();
                setSelectedBlock(saved);
            }
            return;
        }
        m_numIconCols = m_numIconColsShown = shownColumns;
    } else {
        if (reload || m_results.numLibrariesWithHits < 1) {
            m_host.clearResultsNeedReload();
            m_icons.clear();
            if (m_host.rememberUserHiddenSections()) {
                m_hiddenSections = m_userHiddenSections;
            } else {
                m_hiddenSections.clear();
                m_userHiddenSections.clear();
            }
            m_userShownSections.clear();
            if (m_results.numLibrariesWithHits < 1)
                updateNoResultsFound();
        }
        setValid();
        m_numIconCols = columns;
        m_minimumHeight = 0;
        m_headerHeight = getHeaderHeight(m_font);
    }
    if (m_results.numLibrariesWithHits < 1)
        return;

    clearSections();
    if (m_layoutType == LayoutType::List)
        m_listViewWidth = preComputeListViewWidgetWidth(m_longestName);
    m_browser.internalSetStatusBarMessage(m_statusMessage);
    preComputeContentsSize();
    m_sectionsWidth = m_effectiveViewWidth;
    m_contentsHeight = 0;
    showPageBlocks();

    int lastShownByUser = -1;
    for (const Library& library : m_results.libraries) {
        if (!m_results.searchResults.count(library))
            continue;
        const std::string name = library.getDisplayPath();
        if (m_userShownSections.count(name) && !m_hiddenSections.count(name))
            lastShownByUser = int(m_sectionLibraries.size());
        m_sectionLibraries.push_back(library);
    }
    const int screenful = m_viewHeight / std::max(1, m_headerHeight) + 1;
    m_slices = SectionSlices(int(m_sectionLibraries.size()), screenful, sectionsPerTurn, lastShownByUser);
    m_opening = SectionOpening(SearchResults::maxHitsShown);
    makeSections(false);

    // Every section that may hold tiles is made: the selection is taken now.
    GuiBlock* selection = takeSavedOrFirstBlock();
    showPageBlocks();
    if (selection)
        setSelectedBlock(selection);
    else
        m_browser.internalUpdateDescription(nullptr);
    m_browser.internalSetStatusBarMessage(m_statusMessage);
}

void ResultsBlocksPage::createSection(const Library& library, const SingleLibrarySearchResults_tag& hits, int index,
                                      bool open, int sectionsWidth)
{
    auto owned = std::make_unique<PageSection>();
    PageSection& section = *owned;
    section.name = library.getDisplayPath();
    section.library = library;
    section.numBlocks = hits.numBlocks;
    section.numSubsystems = hits.numSubsystems;
    section.expanded = open;

    int minWidth = 0;
    int minHeight = 0;
    int maxWidth = 0;
    int maxHeight = 0;
    preComputeMinMaxSizes4BlocksPanel(section.hits(), minWidth, minHeight, maxWidth, maxHeight);
    section.minWidth = minWidth;
    section.height = maxHeight;
    QGridLayout* grid = getGridLayout();
    if (index > 0) {
        grid->setRowStretch(2 * index + 2, 9);
        grid->setRowStretch(2 * index + 1, 0);
        grid->setRowStretch(2 * index, 0);
        grid->setRowStretch(2 * index - 1, 0);
    }

    m_contentsHeight += m_headerHeight;
    const SectionHeader::Look look{m_font,
                                   m_browser.getColorPref(PrefKey::LBColorSearchResultsDividerBarTop),
                                   m_browser.getColorPref(PrefKey::LBColorSearchResultsDividerBarBot),
                                   m_browser.getColorPref(PrefKey::LBColorSearchResultsDividerBarFrame),
                                   m_metrics.panelMargin,
                                   m_expandImage,
                                   m_collapseImage};
    section.header = new SectionHeader(section.name, section.hits(), look, sectionsWidth, m_headerHeight, m_mainPanel);
    if (m_headersAdjusted) {
        section.header->setMinimumSize(m_headerMinWidth, m_headerHeight);
        section.header->setMaximumSize(m_headerMaxWidth, m_headerHeight);
    }
    section.header->setExpanded(open);
    const std::string name = section.name;
    connect(section.header, &SectionHeader::titleActivated, this,
            [this, name] { m_browser.internalOpenSubsystemInTree(name); });
    connect(section.header, &SectionHeader::toggleClicked, this, [this, name] {
        if (PageSection* clicked = findSection(name))
            effectHyperLinkToHideOrShowBlocks(*clicked);
    });
    placePanel();

    grid->addWidget(section.header, 2 * index, 0, 1, 2);
    section.header->show();
    section.body = createSubPanel4BlocksetBody(minWidth, minHeight, maxWidth, maxHeight);
    section.body->setObjectName("sectionBody");
    grid->addWidget(section.body, 2 * index + 1, 0, 1, 2);

    m_sectionsByName[section.name] = &section;
    m_sections.push_back(std::move(owned));
}

BlocksPanel* ResultsBlocksPage::createSubPanel4BlocksetBody(int minW, int minH, int maxW, int maxH)
{
    auto* body = new BlocksPanel(this, m_mainPanel);
    body->setGrid(m_metrics.spacing, m_metrics.panelMargin);
    body->setMinimumSize(std::max(0, minW), std::max(0, minH));
    body->setMaximumSize(std::max(0, maxW), std::max(0, maxH));
    body->hide();
    return body;
}

int ResultsBlocksPage::expandSection(PageSection& section)
{
    if (section.numTiles != 0) {
        m_contentsHeight += section.height;
        placePanel();
    } else {
        section.numTiles = -1;
        const auto entry = m_results.searchResults.find(section.library);
        const TandrilObjectIterator hits =
            entry == m_results.searchResults.end() ? TandrilObjectIterator() : entry->second.iterator;
        RepositoryReader* reader = m_browser.getReader();
        for (TandrilObjectIterator it = hits; reader && it.isValidIterator(); it.next()) {
            const TandrilObject object = it.current();
            m_icons[object] = reader->getIcon(object);
        }
        int minWidth = 0;
        int minHeight = 0;
        int maxWidth = 0;
        int maxHeight = 0;
        preComputeMinMaxSizes4BlocksPanel(section.hits(), minWidth, minHeight, maxWidth, maxHeight);
        if (m_effectiveViewHeight < m_contentsHeight + maxHeight) {
            // A vertical scroll bar comes: the tiles wrap at the narrower width.
            m_effectiveViewWidth = m_viewWidth - internalGetUsableScrollbarThickness();
            preComputeNumIconCols(m_layoutType, m_iconSize, m_font.pointSizeF(), section.hits());
            preComputeMinMaxSizes4BlocksPanel(section.hits(), minWidth, minHeight, maxWidth, maxHeight);
        }
        m_numIconColsShown = std::max(m_numIconColsShown, std::max(1, std::min(m_maxNumIconCols, section.hits())));
        section.minWidth = minWidth;
        section.height = maxHeight;
        m_contentsHeight += section.height;
        placePanel();
        section.body->setMinimumSize(std::max(0, minWidth), section.height);
        section.body->setMaximumSize(std::max(minWidth, m_effectiveViewWidth), section.height);
        int row = 0;
        int column = 0;
        section.numTiles = addBlocksToPanel(hits, section.body, section.blocks, section.hits(), row, column);
        m_blocks.insert(m_blocks.end(), section.blocks.begin(), section.blocks.end());
    }
    m_hiddenSections.erase(section.name);
    section.expanded = true;
    section.body->show();
    return section.numTiles;
}

int ResultsBlocksPage::shrinkSection(PageSection& section)
{
    m_hiddenSections.insert(section.name);
    section.expanded = false;
    section.body->hide();
    m_numIconColsShown = postComputeNumIconColsShown();
    m_contentsHeight -= section.height;
    placePanel();
    return 0;
}

int ResultsBlocksPage::expandSectionFromUserInput(PageSection& section)
{
    m_userShownSections.insert(section.name);
    m_userHiddenSections.erase(section.name);
    return expandSection(section);
}

int ResultsBlocksPage::shrinkSectionFromUserInput(PageSection& section)
{
    m_userHiddenSections.insert(section.name);
    m_userShownSections.erase(section.name);
    return shrinkSection(section);
}

void ResultsBlocksPage::effectHyperLinkToHideOrShowBlocks(PageSection& section)
{
    if (section.expanded)
        shrinkSectionFromUserInput(section);
    else
        expandSectionFromUserInput(section);
    section.header->setExpanded(section.expanded);
    adjustPageSizes();
}

void ResultsBlocksPage::adjustPageSizes()
{
    if (m_minimumHeight >= 1)
        return;
    postComputeContentsSize();
    if (m_layoutType != LayoutType::List) {
        adjustHeaderSizes();
    } else {
        adjustSectionSizes();
        for (const GuiBlockPtr& tile : m_blocks)
            tile->adjustListItemSize(m_effectiveListItemWidth);
    }
    setPanelPosition();
}

void ResultsBlocksPage::adjustHeaderSizes()
{
    if (m_effectiveViewWidth <= 0)
        return;
    m_headersAdjusted = true;
    m_headerMinWidth = m_effectiveViewWidth;
    m_headerMaxWidth = std::max(m_effectiveViewWidth, m_contentsWidth);
    for (const auto& section : m_sections) {
        section->header->setMinimumSize(m_headerMinWidth, m_headerHeight);
        section->header->setMaximumSize(m_headerMaxWidth, m_headerHeight);
    }
}

void ResultsBlocksPage::adjustSectionSizes()
{
    if (m_effectiveViewWidth <= 0)
        return;
    adjustHeaderSizes();
    for (const auto& section : m_sections) {
        if (!section->expanded)
            continue;
        section->body->setMinimumSize(section->minWidth, section->height);
        section->body->setMaximumSize(std::max(section->minWidth, m_effectiveViewWidth), section->height);
        section->body->update();
    }
}

void ResultsBlocksPage::reflowBlocks()
{
    const int columns = std::max(1, m_numIconCols);
    for (const auto& section : m_sections) {
        section->body->clearTiles();
        for (std::size_t i = 0; i < section->blocks.size(); ++i)
            section->body->addTile(section->blocks[i].get(), int(i) / columns, int(i) % columns);
        section->body->update();
    }
    setPanelPosition();
    showPageBlocks();
    ensureSelectedBlockVisible();
}

void ResultsBlocksPage::clearSections()
{
    m_sectionLibraries.clear();
    m_headersAdjusted = false;
    m_sectionsByName.clear();
    m_numIconColsShown = -1;
    // The tiles go with the list of the page; the widgets with the panel,
    // which may outlive them.
    for (const auto& section : m_sections)
        section->body->clearTiles();
    m_sections.clear();
    clearBlocks();
    m_noResultsText = nullptr;
    m_scrollView->setWidgetResizable(false);
    QGridLayout* grid = getGridLayout();
    grid->setSpacing(0);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(0, 0);
    grid->setColumnStretch(1, 9);
    grid->setRowStretch(0, 0);
    grid->setRowStretch(1, 0);
    grid->setRowStretch(2, 9);
}

void ResultsBlocksPage::updateNoResultsFound()
{
    m_statusMessage = NoResultsMessage::status(m_results);
    m_browser.internalSetStatusBarMessage(m_statusMessage);
    const std::string text = NoResultsMessage::text(m_results);
    m_browser.internalUpdateDescription(nullptr);
    clearSections();

    const int m = getHeaderPanelMargin();
    std::string word;
    computeLongestWordInString(text, word);
    m_contentsWidth = std::max(getFontInfoStringWidth(m_font, word) + 2 * m,
                               m_viewWidth - internalGetUsableScrollbarThickness());
    QString shown = QString::fromStdString(text);
    // A rich-text label breaks lines only at markup.
    shown.replace(QLatin1Char('\n'), QLatin1String("<br>"));
    m_noResultsText = new QLabel(shown, m_mainPanel);
    m_noResultsText->setObjectName("noResultsText");
    m_noResultsText->setTextFormat(Qt::RichText);
    m_noResultsText->setWordWrap(true);
    m_noResultsText->setFont(m_font);
    m_noResultsText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_scrollView->setWidgetResizable(true);
    getGridLayout()->setContentsMargins(2 * m, 2 * m, 2 * m, 2 * m);
    getGridLayout()->addWidget(m_noResultsText, 0, 0, 1, 2);
    showPageBlocks();
    m_scrollView->ensureVisible(0, 0, 0, 0);
}

void ResultsBlocksPage::setDefaultSelectedBlock() { selectByMove(Move::First); }

void ResultsBlocksPage::selectBlockLeft() { selectByMove(Move::Left); }

void ResultsBlocksPage::selectBlockRight() { selectByMove(Move::Right); }

void ResultsBlocksPage::selectBlockUp() { selectByMove(Move::Up); }

void ResultsBlocksPage::selectBlockDown() { selectByMove(Move::Down); }

void ResultsBlocksPage::selectByMove(Move move)
{
    std::vector<SectionMoves::Section> states;
    SectionMoves::Position from;
    for (std::size_t s = 0; s < m_sections.size(); ++s) {
        const PageSection& section = *m_sections[s];
        states.push_back({int(section.blocks.size()), section.expanded});
        for (std::size_t t = 0; m_selectedBlock && t < section.blocks.size(); ++t)
            if (section.blocks[t].get() == m_selectedBlock)
                from = {int(s), int(t)};
    }
    SectionMoves::Position to;
    switch (move) {
    case Move::First:
        to = SectionMoves::first(states);
        break;
    case Move::Left:
        to = SectionMoves::left(states, from);
        break;
    case Move::Right:
        to = SectionMoves::right(states, from);
        break;
    case Move::Up:
        to = SectionMoves::up(states, from, m_numIconCols);
        break;
    case Move::Down:
        to = SectionMoves::down(states, from, m_numIconCols);
        break;
    }
    if (to.isValid())
        setSelectedBlock(m_sections[to.section]->blocks[to.tile].get());
}

std::vector<std::string> ResultsBlocksPage::getPageSectionNames()
{
    completeSections();
    std::vector<std::string> names;
    for (const auto& section : m_sections)
        names.push_back(section->name);
    return names;
}

std::vector<std::string> ResultsBlocksPage::getPageSectionBlocksDisplayPathNames(const std::string& name)
{
    std::vector<std::string> paths;
    if (const PageSection* section = getSectionByName(name))
        for (const GuiBlockPtr& tile : section->blocks)
            paths.push_back(tile->getDisplayPath());
    return paths;
}

bool ResultsBlocksPage::showResultsSectionByName(const std::string& name)
{
    PageSection* section = getSectionByName(name);
    if (!section)
        return false;
    if (!section->expanded)
        effectHyperLinkToHideOrShowBlocks(*section);
    return true;
}

bool ResultsBlocksPage::hideResultsSectionByName(const std::string& name)
{
    PageSection* section = getSectionByName(name);
    if (!section)
        return false;
    if (section->expanded)
        effectHyperLinkToHideOrShowBlocks(*section);
    return true;
}

bool ResultsBlocksPage::isResultsSectionVisibleGui(const std::string& name)
{
    const PageSection* section = getSectionByName(name);
    return section && !section->body->isHidden();
}

PageSection* ResultsBlocksPage::getSectionByName(const std::string& name)
{
    completeSections();
    return findSection(name);
}

PageSection* ResultsBlocksPage::findSection(const std::string& name) const
{
    const auto found = m_sectionsByName.find(name);
    return found == m_sectionsByName.end() ? nullptr : found->second;
}

PageSection* ResultsBlocksPage::getSectionFromGuiBlock(const GuiBlock* tile) const
{
    for (const auto& section : m_sections)
        for (const GuiBlockPtr& block : section->blocks)
            if (block.get() == tile)
                return section.get();
    return nullptr;
}

} // namespace LibraryBrowser
