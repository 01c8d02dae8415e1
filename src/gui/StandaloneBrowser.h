#pragma once

#include "gui/BlockHistory.h"
#include "gui/BrowserActionTable.h"
#include "gui/BrowserPreferences.h"
#include "gui/BrowserSettings.h"
#include "gui/ResultsPageHost.h"
#include "gui/SearchResults.h"
#include "repository/Repository.h"
#include "repository/search/RankingIndex.h"

#include <QColor>
#include <QFont>
#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QRect>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

class QAction;
class QComboBox;
class QDockWidget;
class QFrame;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QMainWindow;
class QMenu;
class QProgressDialog;
class QScrollArea;
class QTabWidget;
class QTimer;
class QToolButton;
class QWidget;

namespace LibraryBrowser {

class GuiSubsystem;
class LibraryBlocksPage;
class LibraryTreeView;
class QuickInsertPopup;
class ResultsBlocksPage;

// The browser window: the library tree, the two pages of tiles, the block
// description, the search bar, menus and tool bars, and the preferences
// that bring it back as the user left it. One instance serves the process
// (getInstance); scripts and tests may make more on a repository of their
// own (create). Closing only hides it; the next show checks the products
// again.
class StandaloneBrowser : public QObject, public ResultsPageHost {
    Q_OBJECT

public:
    // The process's window, made on first use; null for a call made while
    // that window is still being built (from a host call of its init).
    static StandaloneBrowser* getInstance();
    static bool hasInstance();
    static bool isInstanceBeingBuilt();
    static std::unique_ptr<StandaloneBrowser> create(RepositoryPtr repository);
    static void destroyInstance();

    ~StandaloneBrowser() override;
    StandaloneBrowser(const StandaloneBrowser&) = delete;
    StandaloneBrowser& operator=(const StandaloneBrowser&) = delete;

    // The window and its pieces, for the host and for checks.
    QMainWindow* window() const { return m_window; }
    LibraryTreeView* tree() const { return m_tree; }
    LibraryBlocksPage* libraryPage() const { return m_libraryPage.get(); }
    ResultsBlocksPage* resultsPage() const { return m_resultsPage.get(); }
    QComboBox* searchComboBox() const { return m_searchComboBox; }
    QListWidget* searchListBox() const { return m_searchListBox; }
    QLabel* descriptionText() const { return m_descText; }
    QAction* action(BrowserAction id) const;
    BrowserPreferences& preferences() { return *m_prefs; }
    Repository& repository() { return *m_repository; }
    bool isProgressShown() const;
    int progressShownCount() const { return m_progressShown; }

    // What the preferences dialog shows; applying takes effect in the window
    // at once and saves the preferences.
    BrowserSettings getSettings() const;
    void applySettings(const BrowserSettings& settings);

    // The window.
    void showBrowser();
    void hideBrowser();
    // The state before: true when the window was open.
    bool closeBrowser();
    bool isOpen() const;
    QRect getPosition() const override;
    void setPosition(const QRect& rect);
    std::string getTitle() const;
    void setBrowserTitle(const std::string& title);
    double getFontPointSize() const;
    std::string getFontFamily() const;
    int getGUIFont() const;
    void increaseFontSize();
    void decreaseFontSize();
    LayoutType getLayoutType() const override { return m_layoutType; }
    void setLayout(LayoutType layout);
    IconSize getIconSize() const override { return m_iconSize; }
    void setIconSize(IconSize size);
    void showBlockDescription(bool show);
    bool isBlockDescriptionVisible() const;
    void showSearchResults(bool show);
    bool isSearchResultsVisible() const;
    bool isEnabled() const;
    int getCurrentTabIndex() const { return m_currentTabIndex; }
    void selectTabByIndex(int index);
    std::string getCurrentStatusBarMessage() const override { return m_statusMessage; }
    static bool isStayOnTopActionEnabled() { return true; }
    static bool isMovableDockWidgetsEnabled() { return true; }

    // The tree.
    void selectTreeNodeByName(const std::string& displayPath);
    void selectTreeNodeByNameGui(const std::string& displayPath);
    void expandTreeNodeByName(const std::string& displayPath);
    void collapseTreeNodeByName(const std::string& displayPath);
    bool isTreeNodeExpandable(const std::string& displayPath) const;
    bool isTreeNodeExpanded(const std::string& displayPath) const;
    std::vector<std::string> getChildren(const std::string& displayPath) const;
    std::string getCurrentTreeNode() const;
    std::vector<std::string> getSortedLibraryNames() const { return m_sortedLibraryNames; }
    bool isSelectedTreeNodeCurrent() const { return m_waitingNodeUID == m_currentNodeUID; }
    void goToParent() override;
    bool nodeHasParent() const;
    void refreshLibraryBrowser();

    // The search.
    void searchForBlock(const std::string& text);
    std::vector<bool> getSearchOptions() const;
    // Regular expression, match case, whole word; fewer than three throws.
    void setSearchOptions(const std::vector<bool>& options);
    bool validateSearchString(std::string& text) const;
    void selectSearchResultByDisplayPathName(const std::string& displayPath);
    std::vector<std::string> getSearchResultsDisplayPathNames() const;
    void selectBlockInLibraryView(const std::string& displayPath);
    bool showResultsSectionByName(const std::string& name);
    bool hideResultsSectionByName(const std::string& name);
    bool isResultsSectionVisibleGui(const std::string& name) const;
    std::vector<std::string> getResultsSectionBlockNames(const std::string& name) const;
    std::vector<std::string> getResultsPageSectionNames() const;
    std::vector<std::string> getResultsPageBlockNames() const;
    std::vector<std::string> getLibraryPageBlockNames() const;
    int getLibraryNumIconCols() const;
    int getResultsNumIconCols() const;
    bool isSearching() const { return m_searching; }
    // Escape during the walk: the search stops after the library at hand.
    void cancelSearch() { m_searchCancelled = true; }

    // Block actions.
    void addSelectedBlockToCurrentOpenSystem();
    void showSelectedBlockHelp();
    void showSelectedBlockParams();
    void showTandrilHelp();
    void showLibBrowseHelp();
    void showTandrilPrefs();
    void openNewModel();
    void openNewLibrary();
    void doubleClickBlock(const std::string& displayPath);
    void selectBlockByName(const std::string& displayPath);
    void selectBlockLeft();
    void selectBlockRight();
    void selectBlockUp();
    void selectBlockDown();
    std::string getSelectedBlockName() const;
    QRect getSelectedBlockPosition() const;

    // The quick insert: a popup that puts the block chosen into the system.
    // With a point of the screen (where the user typed on a model's canvas)
    // the popup opens there and the block is dropped there; without one it
    // opens over the browser and the block is added where the host puts
    // added blocks. An empty system name means the system in front, or a new
    // model when none is usable.
    void openQuickInsert(const std::string& system, std::optional<QPoint> dropPoint, const QString& typed);
    // The popup now open, or null.
    QuickInsertPopup* quickInsertPopup() const;
    BlockHistory& blockHistory() { return *m_history; }
    BlockHistory* internalBlockHistory() override { return m_history.get(); }

    // What the pages ask of the window.
    QFont getGuiFont() const override { return m_guiFont; }
    QColor getColorPref(const char* key) const override;
    RepositoryReader* getReader() override { return m_repository.get(); }
    Block getTreeNodeBlock(int uid) const override;
    int getCurrentNodeUID() const override { return m_currentNodeUID; }
    bool nodeHasParent(int uid) const override;
    QRect getBlocksGeometry() const override { return m_blocksGeometry; }
    BlocksPage* internalGetCurrentBlocksPage() override;
    void internalSetTabLabel(BlocksPage* page, const std::string& label) override;
    void internalUpdateDescription(GuiBlock* tile) override;
    void internalWarnAboutEmptyLibrary(const std::string& displayName) override;
    void internalSetStatusBarMessage(const std::string& text) override;
    void internalFocusSearchBox() override;
    void internalSetCursor(Qt::CursorShape shape) override;
    void internalUnsetCursor() override;
    void internalLoadRootLibrary(const std::string& path, const std::string& displayPath) override;
    void internalOpenSubsystemInTree(const std::string& displayPath) override;
    void internalShowBlockContextMenu(GuiBlock* tile, const QPoint& globalPosition) override;
    void internalSelectInLibraryView(GuiBlock* tile) override;
    const SearchResults& getSearchResults() const override { return m_searchResults; }
    void clearResultsNeedReload() override { m_searchResults.resultsNeedReload = false; }
    bool rememberUserHiddenSections() const override { return m_rememberUserHiddenSections; }
    bool isTitleElidedMiddle() const override { return m_titleElidedMiddle; }

signals:
    // The window was closed or hidden, by the user or by a call; the
    // preferences are saved by then.
    void browserClosed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit StandaloneBrowser(RepositoryPtr repository);
    static std::unique_ptr<StandaloneBrowser>& slot();
    static bool& building();
    void init();

    // Assembly and preferences.
    void internalReadPrefs();
    void internalCreateGUI();
    void internalCreateDescriptionDock();
    void internalCreateMenus();
    void internalCreateToolBar();
    void internalSavePrefs();
    void internalFitBrowserOnScreens();
    void internalCloseBrowser();
    void internalDestroyOpenDialogs();
    void onAction(BrowserAction id, bool checked);
    void internalSetLayout(LayoutType layout);
    void internalSetIconSize(IconSize size);
    void internalUpdateAllBlocksPages();
    void internalIncFontSize();
    void internalDecFontSize();
    void internalApplyFont();
    void internalToggleDescVisibility(bool on);
    void internalDescPanelClosed();
    void internalToggleSearchResultsListBoxDisplay(bool on);
    void internalSearchPanelClosed();
    void internalToggleStayOnTop(bool on);
    void internalPlaceDescText();
    void internalSetDescription(const QString& html);
    void internalEnableBrowser(bool enable);
    // The search box takes the focus with its text selected, so that typing
    // replaces it.
    void internalFocusSearchBoxSelected();
    // The tree pane back at the width the user gave it, as far as the
    // window leaves room: a window made small squeezes it only for a while.
    void internalRestoreTreeWidth();
    bool internalFilterSearchBoxEvent(QEvent* event);
    void handleAboutToShowEditMenu();
    void handleOnHideEditMenu();
    void handleAboutToShowViewMenu();
    void handleAboutToShowHelpMenu();

    // The tree.
    void internalInitTree();
    int internalTakeTreeNode(const TandrilObject& subsystem);
    int internalAddChildrenToTreeNode(int uid);
    // The current node's item went with a rebuilt branch: the nearest node of
    // the chain (the node's path, then its ancestors') that is in the tree
    // again becomes current, else the fallback.
    void internalAdoptCurrentTreeNode(const std::vector<std::string>& chain, int fallbackUID);
    void internalExpandTreeNode(int uid);
    // uid's branch and every branch below it, at most MaxExpandAllDepth
    // levels down (library references can nest without end).
    void internalExpandTreeNodeAndBelow(int uid);
    static constexpr int MaxExpandAllDepth = 32;
    void internalCollapseTreeNode(int uid);
    void internalEnsureTreeNodeVisible(int uid);
    void handleOnExpandTreeNode(int uid);
    void handleTreeSelectionChanged(int uid);
    void handleMouseButtonClickOnTreeItem(int uid);
    void internalWaitingTreeNodeTimerCallback();
    void internalSelectTreeNodeFromUI(int uid);
    void internalSelectTreeNode(int uid);
    // The node's blocks on the library page, which makes it the current node.
    void internalShowNode(int uid);
    void internalSelectTab(int index, bool force);
    int internalGetUIDForDisplayPath(const std::string& displayPath) const;
    int internalGetUIDForDisplayPathAfterOpeningTree(const std::string& displayPath);
    void internalSelectGuiBlockInLibraryView(GuiBlock* tile);
    void internalPopupContextMenuForTreeItemAtPoint(const QPoint& globalPosition, int uid);
    void internalOpenTandrilLib();
    void internalRefreshRepository(bool showProgress);
    void internalResetBrowser();
    void internalResetTree();
    void internalUpdateProducts();
    void internalPreGenerateProduct(const std::string& product);
    void internalPostGenerateProduct(const std::string& product);
    void internalShowProgress(const std::string& label);
    void internalHideProgress();
    GuiSubsystem* treeTile(int uid) const;

    // The search.
    void internalSearchForString(std::string text);
    void internalResetSearchResults();
    void internalSearchResultsListBoxItemChosen(int index);
    void internalSelectSelectedResultsBlockInLibraryView();
    void internalSetSearchOption(BrowserAction id, bool on);

    // Block actions.
    GuiBlock* internalGetCurrentBlockSelection() const;
    void internalClearContextMenu();

    void internalOpenQuickInsertForSystemInFront();
    void internalQuickInsertBlock(const TandrilObject& block, const std::string& system,
                                  std::optional<QPoint> dropPoint, int insertedBefore);
    // Built at the first quick insert and kept until the repository changes.
    RankingIndexPtr internalRankingIndex();

    RepositoryPtr m_repository;
    std::unique_ptr<BrowserPreferences> m_prefs;
    std::unique_ptr<BlockHistory> m_history;
    RankingIndexPtr m_rankingIndex;
    QPointer<QuickInsertPopup> m_quickInsert;

    // Tree nodes: UID to the tile that stands for the node, and back by path.
    std::unordered_map<int, std::shared_ptr<GuiSubsystem>> m_treeNodes;
    std::unordered_map<std::string, int> m_displayPathToUID;
    std::vector<std::string> m_sortedLibraryNames;
    QRect m_windowGeometry;
    QRect m_blocksGeometry;
    QByteArray m_defaultWindowState;
    std::string m_busyMessage;
    std::string m_searchPrompt;
    std::string m_lastFailedSearch;
    std::string m_statusMessage;
    int m_currentNodeUID = -1;
    int m_waitingNodeUID = -1;
    int m_treeSelectionTimeout = 111;
    int m_currentTabIndex = -1;
    int m_progressShown = 0;
    // The tree pane's width as the user last dragged it (or as it was
    // restored); 0 until known.
    int m_treeWidth = 0;
    QFont m_guiFont;
    LayoutType m_layoutType = LayoutType::List;
    IconSize m_iconSize = IconSize::Small;
    bool m_closedSinceShown = false;
    bool m_treeReady = false;
    bool m_showBlockDesc = true;
    bool m_descPanelClosing = false;
    bool m_searchPanelClosing = false;
    bool m_searchPanelVisible = false;
    bool m_listBoxShowable = false;
    bool m_listBoxSelectsInLibraryPanel = true;
    bool m_listBoxSelectsInResultsPanel = false;
    bool m_listBoxPrimary = false;
    bool m_iconSizeChanging = false;
    bool m_layoutChanging = false;
    bool m_searching = false;
    bool m_searchCancelled = false;
    bool m_useRegExp = false;
    bool m_matchWholeWord = false;
    bool m_matchCase = false;
    bool m_searchDescriptions = false;
    bool m_rememberUserHiddenSections = true;
    bool m_titleElidedMiddle = true;
    bool m_descTextBelow = false;
    SearchResults m_searchResults;
    std::map<std::string, QColor> m_colors;

    QMainWindow* m_window = nullptr;
    QWidget* m_helperWindow = nullptr;
    QTabWidget* m_tabContainer = nullptr;
    QDockWidget* m_treeDock = nullptr;
    QDockWidget* m_searchDock = nullptr;
    QDockWidget* m_descDock = nullptr;
    QFrame* m_descFrame = nullptr;
    QScrollArea* m_descScrollView = nullptr;
    QWidget* m_descPanel = nullptr;
    QGridLayout* m_descGridLayout = nullptr;
    QLabel* m_descCanvas = nullptr;
    QLabel* m_descText = nullptr;
    LibraryTreeView* m_tree = nullptr;
    QTimer* m_selectionTimer = nullptr;
    QListWidget* m_searchListBox = nullptr;
    QComboBox* m_searchComboBox = nullptr;
    // The box's line edit, known before the box goes.
    QLineEdit* m_searchEdit = nullptr;
    QToolButton* m_searchOptionsButton = nullptr;
    QProgressDialog* m_progressDialog = nullptr;
    QMenu* m_contextMenu = nullptr;
    QMenu* m_editMenu = nullptr;
    QIcon m_pinOnIcon;
    QIcon m_pinOffIcon;
    std::map<BrowserAction, QAction*> m_actions;
    std::unique_ptr<LibraryBlocksPage> m_libraryPage;
    std::unique_ptr<ResultsBlocksPage> m_resultsPage;
};

} // namespace LibraryBrowser
