#include "gui/StandaloneBrowser.h"

#include "frame/MessageCatalogue.h"
#include "gui/BrowserHostCommands.h"
#include "gui/BrowserLayoutRules.h"
#include "gui/BrowserToolBarIcons.h"
#include "gui/GuiSubsystem.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/LibraryTreeView.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SearchHistory.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QComboBox>
#include <QLineEdit>
#include <QDockWidget>
#include <QFontInfo>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QProgressDialog>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>

namespace LibraryBrowser {

using namespace BrowserUtils;

namespace {

QString xlated(std::uint32_t id) { return QString::fromStdString(xlatedMessageFromId(id)); }

// The colour keys in the order the window reads them; the divider frame's is
// read and never written.
const char* const ColorKeys[] = {
    PrefKey::LBColorBlocksDescriptionBackground, PrefKey::LBColorLibraryBlocksBackgroundTop,
    PrefKey::LBColorLibraryBlocksBackgroundBot,  PrefKey::LBColorSearchResultsBackgroundTop,
    PrefKey::LBColorSearchResultsBackgroundBot,  PrefKey::LBColorSearchResultsDividerBarTop,
    PrefKey::LBColorSearchResultsDividerBarBot,  PrefKey::LBColorSearchResultsDividerBarFrame,
};

// One switch of the layout or the icon size: the check marks follow the
// wanted value (a re-entered call from a mark's own signal does nothing), and
// true when the value changed and the pages must be made anew.
template <class Value>
bool switchTo(bool& changing, Value& current, Value wanted, std::initializer_list<std::pair<QAction*, Value>> marks)
{
    if (changing)
        return false;
    changing = true;
    for (const auto& [mark, value] : marks)
        mark->setChecked(value == wanted);
    changing = false;
    if (wanted == current)
        return false;
    current = wanted;
    return true;
}

} // namespace

std::unique_ptr<StandaloneBrowser>& StandaloneBrowser::slot()
{
    static std::unique_ptr<StandaloneBrowser> instance;
    return instance;
}

bool& StandaloneBrowser::building()
{
    static bool underWay = false;
    return underWay;
}

StandaloneBrowser* StandaloneBrowser::getInstance()
{
    if (slot())
        return slot().get();
    // The window is published only once it is whole: the host calls that
    // init makes may reach a script, which must find no half-built window
    // to hand out or delete, nor start a second one.
    if (building())
        return nullptr;
    building() = true;
    struct Done {
        ~Done() { building() = false; }
    } done;
    RepositoryPtr repository = Repository::open();
    std::unique_ptr<StandaloneBrowser> browser(new StandaloneBrowser(std::move(repository)));
    browser->init();
    slot() = std::move(browser);
    return slot().get();
}

bool StandaloneBrowser::hasInstance() { return slot() != nullptr; }

bool StandaloneBrowser::isInstanceBeingBuilt() { return building(); }

std::unique_ptr<StandaloneBrowser> StandaloneBrowser::create(RepositoryPtr repository)
{
    std::unique_ptr<StandaloneBrowser> browser(new StandaloneBrowser(std::move(repository)));
    browser->init();
    return browser;
}

void StandaloneBrowser::destroyInstance() { slot().reset(); }

StandaloneBrowser::StandaloneBrowser(RepositoryPtr repository)
    : m_repository(std::move(repository)),
      m_prefs(std::make_unique<BrowserPreferences>(BrowserPreferences::defaultFileName())),
      m_history(std::make_unique<BlockHistory>(*m_prefs))
{
    setObjectName(QStringLiteral("LibraryBrowser.StandaloneBrowser"));
    m_selectionTimer = new QTimer(this);
    m_selectionTimer->setSingleShot(true);
    connect(m_selectionTimer, &QTimer::timeout, this, [this] { internalWaitingTreeNodeTimerCallback(); });
}

StandaloneBrowser::~StandaloneBrowser()
{
    disconnect(m_repository.get(), nullptr, this, nullptr);
    if (m_window) {
        internalCloseBrowser();
        m_window->removeEventFilter(this);
        // The pages' widgets live in the window; the pages go first.
        m_libraryPage.reset();
        m_resultsPage.reset();
        delete m_window;
    }
}

void StandaloneBrowser::init()
{
    internalReadPrefs();
    internalCreateGUI();
    internalUpdateProducts();
    internalInitTree();
}

void StandaloneBrowser::internalReadPrefs()
{
    BrowserPreferences& prefs = *m_prefs;
    m_layoutType = BrowserPreferences::layoutFromWord(prefs.getString(PrefKey::LBLayout));
    m_iconSize = BrowserPreferences::iconSizeFromWord(prefs.getString(PrefKey::LBIconSize));
    const int fontSize = BrowserPreferences::correctedFontSize(prefs.getInt(PrefKey::LBFontSize));
    QString family = prefs.getString(PrefKey::LBFontFamily);
    m_guiFont = QFont(family, fontSize);
    // A family this machine lacks becomes the one that stands in for it.
    const QString closest = QFontInfo(m_guiFont).family();
    if (!closest.isEmpty() && closest != family)
        m_guiFont.setFamily(closest);
    m_useRegExp = prefs.getBool(PrefKey::LBSearch_UseRegExp);
    m_matchWholeWord = prefs.getBool(PrefKey::LBSearch_MatchWholeWord);
    m_matchCase = prefs.getBool(PrefKey::LBSearch_MatchCase);
    m_searchDescriptions = prefs.getBool(PrefKey::LBSearch_Descriptions);
    m_windowGeometry = prefs.getRect(PrefKey::LBGeometry4Window);
    m_blocksGeometry = prefs.getRect(PrefKey::LBGeometry4Blocks);
    m_treeSelectionTimeout = prefs.getInt(PrefKey::LBTreeSelectionTimeout);
    m_treeWidth = std::max(0, prefs.getInt(PrefKey::LBTreeDockWidth));
    for (const char* key : ColorKeys)
        m_colors[key] = prefs.getColor(key);
}

QColor StandaloneBrowser::getColorPref(const char* key) const
{
    const auto found = m_colors.find(key);
    return found != m_colors.end() ? found->second : BrowserPreferences::defaultOf(key).value<QColor>();
}

void StandaloneBrowser::internalCreateGUI()
{
    m_busyMessage = xlatedMessageFromId(MessageId::TDLB_GuiStatusBarBusy);

    m_window = new QMainWindow;
    m_window->setObjectName(QStringLiteral("LBMainWindow"));
    m_window->statusBar()->show();
    const QIcon windowIcon = BrowserToolBarIcons::icon("TandrilModelIcon.png");
    m_window->setWindowIcon(windowIcon);
    m_window->setFont(m_guiFont);
    m_window->installEventFilter(this);

    m_helperWindow = new QWidget(m_window, Qt::Window);

    m_progressDialog = new QProgressDialog(m_window);
    m_progressDialog->setRange(0, 0);
    m_progressDialog->setCancelButton(nullptr);
    m_progressDialog->setMinimumDuration(0);
    m_progressDialog->setAutoClose(false);
    m_progressDialog->setAutoReset(false);
    m_progressDialog->setWindowTitle(xlated(MessageId::TDLB_GuiLibraryBrowserShortTitle));
    m_progressDialog->setWindowIcon(windowIcon);
    m_progressDialog->reset();
    m_progressDialog->hide();
    connect(m_repository.get(), &Repository::preGenerateProduct, this,
            [this](const std::string& product) { internalPreGenerateProduct(product); }, Qt::DirectConnection);
    connect(m_repository.get(), &Repository::postGenerateProduct, this,
            [this](const std::string& product) {
                // A product made anew: the quick insert's index no longer holds.
                m_rankingIndex.reset();
                internalPostGenerateProduct(product);
            },
            Qt::DirectConnection);

    m_treeDock = new QDockWidget(xlated(MessageId::TDLB_GuiTreeViewWidgetTitle), m_window);
    m_treeDock->setObjectName(QStringLiteral("LBTreeDockWidget"));
    m_treeDock->setFeatures(QDockWidget::DockWidgetMovable);
    m_treeDock->setFocusPolicy(Qt::NoFocus);
    m_tree = new LibraryTreeView(m_treeDock);
    m_treeDock->setWidget(m_tree);
    connect(m_tree, &LibraryTreeView::selectionMoved, this, [this](int uid) { handleTreeSelectionChanged(uid); });
    connect(m_tree, &LibraryTreeView::itemPressedWithMouse, this,
            [this](int uid) { handleMouseButtonClickOnTreeItem(uid); });
    connect(m_tree, &LibraryTreeView::expandRequested, this, [this](int uid) { handleOnExpandTreeNode(uid); });
    connect(m_tree, &LibraryTreeView::expandAllRequested, this,
            [this](int uid) { internalExpandTreeNodeAndBelow(uid); });
    connect(m_tree, &LibraryTreeView::contextMenuRequested, this,
            [this](const QPoint& at, int uid) { internalPopupContextMenuForTreeItemAtPoint(at, uid); });

    m_searchDock = new QDockWidget(xlated(MessageId::TDLB_GuiSearchResultsWidgetTitle), m_window);
    m_searchDock->setObjectName(QStringLiteral("LBSearchDockWidget"));
    m_searchDock->setFocusPolicy(Qt::NoFocus);
    m_searchDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetClosable);
    m_searchDock->installEventFilter(this);
    m_searchListBox = new QListWidget(m_searchDock);
    // Decided before the menus read the preference, so the list starts
    // without focus.
    m_searchListBox->setFocusPolicy(m_listBoxShowable ? Qt::StrongFocus : Qt::NoFocus);
    m_searchDock->setWidget(m_searchListBox);
    connect(m_searchListBox, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        if (m_listBoxSelectsInLibraryPanel)
            internalSearchResultsListBoxItemChosen(m_searchListBox->row(item));
    });
    connect(m_searchListBox, &QListWidget::currentRowChanged, this, [this](int row) {
        if (m_listBoxSelectsInLibraryPanel && !m_searching && row >= 0)
            internalSearchResultsListBoxItemChosen(row);
    });
    m_searchPanelVisible = false;
    m_searchDock->hide();

    m_tabContainer = new QTabWidget(m_window);
    m_tabContainer->setObjectName(QStringLiteral("LBTabContainer"));
    m_tabContainer->setFocusPolicy(Qt::StrongFocus);
    // Tab goes from the tree to the page itself, not to the tab bar, where
    // an arrow key would change the page instead of the selection.
    m_tabContainer->tabBar()->setFocusPolicy(Qt::NoFocus);
    m_libraryPage = std::make_unique<LibraryBlocksPage>(*this, m_layoutType, m_iconSize, m_guiFont,
                                                        getColorPref(PrefKey::LBColorLibraryBlocksBackgroundTop),
                                                        m_tabContainer);
    m_libraryPage->setBackgroundColors(getColorPref(PrefKey::LBColorLibraryBlocksBackgroundTop),
                                       getColorPref(PrefKey::LBColorLibraryBlocksBackgroundBot));
    m_tabContainer->addTab(m_libraryPage->getScrollView(), xlated(MessageId::TDLB_GuiLibraryBlocksTabLabel_Empty));
    m_currentTabIndex = 0;
    m_resultsPage = std::make_unique<ResultsBlocksPage>(*this, m_layoutType, m_iconSize, m_guiFont,
                                                        getColorPref(PrefKey::LBColorSearchResultsBackgroundTop),
                                                        m_tabContainer);
    m_resultsPage->setBackgroundColors(getColorPref(PrefKey::LBColorSearchResultsBackgroundTop),
                                       getColorPref(PrefKey::LBColorSearchResultsBackgroundBot));
    m_resultsPage->setStatusMessage(xlatedMessageFromId(MessageId::TDLB_GuiStatusBarNoSearchResults));
    m_tabContainer->addTab(m_resultsPage->getScrollView(), xlated(MessageId::TDLB_GuiSearchResultsTabLabel_Empty));
    connect(m_tabContainer, &QTabWidget::currentChanged, this, [this](int index) { internalSelectTab(index, false); });

    internalCreateDescriptionDock();

    m_window->setCentralWidget(m_tabContainer);
    m_window->addDockWidget(Qt::LeftDockWidgetArea, m_treeDock);
    m_window->addDockWidget(Qt::LeftDockWidgetArea, m_searchDock);
    m_window->addDockWidget(Qt::BottomDockWidgetArea, m_descDock);

    internalCreateMenus();
    internalCreateToolBar();

    // Emptied before each use rather than when it hides: the chosen entry
    // must outlive the menu's own exec.
    m_contextMenu = new QMenu(m_window);

    setBrowserTitle(xlatedMessageFromId(MessageId::TDLB_GuiLibraryBrowserTitle));

    // The layout as built is the default state: what a first start shows.
    m_defaultWindowState = m_window->saveState();
    internalFitBrowserOnScreens();
    const QString state = m_prefs->getString(PrefKey::LBWindowState);
    setPosition(m_windowGeometry);
    m_window->restoreState(state.isEmpty() ? m_defaultWindowState : QByteArray::fromBase64(state.toLatin1()));
    m_searchDock->hide();
    m_descDock->setVisible(m_showBlockDesc);
    m_treeDock->installEventFilter(this);
    m_tree->setFocus();
}

void StandaloneBrowser::internalRestoreTreeWidth()
{
    if (m_treeWidth > 0 && m_treeDock->isVisible() && m_treeDock->width() != m_treeWidth)
        m_window->resizeDocks({m_treeDock}, {m_treeWidth}, Qt::Horizontal);
}

void StandaloneBrowser::internalFitBrowserOnScreens()
{
    BrowserLayoutRules::ScreenLayout screens;
    const QList<QScreen*> all = QGuiApplication::screens();
    QScreen* primary = QGuiApplication::primaryScreen();
    if (!primary)
        return;
    QScreen* atPoint = QGuiApplication::screenAt(m_windowGeometry.topLeft());
    screens.screenCount = int(all.size());
    screens.primaryScreen = int(all.indexOf(primary));
    screens.screenAtPoint = atPoint ? int(all.indexOf(atPoint)) : screens.primaryScreen;
    screens.primaryAvailable = primary->availableGeometry();
    screens.screen1Available = all.size() > 1 ? all[1]->availableGeometry() : QRect();
    screens.desktopAtPoint = atPoint ? atPoint->geometry() : primary->geometry();
    m_windowGeometry = BrowserLayoutRules::fitBrowserOnScreens(m_windowGeometry, screens);
}

void StandaloneBrowser::internalSavePrefs()
{
    BrowserPreferences& prefs = *m_prefs;
    prefs.setString(PrefKey::LBIconSize, BrowserPreferences::wordOf(m_iconSize));
    prefs.setString(PrefKey::LBLayout, BrowserPreferences::wordOf(m_layoutType));
    prefs.setString(PrefKey::LBFontFamily, m_guiFont.family());
    prefs.setInt(PrefKey::LBFontSize, m_guiFont.pointSize());
    prefs.setBool(PrefKey::LBSearch_UseRegExp, m_useRegExp);
    prefs.setBool(PrefKey::LBSearch_MatchCase, m_matchCase);
    prefs.setBool(PrefKey::LBSearch_MatchWholeWord, m_matchWholeWord);
    prefs.setBool(PrefKey::LBSearch_Descriptions, m_searchDescriptions);
    prefs.setBool(PrefKey::LBSearchResults_rememberUserHiddenSections, m_rememberUserHiddenSections);
    prefs.setBool(PrefKey::LBSearchResults_isTitleElidedMiddle, m_titleElidedMiddle);
    prefs.setBool(PrefKey::LBSearchResultsListBox_isShowable, m_listBoxShowable);
    prefs.setBool(PrefKey::LBSearchResultsListBox_isUsedToSelectBlockInLibraryPanel, m_listBoxSelectsInLibraryPanel);
    prefs.setBool(PrefKey::LBSearchResultsListBox_isUsedToSelectBlockInResultsPanel, m_listBoxSelectsInResultsPanel);
    prefs.setBool(PrefKey::LBSearchResultsListBox_isPrimary, m_listBoxPrimary);
    // As the window shows it, whether or not the window itself is shown now.
    prefs.setBool(PrefKey::LBShowBlockDesc, m_descDock->isVisibleTo(m_window));
    prefs.setRect(PrefKey::LBGeometry4Window, getPosition());
    prefs.setRect(PrefKey::LBGeometry4Blocks, m_libraryPage->getMainPanel()->geometry());
    prefs.setInt(PrefKey::LBTreeSelectionTimeout, m_treeSelectionTimeout);
    prefs.setInt(PrefKey::LBTreeDockWidth, m_treeWidth);
    prefs.setString(PrefKey::LBWindowState, QString::fromLatin1(m_window->saveState().toBase64()));
    QStringList history;
    for (int i = 0; i < m_searchComboBox->count(); ++i)
        history.append(m_searchComboBox->itemText(i));
    prefs.setStringList(PrefKey::LBSearchHistory,
                        SearchHistory::toSave(history, QString::fromStdString(m_lastFailedSearch)));
    // The library's bottom colour is written from the results' one, and the
    // divider frame's not at all: that is how the file has always been.
    for (const char* key : ColorKeys) {
        if (key == PrefKey::LBColorSearchResultsDividerBarFrame)
            continue;
        const char* from = key == PrefKey::LBColorLibraryBlocksBackgroundBot
                               ? PrefKey::LBColorSearchResultsBackgroundBot
                               : key;
        prefs.setColor(key, getColorPref(from));
    }
    prefs.save();
}

void StandaloneBrowser::showBrowser()
{
    if (m_window->isMinimized())
        m_window->showNormal();
    else
        m_window->show();
    if (m_closedSinceShown) {
        m_rankingIndex.reset();
        internalRefreshRepository(false);
        m_closedSinceShown = false;
    }
    m_window->raise();
    m_window->activateWindow();
}

void StandaloneBrowser::hideBrowser() { internalCloseBrowser(); }

bool StandaloneBrowser::closeBrowser()
{
    const bool wasOpen = isOpen();
    internalCloseBrowser();
    return wasOpen;
}

bool StandaloneBrowser::isOpen() const { return m_window && m_window->isVisible(); }

void StandaloneBrowser::internalCloseBrowser()
{
    internalDestroyOpenDialogs();
    internalSavePrefs();
    delete m_helperWindow;
    m_helperWindow = new QWidget(m_window, Qt::Window);
    m_window->hide();
    m_closedSinceShown = true;
    emit browserClosed();
}

void StandaloneBrowser::internalDestroyOpenDialogs() { closeBlockDialogsOpenedByBrowser(); }

// The frame's corner and the inside's size, as setPosition takes them, so
// that what is read can be written back without a move.
QRect StandaloneBrowser::getPosition() const { return QRect(m_window->pos(), m_window->size()); }

void StandaloneBrowser::setPosition(const QRect& rect)
{
    m_window->move(rect.topLeft());
    m_window->resize(rect.size());
}

std::string StandaloneBrowser::getTitle() const { return m_window->windowTitle().toStdString(); }

void StandaloneBrowser::setBrowserTitle(const std::string& title)
{
    m_window->setWindowTitle(QString::fromStdString(title));
}

double StandaloneBrowser::getFontPointSize() const { return m_guiFont.pointSizeF(); }

std::string StandaloneBrowser::getFontFamily() const { return m_guiFont.family().toStdString(); }

int StandaloneBrowser::getGUIFont() const { return m_window->font().pointSize(); }

void StandaloneBrowser::increaseFontSize() { internalIncFontSize(); }

void StandaloneBrowser::decreaseFontSize() { internalDecFontSize(); }

void StandaloneBrowser::internalIncFontSize()
{
    if (m_guiFont.pointSize() > 22)
        return;
    m_guiFont.setPointSize(m_guiFont.pointSize() + 2);
    internalApplyFont();
}

void StandaloneBrowser::internalDecFontSize()
{
    if (m_guiFont.pointSize() <= 9)
        return;
    m_guiFont.setPointSize(m_guiFont.pointSize() - 2);
    internalApplyFont();
}

void StandaloneBrowser::internalApplyFont()
{
    m_window->setFont(m_guiFont);
    internalUpdateAllBlocksPages();
}

void StandaloneBrowser::setLayout(LayoutType layout)
{
    if (layout == LayoutType::List || layout == LayoutType::Grid)
        internalSetLayout(layout);
}

void StandaloneBrowser::internalSetLayout(LayoutType layout)
{
    if (switchTo(m_layoutChanging, m_layoutType, layout,
                 {{action(BrowserAction::ListLayout), LayoutType::List},
                  {action(BrowserAction::GridLayout), LayoutType::Grid}}))
        internalUpdateAllBlocksPages();
}

void StandaloneBrowser::setIconSize(IconSize size)
{
    if (int(size) >= int(IconSize::Compact) && int(size) <= int(IconSize::Large))
        internalSetIconSize(size);
}

void StandaloneBrowser::internalSetIconSize(IconSize size)
{
    if (switchTo(m_iconSizeChanging, m_iconSize, size,
                 {{action(BrowserAction::CompactIcons), IconSize::Compact},
                  {action(BrowserAction::SmallIcons), IconSize::Small},
                  {action(BrowserAction::MediumIcons), IconSize::Medium},
                  {action(BrowserAction::LargeIcons), IconSize::Large}}))
        internalUpdateAllBlocksPages();
}

void StandaloneBrowser::internalUpdateAllBlocksPages()
{
    if (m_currentTabIndex != 0 && m_currentTabIndex != 1)
        return;
    BlocksPage* current = internalGetCurrentBlocksPage();
    BlocksPage* other = current == m_libraryPage.get() ? static_cast<BlocksPage*>(m_resultsPage.get())
                                                        : static_cast<BlocksPage*>(m_libraryPage.get());
    other->hidePageBlocks();
    current->updateBlocks(m_currentNodeUID);
}

void StandaloneBrowser::showSearchResults(bool show)
{
    action(BrowserAction::SearchList)->setChecked(show);
    internalToggleSearchResultsListBoxDisplay(show);
}

// As the window would show it: a hidden window hides its docks too.
bool StandaloneBrowser::isSearchResultsVisible() const { return m_searchDock->isVisibleTo(m_window); }

bool StandaloneBrowser::isEnabled() const { return m_window->isEnabled(); }

void StandaloneBrowser::internalToggleSearchResultsListBoxDisplay(bool on)
{
    if (m_searchPanelClosing)
        return;
    m_searchPanelVisible = on;
    m_searchDock->setVisible(on);
}

void StandaloneBrowser::internalSearchPanelClosed()
{
    m_searchPanelClosing = true;
    action(BrowserAction::SearchList)->setChecked(false);
    m_searchPanelVisible = false;
    m_searchPanelClosing = false;
}

void StandaloneBrowser::internalToggleStayOnTop(bool on)
{
    const bool visible = m_window->isVisible();
    m_window->setWindowFlag(Qt::WindowStaysOnTopHint, on);
    // Changing a window's flags hides it.
    if (visible)
        m_window->show();
    action(BrowserAction::StayOnTop)->setIcon(on ? m_pinOnIcon : m_pinOffIcon);
}

void StandaloneBrowser::internalSetStatusBarMessage(const std::string& text)
{
    m_statusMessage = text;
    m_window->statusBar()->showMessage(QString::fromStdString(text));
}

void StandaloneBrowser::internalSetCursor(Qt::CursorShape shape) { m_window->setCursor(shape); }

void StandaloneBrowser::internalUnsetCursor() { m_window->unsetCursor(); }

void StandaloneBrowser::internalEnableBrowser(bool enable)
{
    if (!enable) {
        internalSetCursor(Qt::WaitCursor);
        m_window->setEnabled(false);
        return;
    }
    internalUnsetCursor();
    m_window->setEnabled(true);
    m_tree->selectItem(m_currentNodeUID);
}

BlocksPage* StandaloneBrowser::internalGetCurrentBlocksPage()
{
    return m_currentTabIndex == 1 ? static_cast<BlocksPage*>(m_resultsPage.get())
                                  : static_cast<BlocksPage*>(m_libraryPage.get());
}

void StandaloneBrowser::internalSetTabLabel(BlocksPage* page, const std::string& label)
{
    const int index = page == m_resultsPage.get() ? 1 : 0;
    m_tabContainer->setTabText(index, QString::fromStdString(label));
}

void StandaloneBrowser::selectTabByIndex(int index) { m_tabContainer->setCurrentIndex(index); }

bool StandaloneBrowser::isProgressShown() const { return m_progressDialog->isVisible(); }

bool StandaloneBrowser::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Close) {
        if (watched == m_window) {
            internalCloseBrowser();
            event->ignore();
            return true;
        }
        if (watched == m_descDock)
            internalDescPanelClosed();
        else if (watched == m_searchDock)
            internalSearchPanelClosed();
    } else if (event->type() == QEvent::Resize && watched == m_descFrame) {
        internalPlaceDescText();
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (m_searching) {
            // The window is disabled during a walk; only Escape means anything.
            if (key == Qt::Key_Escape)
                cancelSearch();
            return true;
        }
    } else if (event->type() == QEvent::StatusTip && watched == m_window) {
        // A menu entry without a tip of its own leaves the window's text as it was.
        const QString tip = static_cast<QStatusTipEvent*>(event)->tip();
        m_window->statusBar()->showMessage(tip.isEmpty() ? QString::fromStdString(m_statusMessage) : tip);
        return true;
    } else if (event->type() == QEvent::MouseButtonRelease && watched == m_window) {
        // The end of a drag of the separator beside the tree: the user's width.
        if (m_treeDock->isVisible())
            m_treeWidth = m_treeDock->width();
    } else if (event->type() == QEvent::Resize && watched == m_window) {
        QTimer::singleShot(0, this, [this] { internalRestoreTreeWidth(); });
    } else if (event->type() == QEvent::Show && watched == m_treeDock && m_treeWidth == 0) {
        QTimer::singleShot(0, this, [this] { m_treeWidth = m_treeDock->width(); });
    }
    // Pointers only: the box may be in the middle of its destruction here.
    if ((watched == m_searchComboBox || watched == m_searchEdit) && internalFilterSearchBoxEvent(event))
        return true;
    return QObject::eventFilter(watched, event);
}

} // namespace LibraryBrowser
