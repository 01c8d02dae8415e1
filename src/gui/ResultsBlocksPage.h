#pragma once

#include "gui/BlocksPage.h"
#include "gui/PageSection.h"
#include "gui/SearchResults.h"
#include "gui/SectionMoves.h"

#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class QGridLayout;
class QLabel;

namespace LibraryBrowser {

class ResultsPageHost;

// The page behind the second tab: the hits of the last search, one section
// per library, each a header bar (a link to the library in the tree, the
// count, a hide or show image) above a body of tiles. A section is filled
// only when first shown, and only the first 144 hits open by themselves, so
// that a search that hits everything doesn't render thousands of icons.
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

    std::vector<std::string> getPageSectionNames() const;
    std::vector<std::string> getPageSectionBlocksDisplayPathNames(const std::string& name) const;
    // False when no section has that name.
    bool showResultsSectionByName(const std::string& name);
    bool hideResultsSectionByName(const std::string& name);
    bool isResultsSectionVisibleGui(const std::string& name) const;
    void forgetSectionNames() { m_hiddenSections.clear(); }
    void clearSections();

    PageSection* getSectionFromGuiBlock(const GuiBlock* tile) const;
    PageSection* getSectionByName(const std::string& name) const;

protected:
    void createMainPanel() override;

private:
    QGridLayout* getGridLayout() const;
    void preComputeEffectiveViewSize();
    void postComputeContentsSize();
    int postComputeNumIconColsShown();
    void createSection(const Library& library, const SingleLibrarySearchResults_tag& hits, int index,
                       bool open, int sectionsWidth);
    BlocksPanel* createSubPanel4BlocksetBody(int minW, int minH, int maxW, int maxH);
    void setStatus(std::uint32_t messageId, const std::string& name);
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
};

} // namespace LibraryBrowser
