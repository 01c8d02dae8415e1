#pragma once

#include "gui/BlocksPage.h"
#include "gui/PageSection.h"
#include "gui/SearchResults.h"
#include "gui/SectionMoves.h"
#include "gui/SectionOpening.h"
#include "gui/SectionSlices.h"

#include <deque>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class QGridLayout;
class QLabel;
class QTimer;

namespace LibraryBrowser {

class ResultsPageHost;

// The page behind the second tab: the hits of the last search, one section
// per library, each a header bar (a link to the library in the tree, the
// count, a hide or show image) above a body of tiles. A section is filled
// only when first shown, and only the first 144 hits open by themselves, so
// that a search that hits everything doesn't render thousands of icons.
// The sections are made over several turns of the event loop (SectionSlices):
// the page answers for its sections as a whole, making those still to come
// first, when asked by name.
class ResultsBlocksPage : public BlocksPage {
    Q_OBJECT

public:
    ResultsBlocksPage(ResultsPageHost& browser, LayoutType layout, IconSize size, const QFont& font,
                      const QColor& backgroundColor, QWidget* parent = nullptr);
    ~ResultsBlocksPage() override;

    bool isResultsPage() const override { return true; }
    // Takes the window's results when they are new; the argument isn't used.
    void updateBlocks(int nodeId) override;
    void preComputeContentsSize() override;
    void adjustPageSizes() override;
    void reflowBlocks() override;
    void setDefaultSelectedBlock() override;
    void selectBlockLeft() override;
    void selectBlockRight() override;
    void selectBlockUp() override;
    void selectBlockDown() override;

    // The results these sections show, with their search text and options.
    const SearchResults& getResults() const { return m_results; }

    std::vector<std::string> getPageSectionNames();
    std::vector<std::string> getPageSectionBlocksDisplayPathNames(const std::string& name);
    // False when no section has that name.
    bool showResultsSectionByName(const std::string& name);
    bool hideResultsSectionByName(const std::string& name);
    bool isResultsSectionVisibleGui(const std::string& name);
    void forgetSectionNames() { m_hiddenSections.clear(); }
    void clearSections();
    // Sections of the last update still to be made in later turns.
    bool sectionsPending() const;
    // Makes them now.
    void completeSections();
    // Sections to make or the widgets of earlier ones to delete.
    bool laterTurnsPending() const;

    PageSection* getSectionFromGuiBlock(const GuiBlock* tile) const;
    PageSection* getSectionByName(const std::string& name);

    // What a later turn does: a few milliseconds of work each.
    static constexpr int sectionsPerTurn = 40;
    static constexpr int widgetsRetiredPerTurn = 200;

protected:
    void createMainPanel() override;
    void disposePanel(QWidget* panel) override;

private:
    QGridLayout* getGridLayout() const;
    void preComputeEffectiveViewSize();
    void postComputeContentsSize();
    int postComputeNumIconColsShown();
    void createSection(const Library& library, const SingleLibrarySearchResults_tag& hits, int index,
                       bool open, int sectionsWidth);
    BlocksPanel* createSubPanel4BlocksetBody(int minW, int minH, int maxW, int maxH);
    void setStatus(std::uint32_t messageId, const std::string& name);
    void showStatus();
    // Makes the sections of one turn, or all that are left.
    void makeSections(bool all);
    void showFinalStatus();
    void laterTurn();
    void scheduleLaterTurn();
    void retireSome();
    void placePanel();
    PageSection* findSection(const std::string& name) const;
    int expandSection(PageSection& section);
    int shrinkSection(PageSection& section);
    int expandSectionFromUserInput(PageSection& section);
    int shrinkSectionFromUserInput(PageSection& section);
    void effectHyperLinkToHideOrShowBlocks(PageSection& section);
    void adjustHeaderSizes();
    void adjustSectionSizes();
    void updateNoResultsFound();
    enum class Move { First, Left, Right, Up, Down };
    void selectByMove(Move move);

    ResultsPageHost& m_host;
    std::vector<std::unique_ptr<PageSection>> m_sections;
    std::unordered_map<std::string, PageSection*> m_sectionsByName;
    std::set<std::string> m_hiddenSections;
    std::set<std::string> m_userHiddenSections;
    std::set<std::string> m_userShownSections;
    std::string m_expandImage;
    std::string m_collapseImage;
    SearchResults m_results;
    int m_headerHeight = 0;
    int m_numIconColsShown = -1;
    QLabel* m_noResultsText = nullptr;
    // The libraries that get a section, in order; the first ones not yet
    // made are pending.
    std::vector<Library> m_sectionLibraries;
    SectionSlices m_slices{0, 1, 1, -1};
    SectionOpening m_opening{SearchResults::maxHitsShown};
    QTimer* m_sliceTimer = nullptr;
    bool m_laterTurn = false;
    bool m_makingSections = false;
    // Panels of earlier results, taken out of the view, deleted in turns.
    std::deque<QWidget*> m_retiredPanels;
    // The width headers are made at; a header made after the page adjusted
    // its headers takes the adjusted sizes too.
    int m_sectionsWidth = 0;
    bool m_headersAdjusted = false;
    int m_headerMinWidth = 0;
    int m_headerMaxWidth = 0;
};

} // namespace LibraryBrowser
