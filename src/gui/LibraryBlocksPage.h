#pragma once

#include "gui/BlocksPage.h"

namespace LibraryBrowser {

// The page behind the first tab: the contents of the tree node selected in
// the window, subsystems first and then the plain blocks, as one grid or list.
class LibraryBlocksPage : public BlocksPage {
    Q_OBJECT

public:
    using BlocksPage::BlocksPage;

    bool isResultsPage() const override { return false; }
    void updateBlocks(int nodeId) override;
    void preComputeContentsSize() override;
    void adjustPageSizes() override;
    void reflowBlocks() override;
    void setDefaultSelectedBlock() override {}

    int getShownNodeId() const { return m_shownNodeId; }

private:
    void postComputeEffectiveSizeOfListViewPanel();
    void adjustListItemSizes();

    int m_shownNodeId = 0;
};

} // namespace LibraryBrowser
