#pragma once

#include "gui/BrowserUtils.h"
#include "repository/Block.h"

#include <QColor>
#include <QFont>
#include <QPoint>
#include <QRect>

#include <string>

class QWidget;

namespace LibraryBrowser {

class BlockHistory;
class BlocksPage;
class GuiBlock;
class RepositoryReader;

// What the block pages and their tiles ask of the window. The browser window
// implements it; a page viewer or a test can stand in with a few lines.
class BlocksPageHost {
public:
    virtual ~BlocksPageHost() = default;

    // The look that pages are built for.
    virtual LayoutType getLayoutType() const = 0;
    virtual IconSize getIconSize() const = 0;
    // Family and point size of the pages' text.
    virtual QFont getGuiFont() const = 0;
    // A colour preference by its key (PrefKey::LBColor...).
    virtual QColor getColorPref(const char* key) const = 0;

    virtual RepositoryReader* getReader() = 0;
    // The object behind a tree node; null when the node isn't in the tree.
    virtual Block getTreeNodeBlock(int uid) const = 0;
    virtual int getCurrentNodeUID() const = 0;
    virtual bool nodeHasParent(int uid) const = 0;
    // The block panel's rectangle as the preferences keep it.
    virtual QRect getBlocksGeometry() const = 0;
    // The window's rectangle on the screen.
    virtual QRect getPosition() const = 0;

    virtual BlocksPage* internalGetCurrentBlocksPage() = 0;
    virtual void internalSetTabLabel(BlocksPage* page, const std::string& label) = 0;
    virtual void internalUpdateDescription(GuiBlock* tile) = 0;
    virtual void internalWarnAboutEmptyLibrary(const std::string& displayName) = 0;
    virtual std::string getCurrentStatusBarMessage() const = 0;
    virtual void internalSetStatusBarMessage(const std::string& text) = 0;
    // The search box takes the focus (Tab on a page).
    virtual void internalFocusSearchBox() = 0;
    virtual void internalSetCursor(Qt::CursorShape shape) = 0;
    virtual void internalUnsetCursor() = 0;
    // Makes sure the library of a block is open in the host before it is touched.
    virtual void internalLoadRootLibrary(const std::string& path, const std::string& displayPath) = 0;
    virtual void internalOpenSubsystemInTree(const std::string& displayPath) = 0;
    virtual void goToParent() = 0;
    // The tile's menu at a point on the screen.
    virtual void internalShowBlockContextMenu(GuiBlock* tile, const QPoint& globalPosition) = 0;
    // The tile of a search result shown and selected in its library.
    virtual void internalSelectInLibraryView(GuiBlock* tile) = 0;
    // The favourites and the blocks added last; null where none are kept.
    virtual BlockHistory* internalBlockHistory() { return nullptr; }
};

} // namespace LibraryBrowser
