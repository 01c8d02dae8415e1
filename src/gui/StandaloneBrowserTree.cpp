// The library tree of the window: filling it lazily, selection by keyboard
// and mouse, finding paths, refresh, and the products brought up to date.

#include "gui/StandaloneBrowser.h"

#include "frame/MessageCatalogue.h"
#include "gui/BrowserHostCommands.h"
#include "gui/BrowserToolBarIcons.h"
#include "gui/GuiSubsystem.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/LibraryTreeView.h"
#include "gui/ResultsBlocksPage.h"
#include "model/NodeCast.h"
#include "model/SubSystemImpl.h"

#include <QApplication>
#include <QComboBox>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTabWidget>
#include <QTimer>

namespace LibraryBrowser {

using namespace BrowserUtils;

namespace {

// The product that leads the tree whatever its place in the alphabet.
const std::string MainLibraryName = "Tandril";

bool isInvalid(const Handle& handle)
{
    const TandrilObjectImpl* node = handle.getImpl();
    return !node || node->getIsInvalid();
}

} // namespace

GuiSubsystem* StandaloneBrowser::treeTile(int uid) const
{
    const auto found = m_treeNodes.find(uid);
    return found != m_treeNodes.end() ? found->second.get() : nullptr;
}

Block StandaloneBrowser::getTreeNodeBlock(int uid) const
{
    const GuiSubsystem* tile = treeTile(uid);
    return tile ? tile->getBlock() : Block();
}

int StandaloneBrowser::internalTakeTreeNode(const TandrilObject& subsystem)
{
    const int uid = getUniqueUID();
    auto tile = std::make_shared<GuiSubsystem>(this, subsystem.toBlock(), nullptr);
    m_displayPathToUID[tile->getDisplayPath()] = uid;
    m_treeNodes[uid] = std::move(tile);
    return uid;
}

void StandaloneBrowser::internalInitTree()
{
    m_treeReady = false;
    const QIcon productIcon = BrowserToolBarIcons::icon("TandrilModelIcon.png");
    m_searchResults.libraries.clear();

    int firstUID = 0;
    int mainUID = 0;
    // Display name to UID in byte order; a second product of one display
    // name keeps its tile but gets no node.
    std::map<std::string, int> sorted;
    for (TandrilObjectIterator it = m_repository->getTopLevelIterator(); it.isValidIterator(); it.next()) {
        const TandrilObject subsystem = it.current();
        const int uid = internalTakeTreeNode(subsystem);
        if (!firstUID)
            firstUID = uid;
        const std::string name = subsystem.getDisplayName();
        if (name == MainLibraryName && !mainUID)
            mainUID = uid;
        else
            sorted.emplace(name, uid);
    }

    const auto enter = [&](int uid, bool searched) {
        const Block& block = treeTile(uid)->getBlock();
        if (searched)
            m_searchResults.libraries.push_back(block.toLibrary());
        m_tree->addItem(" " + block.getDisplayName(), -1, uid);
        m_tree->setItemExpandable(uid, !block.getIsFlat());
        m_tree->setItemIcon(uid, productIcon);
        m_sortedLibraryNames.push_back(block.getDisplayName());
    };
    // The main library leads and is always searched. Without one, the tree is
    // the products in order and the first of them is opened, as with it.
    if (mainUID)
        enter(mainUID, true);
    for (const auto& [name, uid] : sorted)
        enter(uid, !isInvalid(treeTile(uid)->getBlock()));

    internalExpandTreeNode(firstUID);
    internalSelectTreeNode(firstUID);
    m_treeReady = true;
}

int StandaloneBrowser::internalAddChildrenToTreeNode(int uid)
{
    const GuiSubsystem* node = uid > 0 ? treeTile(uid) : nullptr;
    if (!node)
        return 0;
    // The current node may lie below (the user closed the branch over it with
    // the expander): its path and its ancestors' paths, nearest first, to find
    // it again among the new items.
    std::vector<std::string> currentChain;
    for (int up = m_currentNodeUID; up > 0 && up != uid; up = m_tree->getItemParent(up))
        if (const GuiSubsystem* tile = treeTile(up))
            currentChain.push_back(tile->getDisplayPath());
    for (int child : m_tree->getItemChildren(uid))
        m_treeNodes.erase(child);
    m_tree->removeChildren(uid);

    std::vector<std::string> labels;
    std::vector<int> uids;
    std::vector<bool> expandable;
    std::vector<std::string> icons;
    const Block parent = node->getBlock();
    for (TandrilObjectIterator it = m_repository->getChildrenIterator(parent); it.isValidIterator(); it.next()) {
        const TandrilObject object = it.current();
        if (!object.isSubSystem())
            continue;
        std::string label = object.getDisplayName();
        strReplace(label, "//", "/");
        const BlockImpl* impl = nodeCast<BlockImpl>(object.getImpl());
        const std::string treeIcon = impl ? impl->getTreeIcon() : std::string();
        labels.push_back(label);
        uids.push_back(internalTakeTreeNode(object));
        expandable.push_back(!object.getIsFlat());
        icons.push_back(treeIcon.empty() ? std::string() : getNumoraroot() + "/" + treeIcon);
    }
    m_tree->addChildren(uid, labels, uids, expandable, icons);
    if (!m_tree->itemOf(m_currentNodeUID))
        internalAdoptCurrentTreeNode(currentChain, uid);
    return uids.empty() ? 0 : uids.back();
}

void StandaloneBrowser::internalAdoptCurrentTreeNode(const std::vector<std::string>& chain, int fallbackUID)
{
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const int found = internalGetUIDForDisplayPath(chain[i]);
        if (found < 1)
            continue;
        if (i == 0) {
            // The same node under a new item: the page already shows it.
            m_currentNodeUID = m_waitingNodeUID = found;
            m_tree->selectItem(found);
        } else {
            internalSelectTreeNode(found);
        }
        return;
    }
    internalSelectTreeNode(fallbackUID);
}

void StandaloneBrowser::handleOnExpandTreeNode(int uid) { internalEnsureTreeNodeVisible(internalAddChildrenToTreeNode(uid)); }

void StandaloneBrowser::internalExpandTreeNode(int uid)
{
    internalAddChildrenToTreeNode(uid);
    m_tree->setItemExpanded(uid, true);
}

void StandaloneBrowser::internalExpandTreeNodeAndBelow(int uid)
{
    // Each opening makes the branch's children anew: they are read after it.
    std::vector<std::pair<int, int>> pending{{uid, 0}};
    while (!pending.empty()) {
        const auto [next, depth] = pending.back();
        pending.pop_back();
        internalExpandTreeNode(next);
        if (depth + 1 < MaxExpandAllDepth)
            for (int child : m_tree->getItemChildren(next))
                if (m_tree->isItemExpandable(child))
                    pending.emplace_back(child, depth + 1);
    }
    internalEnsureTreeNodeVisible(m_currentNodeUID);
}

void StandaloneBrowser::internalCollapseTreeNode(int uid)
{
    // The selection moves up before the node closes over it; a top-level
    // node has no parent and takes the selection itself.
    const int parent = m_tree->getItemParent(uid);
    internalSelectTreeNode(parent > 0 ? parent : uid);
    m_tree->setItemExpanded(uid, false);
}

void StandaloneBrowser::internalEnsureTreeNodeVisible(int uid)
{
    if (uid > 0)
        m_tree->ensureItemVisible(uid);
}

void StandaloneBrowser::handleTreeSelectionChanged(int uid)
{
    m_waitingNodeUID = uid;
    m_selectionTimer->start(m_treeSelectionTimeout);
}

void StandaloneBrowser::handleMouseButtonClickOnTreeItem(int uid)
{
    m_selectionTimer->stop();
    m_waitingNodeUID = uid;
    internalSelectTreeNodeFromUI(uid);
}

void StandaloneBrowser::internalWaitingTreeNodeTimerCallback() { internalSelectTreeNodeFromUI(m_waitingNodeUID); }

void StandaloneBrowser::internalSelectTreeNodeFromUI(int uid)
{
    static bool selecting = false;
    if (selecting)
        return;
    selecting = true;
    internalShowNode(uid);
    internalSelectTab(0, true);
    selecting = false;
}

void StandaloneBrowser::internalShowNode(int uid)
{
    if (treeTile(uid))
        m_currentNodeUID = uid;
    m_libraryPage->updateBlocks(uid);
}

void StandaloneBrowser::internalSelectTreeNode(int uid)
{
    if (uid <= 0)
        return;
    if (uid != m_currentNodeUID)
        internalShowNode(uid);
    internalSelectTab(0, true);
    m_tree->selectItem(uid);
    m_waitingNodeUID = uid;
}

void StandaloneBrowser::internalSelectTab(int index, bool force)
{
    if (index == m_currentTabIndex && !force)
        return;
    m_currentTabIndex = index;
    if (index == 0) {
        if (m_libraryPage->isValid()) {
            m_libraryPage->layOutIfResizedWhileHidden();
            internalSetStatusBarMessage(m_libraryPage->getStatusMessage());
            internalUpdateDescription(m_libraryPage->getSelectedBlock());
            m_libraryPage->ensureSelectedBlockVisible();
            m_libraryPage->showPageBlocks();
        } else {
            m_libraryPage->updateBlocks(m_currentNodeUID);
        }
    } else if (index == 1) {
        if (m_resultsPage->isValid() && !m_searchResults.resultsNeedReload) {
            m_resultsPage->layOutIfResizedWhileHidden();
            internalSetStatusBarMessage(m_resultsPage->getStatusMessage());
            m_resultsPage->ensureSelectedBlockVisible();
            internalUpdateDescription(m_resultsPage->getSelectedBlock());
            m_resultsPage->showPageBlocks();
        } else {
            m_resultsPage->updateBlocks(m_currentNodeUID);
        }
    }
    if (force && index >= 0 && index < m_tabContainer->count() && m_tabContainer->currentIndex() != index) {
        const QSignalBlocker quiet(m_tabContainer);
        m_tabContainer->setCurrentIndex(index);
    }
}

int StandaloneBrowser::internalGetUIDForDisplayPath(const std::string& displayPath) const
{
    // A node below a branch that was rebuilt keeps its entry here while its
    // item is gone with the branch: it counts as not in the tree.
    const auto found = m_displayPathToUID.find(displayPath);
    return found != m_displayPathToUID.end() && m_tree->itemOf(found->second) ? found->second : 0;
}

int StandaloneBrowser::internalGetUIDForDisplayPathAfterOpeningTree(const std::string& displayPath)
{
    std::string prefix;
    std::size_t start = 0;
    // A doubled slash belongs to a name; only a single one separates.
    for (std::size_t i = 0; i <= displayPath.size(); ++i) {
        const bool end = i == displayPath.size();
        if (!end && displayPath[i] != '/')
            continue;
        if (!end && i + 1 < displayPath.size() && displayPath[i + 1] == '/') {
            ++i;
            continue;
        }
        prefix = displayPath.substr(0, i);
        if (i > start)
            internalExpandTreeNode(internalGetUIDForDisplayPath(prefix));
        start = i + 1;
    }
    return internalGetUIDForDisplayPath(displayPath);
}

void StandaloneBrowser::internalOpenSubsystemInTree(const std::string& displayPath)
{
    int uid = internalGetUIDForDisplayPath(displayPath);
    if (uid < 1)
        uid = internalGetUIDForDisplayPathAfterOpeningTree(displayPath);
    if (uid < 1)
        return;
    internalEnsureTreeNodeVisible(uid);
    if (uid == m_currentNodeUID) {
        internalShowNode(uid);
        internalSelectTab(0, true);
    } else {
        internalSelectTreeNode(uid);
    }
}

void StandaloneBrowser::internalSelectGuiBlockInLibraryView(GuiBlock* tile)
{
    if (!tile)
        return;
    const std::string path = tile->getDisplayPath();
    const std::string name = tile->getDisplayName();
    if (path.size() <= name.size())
        return;
    const std::string parent = path.substr(0, path.size() - name.size() - 1);
    int uid = internalGetUIDForDisplayPath(parent);
    if (uid < 1)
        uid = internalGetUIDForDisplayPathAfterOpeningTree(parent);
    if (uid < 1)
        return;
    m_libraryPage->setSavedBlockSelectionName(path);
    if (uid == m_currentNodeUID) {
        internalShowNode(uid);
        internalSelectTab(0, true);
    } else {
        internalSelectTreeNode(uid);
    }
    internalEnsureTreeNodeVisible(uid);
}

void StandaloneBrowser::internalSelectInLibraryView(GuiBlock* tile) { internalSelectGuiBlockInLibraryView(tile); }

void StandaloneBrowser::internalPopupContextMenuForTreeItemAtPoint(const QPoint& globalPosition, int uid)
{
    const GuiSubsystem* tile = treeTile(uid);
    if (!tile)
        return;
    internalClearContextMenu();
    QAction* open = m_contextMenu->addAction(QString::fromStdString(xlatedMessageFromIdAndCharStar(
        MessageId::TDLB_GuiContextMenuOpenLibrary, escapeAmpersands(tile->getDisplayName()))));
    if (m_contextMenu->exec(globalPosition) == open)
        internalOpenTandrilLib();
}

void StandaloneBrowser::internalOpenTandrilLib()
{
    // The node the page shows, which a right click doesn't change.
    if (GuiSubsystem* tile = treeTile(m_currentNodeUID))
        tile->openTandrilLib();
}

void StandaloneBrowser::selectTreeNodeByName(const std::string& displayPath)
{
    const int uid = internalGetUIDForDisplayPath(displayPath);
    if (uid < 1)
        return;
    m_selectionTimer->stop();
    internalSelectTreeNode(uid);
}

void StandaloneBrowser::selectTreeNodeByNameGui(const std::string& displayPath)
{
    const int uid = internalGetUIDForDisplayPath(displayPath);
    if (uid < 1)
        return;
    // A user reaches only a shown node, so its closed parents open first,
    // quietly, keeping their children. Left to the view, they would open
    // while it moves the selection, and their children, the selected item
    // among them, would be made anew under its feet.
    for (int parent = m_tree->getItemParent(uid); parent > 0; parent = m_tree->getItemParent(parent))
        m_tree->setItemExpanded(parent, true);
    m_tree->selectItemAsUser(uid);
}

void StandaloneBrowser::expandTreeNodeByName(const std::string& displayPath)
{
    const int uid = internalGetUIDForDisplayPath(displayPath);
    if (uid > 0 && m_tree->isItemExpandable(uid) && !m_tree->isItemExpanded(uid))
        internalExpandTreeNode(uid);
}

void StandaloneBrowser::collapseTreeNodeByName(const std::string& displayPath)
{
    const int uid = internalGetUIDForDisplayPath(displayPath);
    if (uid > 0 && m_tree->isItemExpandable(uid) && m_tree->isItemExpanded(uid))
        internalCollapseTreeNode(uid);
}

bool StandaloneBrowser::isTreeNodeExpandable(const std::string& displayPath) const
{
    return m_tree->isItemExpandable(internalGetUIDForDisplayPath(displayPath));
}

bool StandaloneBrowser::isTreeNodeExpanded(const std::string& displayPath) const
{
    return m_tree->isItemExpanded(internalGetUIDForDisplayPath(displayPath));
}

std::vector<std::string> StandaloneBrowser::getChildren(const std::string& displayPath) const
{
    std::vector<std::string> children;
    const int uid = internalGetUIDForDisplayPath(displayPath);
    if (!m_tree->isItemExpanded(uid))
        return children;
    for (int child : m_tree->getItemChildren(uid))
        if (const GuiSubsystem* tile = treeTile(child))
            children.push_back(tile->getDisplayPath());
    return children;
}

std::string StandaloneBrowser::getCurrentTreeNode() const
{
    const GuiSubsystem* tile = m_currentNodeUID >= 1 ? treeTile(m_currentNodeUID) : nullptr;
    return tile ? tile->getDisplayPath() : std::string();
}

void StandaloneBrowser::goToParent()
{
    const int parent = m_tree->getItemParent(m_currentNodeUID);
    if (parent > 0)
        internalSelectTreeNode(parent);
}

bool StandaloneBrowser::nodeHasParent() const { return nodeHasParent(m_currentNodeUID); }

bool StandaloneBrowser::nodeHasParent(int uid) const { return m_tree->getItemParent(uid) > 0; }

void StandaloneBrowser::refreshLibraryBrowser() { internalRefreshRepository(true); }

void StandaloneBrowser::internalRefreshRepository(bool showProgress)
{
    internalResetBrowser();
    internalSetStatusBarMessage(m_busyMessage);
    internalSetCursor(Qt::WaitCursor);
    m_progressDialog->setLabelText(QString::fromStdString(
        xlatedMessageFromId(MessageId::TDLB_GuiStatusBarRefreshRepository)));
    if (showProgress)
        internalShowProgress(std::string());
    internalEnableBrowser(false);
    internalUpdateProducts();
    internalEnableBrowser(true);
    if (showProgress)
        internalHideProgress();
    internalUnsetCursor();
    internalInitTree();
}

void StandaloneBrowser::internalResetTree()
{
    m_currentNodeUID = -1;
    m_waitingNodeUID = -1;
    m_treeReady = false;
    m_treeNodes.clear();
    m_displayPathToUID.clear();
    m_sortedLibraryNames.clear();
    m_tree->clearItems();
}

void StandaloneBrowser::internalResetBrowser()
{
    internalResetTree();
    internalSelectTab(0, false);
    m_searchListBox->clear();
    internalResetSearchResults();
    m_libraryPage->clearBlocks();
    m_resultsPage->forgetSectionNames();
    m_resultsPage->clearSections();
    m_resultsPage->setStatusMessage(xlatedMessageFromId(MessageId::TDLB_GuiStatusBarNoSearchResults));
    m_tabContainer->setTabText(
        1, QString::fromStdString(xlatedMessageFromId(MessageId::TDLB_GuiSearchResultsTabLabel_Empty)));
    m_searchResults.resultsNeedReload = true;
}

void StandaloneBrowser::internalUpdateProducts()
{
    m_repository->updateProducts();
    std::string text;
    for (const auto& [identifier, message] : m_repository->getRepositoryReport()->takeUniqueWarnings())
        if (identifier != "InternalWarning")
            text += message + "\n";
    if (text.empty())
        return;
    // One dialog for all of them, and the window goes on working behind it.
    auto* dialog = new QMessageBox(QMessageBox::Warning,
                                   QString::fromStdString(xlatedMessageFromId(MessageId::TDLB_WarningDialogTitle)),
                                   QString::fromStdString(text), QMessageBox::Ok, m_window);
    dialog->setObjectName(QStringLiteral("LBWarningDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void StandaloneBrowser::internalShowProgress(const std::string& label)
{
    if (!label.empty())
        m_progressDialog->setLabelText(QString::fromStdString(label));
    m_progressDialog->show();
    ++m_progressShown;
    // The dialog is painted before the work that it announces blocks the loop.
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void StandaloneBrowser::internalHideProgress() { m_progressDialog->hide(); }

void StandaloneBrowser::internalPreGenerateProduct(const std::string& product)
{
    internalShowProgress(xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiGeneratingRepositoryForProduct, product));
}

void StandaloneBrowser::internalPostGenerateProduct(const std::string& product)
{
    internalHideProgress();
    if (!m_treeReady)
        return;
    const int uid = internalGetUIDForDisplayPath(product);
    if (const GuiSubsystem* tile = treeTile(uid))
        m_tree->setItemExpandable(uid, !tile->getBlock().getIsFlat());
}

void StandaloneBrowser::internalLoadRootLibrary(const std::string& path, const std::string& displayPath)
{
    const std::string root = tokenizeBlockPath(path, TokenType::RootName);
    if (root.empty() || isSystemLoaded(root))
        return;
    const std::string previous = m_statusMessage;
    const std::string loading = xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiStatusBarLoading,
                                                               tokenizeBlockPath(displayPath, TokenType::ParentPath));
    internalSetStatusBarMessage(loading);
    internalSetCursor(Qt::WaitCursor);
    internalShowProgress(loading);
    openSystem(root, "loadOnly");
    internalSetStatusBarMessage(previous);
    internalHideProgress();
    internalUnsetCursor();
}

} // namespace LibraryBrowser
