// The window's menus, tool bars and the handlers they dispatch to.

#include "gui/StandaloneBrowser.h"

#include "frame/MessageCatalogue.h"
#include "gui/BlockContextMenu.h"
#include "gui/BrowserHostCommands.h"
#include "gui/BrowserToolBarIcons.h"
#include "gui/GuiSubsystem.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/SearchHistory.h"

#include <QAction>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

#include <functional>

namespace LibraryBrowser {

using namespace BrowserUtils;

namespace {

QString xlated(std::uint32_t id) { return QString::fromStdString(xlatedMessageFromId(id)); }

QList<QKeySequence> shortcutsOf(const char* text)
{
    QList<QKeySequence> keys;
    for (const QString& key : QString::fromLatin1(text).split('|', Qt::SkipEmptyParts))
        keys.append(QKeySequence(key));
    return keys;
}

} // namespace

QAction* StandaloneBrowser::action(BrowserAction id) const
{
    const auto found = m_actions.find(id);
    return found != m_actions.end() ? found->second : nullptr;
}

void StandaloneBrowser::internalCreateMenus()
{
    BrowserPreferences& prefs = *m_prefs;
    m_showBlockDesc = prefs.getBool(PrefKey::LBShowBlockDesc);
    m_rememberUserHiddenSections = prefs.getBool(PrefKey::LBSearchResults_rememberUserHiddenSections);
    m_titleElidedMiddle = prefs.getBool(PrefKey::LBSearchResults_isTitleElidedMiddle);
    m_listBoxShowable = prefs.getBool(PrefKey::LBSearchResultsListBox_isShowable);
    m_listBoxSelectsInLibraryPanel = prefs.getBool(PrefKey::LBSearchResultsListBox_isUsedToSelectBlockInLibraryPanel);
    m_listBoxSelectsInResultsPanel = prefs.getBool(PrefKey::LBSearchResultsListBox_isUsedToSelectBlockInResultsPanel);
    m_listBoxPrimary = prefs.getBool(PrefKey::LBSearchResultsListBox_isPrimary);

    m_pinOffIcon = BrowserToolBarIcons::icon("ToolboxPinBtnLB.PNG");
    m_pinOnIcon = BrowserToolBarIcons::icon("ToolboxPinBtnOnLB.PNG");

    auto* menuBar = new QMenuBar(m_window);
    menuBar->setFocusPolicy(Qt::NoFocus);
    m_window->setMenuBar(menuBar);
    m_window->setFont(m_guiFont);

    std::map<BrowserMenu, QMenu*> menus;
    std::function<QMenu*(BrowserMenu)> menuOf = [&](BrowserMenu which) {
        QMenu* menu = menus[which];
        if (!menu) {
            const BrowserMenu parent = browserMenuParent(which);
            if (which == BrowserMenu::SearchOptions)
                menu = new QMenu(m_window);
            else if (parent == which)
                menu = menuBar->addMenu(xlated(browserMenuTitle(which)));
            else
                menu = menuOf(parent)->addMenu(xlated(browserMenuTitle(which)));
            menus[which] = menu;
        }
        return menu;
    };

    for (const BrowserActionSpec& spec : browserActionTable()) {
        auto* action = new QAction(xlated(spec.text), m_window);
        action->setShortcuts(shortcutsOf(spec.shortcuts));
        if (*spec.icon)
            action->setIcon(BrowserToolBarIcons::icon(spec.icon + 1));
        if (spec.toolTip)
            action->setToolTip(xlated(spec.toolTip));
        action->setCheckable(spec.checkable);
        m_actions[spec.id] = action;
        const BrowserAction id = spec.id;
        connect(action, &QAction::triggered, this, [this, id](bool checked) { onAction(id, checked); });

        QMenu* menu = menuOf(spec.menu);
        if (spec.separatorBefore)
            menu->addSeparator();
        // The list of results has an entry only where the list can be shown;
        // the action exists all the same.
        if (id != BrowserAction::SearchList || m_listBoxShowable)
            menu->addAction(action);
        if (spec.separatorAfter)
            menu->addSeparator();
    }

    action(BrowserAction::ShowDescription)->setChecked(m_showBlockDesc);
    action(BrowserAction::StayOnTop)->setIcon(m_pinOffIcon);
    action(BrowserAction::ListLayout)->setChecked(m_layoutType == LayoutType::List);
    action(BrowserAction::GridLayout)->setChecked(m_layoutType == LayoutType::Grid);
    action(BrowserAction::CompactIcons)->setChecked(m_iconSize == IconSize::Compact);
    action(BrowserAction::SmallIcons)->setChecked(m_iconSize == IconSize::Small);
    action(BrowserAction::MediumIcons)->setChecked(m_iconSize == IconSize::Medium);
    action(BrowserAction::LargeIcons)->setChecked(m_iconSize == IconSize::Large);
    action(BrowserAction::BlockParameters)->setEnabled(false);
    action(BrowserAction::RegularExpression)->setChecked(m_useRegExp);
    action(BrowserAction::MatchCase)->setChecked(m_matchCase);
    action(BrowserAction::WholeWord)->setChecked(m_matchWholeWord);

    m_editMenu = menus[BrowserMenu::Edit];
    connect(m_editMenu, &QMenu::aboutToShow, this, [this] { handleAboutToShowEditMenu(); });
    connect(m_editMenu, &QMenu::aboutToHide, this, [this] { handleOnHideEditMenu(); });
    connect(menus[BrowserMenu::View], &QMenu::aboutToShow, this, [this] { handleAboutToShowViewMenu(); });
    connect(menus[BrowserMenu::Help], &QMenu::aboutToShow, this, [this] { handleAboutToShowHelpMenu(); });

    m_searchOptionsButton = new QToolButton(m_window);
    m_searchOptionsButton->setMenu(menus[BrowserMenu::SearchOptions]);
}

void StandaloneBrowser::internalCreateToolBar()
{
    auto* fileBar = m_window->addToolBar(QStringLiteral("LBFileToolBar"));
    fileBar->setObjectName(QStringLiteral("LBFileToolBar"));
    fileBar->addAction(action(BrowserAction::NewModel));
    fileBar->addAction(action(BrowserAction::Open));
    if (isStayOnTopActionEnabled())
        fileBar->addAction(action(BrowserAction::StayOnTop));

    auto* searchBar = m_window->addToolBar(QStringLiteral("LBSearchToolBar"));
    searchBar->setObjectName(QStringLiteral("LBSearchToolBar"));

    m_searchOptionsButton->setObjectName(QStringLiteral("LBSearchOptionsButton"));
    m_searchOptionsButton->setFocusPolicy(Qt::StrongFocus);
    m_searchOptionsButton->setIcon(BrowserToolBarIcons::icon("SearchOptions.png"));
    m_searchOptionsButton->setToolTip(xlated(MessageId::TDLB_GuiSearchOptionsToolTip));
    m_searchOptionsButton->setPopupMode(QToolButton::InstantPopup);

    m_searchPrompt = xlatedMessageFromId(MessageId::TDLB_GuiSearchBoxPrompt);
    m_lastFailedSearch = m_searchPrompt;

    m_searchComboBox = new QComboBox(m_window);
    m_searchComboBox->setObjectName(QStringLiteral("LBSearchComboBox"));
    m_searchComboBox->setToolTip(xlated(MessageId::TDLB_GuiSearchEditAreaToolTip));
    m_searchComboBox->setFocusPolicy(Qt::StrongFocus);
    m_searchComboBox->setEditable(true);
    m_searchComboBox->setMaxCount(SEARCH_HISTORY_LIMIT);
    // The window keeps the history itself (top, limit, failed texts).
    m_searchComboBox->setInsertPolicy(QComboBox::NoInsert);
    m_searchComboBox->setMinimumWidth(150);
    m_searchComboBox->addItems(m_prefs->getStringList(PrefKey::LBSearchHistory).mid(0, SEARCH_HISTORY_LIMIT));
    m_searchComboBox->setCurrentIndex(-1);
    m_searchComboBox->setEditText(QString::fromStdString(m_searchPrompt));
    // The history is offered in the drop-down only: completing what is
    // typed would search another text than the user's ("del" for "delay").
    m_searchComboBox->setCompleter(nullptr);
    m_searchEdit = m_searchComboBox->lineEdit();
    m_searchComboBox->installEventFilter(this);
    m_searchEdit->installEventFilter(this);

    auto* searchButton = new QToolButton(m_window);
    searchButton->setObjectName(QStringLiteral("LBSearchButton"));
    auto* searchAction = new QAction(BrowserToolBarIcons::icon("binocularsBlack.png"), QString(), searchButton);
    searchAction->setToolTip(xlated(MessageId::TDLB_GuiSearchButtonToolTip));
    connect(searchAction, &QAction::triggered, this,
            [this] { internalSearchForString(m_searchComboBox->currentText().toStdString()); });
    searchButton->setDefaultAction(searchAction);
    searchButton->setFocusPolicy(Qt::StrongFocus);

    searchBar->addWidget(m_searchComboBox);
    searchBar->addWidget(searchButton);
    searchBar->addWidget(m_searchOptionsButton);

    m_window->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_window->addAction(action(BrowserAction::ShowDescription));
    if (m_listBoxShowable)
        m_window->addAction(action(BrowserAction::SearchList));
}

void StandaloneBrowser::onAction(BrowserAction id, bool checked)
{
    switch (id) {
    case BrowserAction::NewModel: openNewModel(); break;
    case BrowserAction::NewLibrary: openNewLibrary(); break;
    case BrowserAction::Open: mdlFileOpenDialog(); break;
    case BrowserAction::Close: internalCloseBrowser(); break;
    case BrowserAction::Preferences: showTandrilPrefs(); break;
    case BrowserAction::Find: internalSearchForString(m_searchComboBox->currentText().toStdString()); break;
    case BrowserAction::AddBlock: addSelectedBlockToCurrentOpenSystem(); break;
    case BrowserAction::SelectInLibrary: internalSelectSelectedResultsBlockInLibraryView(); break;
    case BrowserAction::ShowDescription: internalToggleDescVisibility(checked); break;
    case BrowserAction::SearchList: internalToggleSearchResultsListBoxDisplay(checked); break;
    case BrowserAction::StayOnTop: internalToggleStayOnTop(checked); break;
    case BrowserAction::ListLayout: internalSetLayout(LayoutType::List); break;
    case BrowserAction::GridLayout: internalSetLayout(LayoutType::Grid); break;
    case BrowserAction::CompactIcons: internalSetIconSize(IconSize::Compact); break;
    case BrowserAction::SmallIcons: internalSetIconSize(IconSize::Small); break;
    case BrowserAction::MediumIcons: internalSetIconSize(IconSize::Medium); break;
    case BrowserAction::LargeIcons: internalSetIconSize(IconSize::Large); break;
    case BrowserAction::IncreaseFont: internalIncFontSize(); break;
    case BrowserAction::DecreaseFont: internalDecFontSize(); break;
    case BrowserAction::BlockParameters: showSelectedBlockParams(); break;
    case BrowserAction::Refresh: internalRefreshRepository(true); break;
    case BrowserAction::BlockHelp: showSelectedBlockHelp(); break;
    case BrowserAction::LibraryBrowserHelp: showLibBrowseHelp(); break;
    case BrowserAction::TandrilHelp: showTandrilHelp(); break;
    case BrowserAction::RegularExpression:
    case BrowserAction::MatchCase:
    case BrowserAction::WholeWord: internalSetSearchOption(id, checked); break;
    }
}

void StandaloneBrowser::handleAboutToShowEditMenu()
{
    QAction* find = action(BrowserAction::Find);
    std::string text = m_searchComboBox->currentText().toStdString();
    if (validateSearchString(text) && text != m_searchPrompt) {
        find->setText(QString::fromStdString(
            xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiEditMenuFindString, "'" + escapeAmpersands(text) + "'")));
    } else {
        find->setText(xlated(MessageId::TDLB_GuiEditMenuFindNoString));
        find->setEnabled(false);
    }

    const OpenSystemState system = OpenSystemState::current();
    action(BrowserAction::AddBlock)->setText(QString::fromStdString(BlockContextMenu::addEntryLabel(system)));
    GuiBlock* selection = internalGetCurrentBlockSelection();
    action(BrowserAction::AddBlock)->setEnabled(BlockContextMenu::canAddToCurrentOpenSystem(selection, system.type));
    action(BrowserAction::SelectInLibrary)
        ->setEnabled(selection && m_currentTabIndex == 1 && m_resultsPage->getSelectedBlock());
    m_editMenu->adjustSize();
}

void StandaloneBrowser::handleOnHideEditMenu()
{
    // The accelerators work while the menu is closed, whatever it last showed.
    action(BrowserAction::Find)->setEnabled(true);
    action(BrowserAction::AddBlock)->setEnabled(true);
    action(BrowserAction::SelectInLibrary)->setEnabled(true);
}

void StandaloneBrowser::handleAboutToShowViewMenu()
{
    const GuiBlock* selection = internalGetCurrentBlockSelection();
    action(BrowserAction::BlockParameters)->setEnabled(selection && !selection->isSubsystem());
}

void StandaloneBrowser::handleAboutToShowHelpMenu()
{
    const GuiBlock* selection = internalGetCurrentBlockSelection();
    action(BrowserAction::BlockHelp)->setEnabled(selection && !selection->isSubsystem());
}

void StandaloneBrowser::internalClearContextMenu() { m_contextMenu->clear(); }

void StandaloneBrowser::internalShowBlockContextMenu(GuiBlock* tile, const QPoint& globalPosition)
{
    internalClearContextMenu();
    BlockContextMenu::exec(*m_contextMenu, *tile, *this, globalPosition);
}

} // namespace LibraryBrowser
