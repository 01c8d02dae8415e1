// The block description dock: the selected block's icon and text, the text
// beside or below the icon as the panel's shape suits it.

#include "gui/StandaloneBrowser.h"

#include "frame/MessageCatalogue.h"
#include "gui/BlocksPage.h"
#include "gui/BrowserLayoutRules.h"
#include "gui/GuiBlock.h"
#include "gui/IconPixmapCache.h"

#include <QAction>
#include <QDockWidget>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QMainWindow>
#include <QScrollArea>

#include <cmath>

namespace LibraryBrowser {

using namespace BrowserUtils;

namespace {

QString xlated(std::uint32_t id) { return QString::fromStdString(xlatedMessageFromId(id)); }

} // namespace

void StandaloneBrowser::internalCreateDescriptionDock()
{
    m_descDock = new QDockWidget(xlated(MessageId::TDLB_GuiBlockDescriptionWidgetTitle), m_window);
    m_descDock->setObjectName(QStringLiteral("LBDescDockWidget"));
    m_descDock->setFocusPolicy(Qt::NoFocus);
    m_descDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetClosable);
    m_descDock->installEventFilter(this);

    m_descFrame = new QFrame(m_descDock);
    m_descFrame->setFocusPolicy(Qt::NoFocus);
    m_descFrame->setFrameShape(QFrame::StyledPanel);
    m_descFrame->setFrameShadow(QFrame::Sunken);
    auto* frameLayout = new QGridLayout(m_descFrame);
    frameLayout->setSpacing(0);
    const int margin = getBlockPanelMargin(m_layoutType, m_iconSize);
    frameLayout->setContentsMargins(margin, margin, margin, margin);
    m_descScrollView = new QScrollArea(m_descFrame);
    m_descScrollView->setWidgetResizable(true);
    m_descScrollView->setFrameShape(QFrame::NoFrame);
    QPalette palette = m_descScrollView->palette();
    palette.setColor(QPalette::Window, getColorPref(PrefKey::LBColorBlocksDescriptionBackground));
    m_descScrollView->setPalette(palette);
    m_descScrollView->setAutoFillBackground(true);
    frameLayout->addWidget(m_descScrollView, 0, 0);
    m_descFrame->installEventFilter(this);

    m_descPanel = new QWidget;
    m_descPanel->setObjectName(QStringLiteral("LBDescPanel"));
    m_descGridLayout = new QGridLayout(m_descPanel);
    m_descGridLayout->setSpacing(getGridSpacing(m_layoutType, m_iconSize));
    m_descGridLayout->setContentsMargins(margin, margin, margin, margin);
    m_descGridLayout->setRowStretch(0, 0);
    m_descGridLayout->setRowStretch(1, 9);
    m_descGridLayout->setColumnStretch(0, 0);
    m_descGridLayout->setColumnStretch(1, 9);
    m_descCanvas = new QLabel(m_descPanel);
    m_descCanvas->setObjectName(QStringLiteral("LBDescIcon"));
    m_descCanvas->setAlignment(Qt::AlignCenter);
    const LayoutType layout = m_iconSize == IconSize::Compact ? LayoutType::Grid : m_layoutType;
    m_descCanvas->setFixedSize(getIconBoxWidth(layout, m_iconSize, m_guiFont.pointSizeF()),
                               getIconBoxHeight(layout, m_iconSize, m_guiFont.pointSizeF()));
    m_descText = new QLabel(m_descPanel);
    m_descText->setObjectName(QStringLiteral("LBDescText"));
    m_descText->setWordWrap(true);
    m_descText->setTextFormat(Qt::RichText);
    m_descText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_descText->setText("<b>" + xlated(MessageId::TDLB_GuiLibraryBrowserTitle) + "</b>");
    m_descGridLayout->addWidget(m_descCanvas, 0, 0, Qt::AlignTop);
    m_descGridLayout->addWidget(m_descText, 0, 1);
    m_descScrollView->setWidget(m_descPanel);
    m_descDock->setWidget(m_descFrame);
    m_showBlockDesc = m_prefs->getBool(PrefKey::LBShowBlockDesc);
}

void StandaloneBrowser::showBlockDescription(bool show)
{
    action(BrowserAction::ShowDescription)->setChecked(show);
    internalToggleDescVisibility(show);
}

bool StandaloneBrowser::isBlockDescriptionVisible() const { return m_descDock->isVisibleTo(m_window); }

void StandaloneBrowser::internalToggleDescVisibility(bool on)
{
    if (m_descPanelClosing)
        return;
    if (!on) {
        m_showBlockDesc = false;
        m_descDock->hide();
        return;
    }
    if (!m_showBlockDesc) {
        m_showBlockDesc = true;
        // The panel wasn't kept up while it was hidden.
        internalUpdateDescription(internalGetCurrentBlockSelection());
    }
    m_descDock->show();
}

void StandaloneBrowser::internalDescPanelClosed()
{
    m_descPanelClosing = true;
    action(BrowserAction::ShowDescription)->setChecked(false);
    m_descPanelClosing = false;
}

void StandaloneBrowser::internalUpdateDescription(GuiBlock* tile)
{
    if (!m_showBlockDesc)
        return;
    if (!tile) {
        m_descCanvas->clear();
        internalSetDescription("<font color=red>" + xlated(MessageId::TDLB_WarningNoBlockSelected) + "</font>");
        return;
    }
    m_descGridLayout->setSpacing(getGridSpacing(LayoutType::Grid, IconSize::Small));
    const int margin = getBlockPanelMargin(LayoutType::Grid, IconSize::Small);
    m_descGridLayout->setContentsMargins(margin, margin, margin, margin);
    internalPlaceDescText();
    const BlockIconPtr icon = internalGetCurrentBlocksPage()->getIconScene4GuiBlock(tile);
    QPixmap pixmap;
    if (icon) {
        const QSizeF natural = icon->naturalSize();
        const QSize box = m_descCanvas->size() - QSize(4, 4);
        if (!natural.isEmpty())
            pixmap = IconPixmapCache::instance().pixmap(icon, natural.scaled(box, Qt::KeepAspectRatio).toSize(),
                                                        m_descCanvas->devicePixelRatioF());
    }
    m_descCanvas->setPixmap(pixmap);
    QString text = "<b>" + QString::fromStdString(tile->getDisplayPath()).toHtmlEscaped() + "</b>";
    const std::string description = tile->getDescription();
    if (!description.empty())
        text += ": " + QString::fromStdString(description).toHtmlEscaped().replace('\n', "<br>");
    internalSetDescription(text);
}

void StandaloneBrowser::internalPlaceDescText()
{
    const LayoutType layout = m_iconSize == IconSize::Compact ? LayoutType::Grid : m_layoutType;
    const double points = m_guiFont.pointSizeF();
    const int iconWidth = int(std::lround(getIconWidgetWidthSansName(layout, m_iconSize, points)));
    const int iconHeight = getIconWidgetHeightSansName(layout, m_iconSize, points);
    m_descCanvas->setFixedSize(iconWidth + 2 * ICON_NAME_OFFSET_COMPACT, iconHeight);
    const bool below =
        BrowserLayoutRules::isDescriptionTextBelow(m_descPanel->size(), getBlockPanelMargin(layout, m_iconSize),
                                                   getGridSpacing(layout, m_iconSize), iconWidth, iconHeight);
    if (below == m_descTextBelow && m_descGridLayout->indexOf(m_descText) >= 0)
        return;
    m_descTextBelow = below;
    m_descGridLayout->removeWidget(m_descText);
    if (below)
        m_descGridLayout->addWidget(m_descText, 1, 0, 1, 2);
    else
        m_descGridLayout->addWidget(m_descText, 0, 1);
}

void StandaloneBrowser::internalSetDescription(const QString& html)
{
    m_descText->setText(html);
    m_descScrollView->ensureVisible(0, 0);
}

void StandaloneBrowser::internalWarnAboutEmptyLibrary(const std::string& displayName)
{
    internalSetDescription("<font color=red>" +
                           QString::fromStdString(xlatedMessageFromIdAndCharStar(
                                                      MessageId::TDLB_WarningNoBlocksFoundForLibrary, displayName))
                               .toHtmlEscaped() +
                           "</font>");
}

} // namespace LibraryBrowser
