#pragma once

#include "EmbeddedHost.h"
#include "gui/BlocksPageHost.h"
#include "gui/GuiBlock.h"
#include "repository/Repository.h"

#include <QTemporaryDir>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser::Testing {

// The embedded host on a private copy of the example root, with the message
// catalogue loaded and a repository opened on it: what a page reads from.
class ExampleRootSession {
public:
    ExampleRootSession();
    // On a copy of another root.
    explicit ExampleRootSession(const QString& sourceRoot);
    ~ExampleRootSession();
    // On a root of synthetic products of plain blocks named "Block 0" on;
    // fails the test and gives none when the root can't be written.
    static std::unique_ptr<ExampleRootSession> synthetic(int products, int blocksPerProduct);

    Repository& repository() { return *m_repository; }
    const RepositoryPtr& repositoryPtr() const { return m_repository; }
    std::string root() const { return m_root.path().toStdString(); }
    Host::EmbeddedHost& host() { return *m_host; }
    // The object of a unique path; fails the test when there is none.
    TandrilObject object(const std::string& path);

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
    std::unique_ptr<Host::EmbeddedHost> m_host;
    RepositoryPtr m_repository;
};

// A window as small as a page needs: tree nodes by UID, a status bar and a
// tab label as texts, and a record of what the page asked for.
class FakePageHost : public BlocksPageHost {
public:
    explicit FakePageHost(Repository& repository) : m_repository(repository) {}

    // A tree node for the object; gives its UID.
    int addNode(const TandrilObject& object)
    {
        m_nodes[int(m_nodes.size()) + 1] = object.toBlock();
        return int(m_nodes.size());
    }

    LayoutType layout = LayoutType::Grid;
    IconSize iconSize = IconSize::Small;
    QFont font{"Arial", 10};
    int currentNode = 0;
    BlocksPage* currentPage = nullptr;
    std::string status;
    std::string tabLabel;
    std::string description;
    int searchFocusRequests = 0;
    std::vector<std::string> menus;
    std::vector<std::string> openedInTree;

    LayoutType getLayoutType() const override { return layout; }
    IconSize getIconSize() const override { return iconSize; }
    QFont getGuiFont() const override { return font; }
    QColor getColorPref(const char*) const override { return Qt::white; }
    RepositoryReader* getReader() override { return &m_repository; }
    Block getTreeNodeBlock(int uid) const override
    {
        const auto found = m_nodes.find(uid);
        return found == m_nodes.end() ? Block() : found->second;
    }
    int getCurrentNodeUID() const override { return currentNode; }
    bool nodeHasParent(int) const override { return false; }
    QRect getBlocksGeometry() const override { return QRect(0, 0, 390, 410); }
    QRect getPosition() const override { return QRect(0, 0, 10, 10); }
    BlocksPage* internalGetCurrentBlocksPage() override { return currentPage; }
    void internalSetTabLabel(BlocksPage*, const std::string& label) override { tabLabel = label; }
    void internalUpdateDescription(GuiBlock* tile) override { description = tile ? tile->getDisplayPath() : ""; }
    void internalWarnAboutEmptyLibrary(const std::string&) override {}
    std::string getCurrentStatusBarMessage() const override { return status; }
    void internalSetStatusBarMessage(const std::string& text) override { status = text; }
    void internalFocusSearchBox() override { ++searchFocusRequests; }
    void internalSetCursor(Qt::CursorShape) override {}
    void internalUnsetCursor() override {}
    void internalLoadRootLibrary(const std::string&, const std::string&) override {}
    void internalOpenSubsystemInTree(const std::string& path) override { openedInTree.push_back(path); }
    void goToParent() override {}
    void internalShowBlockContextMenu(GuiBlock* tile, const QPoint&) override
    {
        menus.push_back(tile->getDisplayName());
    }
    void internalSelectInLibraryView(GuiBlock*) override {}

private:
    Repository& m_repository;
    std::map<int, Block> m_nodes;
};

} // namespace LibraryBrowser::Testing
