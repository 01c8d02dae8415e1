#include "PageViewer.h"

#include "frame/MessageCatalogue.h"
#include "gui/BlockContextMenu.h"
#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"

#include <QMenu>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabWidget>

namespace LibraryBrowser::Tdlb {

PageViewer::PageViewer(Repository& repository, const TandrilObject& object, LayoutType layout, IconSize size,
                       double fontPoints)
    : m_repository(repository), m_object(object.toBlock()), m_layout(layout), m_iconSize(size),
      m_tabs(new QTabWidget(this))
{
    m_font = QFont(QString("Arial"));
    m_font.setPointSizeF(fontPoints);
    setWindowTitle(QString::fromStdString(object.getDisplayName()));
    m_page = std::make_unique<LibraryBlocksPage>(*this, layout, size, m_font,
                                                 getColorPref(PrefKey::LBColorLibraryBlocksBackgroundTop), m_tabs);
    m_page->setBackgroundColors(getColorPref(PrefKey::LBColorLibraryBlocksBackgroundTop),
                                getColorPref(PrefKey::LBColorLibraryBlocksBackgroundBot));
    m_tabs->addTab(m_page->getScrollView(), QString());
    setCentralWidget(m_tabs);
    statusBar()->setSizeGripEnabled(false);
}

PageViewer::~PageViewer() = default;

void PageViewer::showObject()
{
    m_shown = true;
    m_page->updateBlocks(NodeUID);
    m_page->adjustPageSizes();
}

QColor PageViewer::getColorPref(const char* key) const
{
    return BrowserPreferences::defaultOf(key).value<QColor>();
}

Block PageViewer::getTreeNodeBlock(int uid) const { return uid == NodeUID ? m_object : Block(); }

QRect PageViewer::getBlocksGeometry() const
{
    return BrowserPreferences::defaultOf(PrefKey::LBGeometry4Blocks).toRect();
}

void PageViewer::internalShowBlockContextMenu(GuiBlock* tile, const QPoint& globalPosition)
{
    QMenu menu(this);
    BlockContextMenu::exec(menu, *tile, *this, globalPosition);
}

BlocksPage* PageViewer::internalGetCurrentBlocksPage() { return m_page.get(); }

void PageViewer::internalSetTabLabel(BlocksPage*, const std::string& label)
{
    m_tabs->setTabText(0, QString::fromStdString(label));
}

void PageViewer::internalUpdateDescription(GuiBlock* tile)
{
    if (tile)
        setWindowTitle(QString::fromStdString(tile->getDisplayPath()));
}

void PageViewer::internalWarnAboutEmptyLibrary(const std::string& displayName)
{
    statusBar()->showMessage(QString::fromStdString(
        BrowserUtils::xlatedMessageFromIdAndCharStar(MessageId::TDLB_WarningNoBlocksFoundForLibrary, displayName)));
}

std::string PageViewer::getCurrentStatusBarMessage() const { return statusBar()->currentMessage().toStdString(); }

void PageViewer::internalSetStatusBarMessage(const std::string& text)
{
    statusBar()->showMessage(QString::fromStdString(text));
}

} // namespace LibraryBrowser::Tdlb
