#pragma once

#include "gui/BlocksPageHost.h"
#include "repository/Repository.h"

#include <QMainWindow>

#include <memory>

class QTabWidget;

namespace LibraryBrowser {

class LibraryBlocksPage;

namespace Tdlb {

// A window with one library page on one repository object, for looking at
// the tiles without the whole browser: it answers what a page asks of its
// window, with the object as the only tree node.
class PageViewer : public QMainWindow, public BlocksPageHost {
    Q_OBJECT

public:
    PageViewer(Repository& repository, const TandrilObject& object, LayoutType layout, IconSize size,
               double fontPoints);
    ~PageViewer() override;

    LibraryBlocksPage& page() { return *m_page; }
    // Fills the page for the window's current size.
    void showObject();

    LayoutType getLayoutType() const override { return m_layout; }
    IconSize getIconSize() const override { return m_iconSize; }
    QFont getGuiFont() const override { return m_font; }
    QColor getColorPref(const char* key) const override;
    RepositoryReader* getReader() override { return &m_repository; }
    Block getTreeNodeBlock(int uid) const override;
    // No node is current before showObject: a resize before it fills nothing.
    int getCurrentNodeUID() const override { return m_shown ? NodeUID : 0; }
    bool nodeHasParent(int) const override { return false; }
    QRect getBlocksGeometry() const override;
    QRect getPosition() const override { return frameGeometry(); }
    BlocksPage* internalGetCurrentBlocksPage() override;
    void internalSetTabLabel(BlocksPage* page, const std::string& label) override;
    void internalUpdateDescription(GuiBlock* tile) override;
    void internalWarnAboutEmptyLibrary(const std::string& displayName) override;
    std::string getCurrentStatusBarMessage() const override;
    void internalSetStatusBarMessage(const std::string& text) override;
    void internalFocusSearchBox() override {}
    void internalSetCursor(Qt::CursorShape shape) override { setCursor(shape); }
    void internalUnsetCursor() override { unsetCursor(); }
    void internalLoadRootLibrary(const std::string&, const std::string&) override {}
    void internalOpenSubsystemInTree(const std::string&) override {}
    void goToParent() override {}
    void internalShowBlockContextMenu(GuiBlock* tile, const QPoint& globalPosition) override;
    void internalSelectInLibraryView(GuiBlock*) override {}

private:
    static constexpr int NodeUID = 1;

    Repository& m_repository;
    Block m_object;
    LayoutType m_layout;
    IconSize m_iconSize;
    QFont m_font;
    QTabWidget* m_tabs;
    std::unique_ptr<LibraryBlocksPage> m_page;
    bool m_shown = false;
};

} // namespace Tdlb
} // namespace LibraryBrowser
