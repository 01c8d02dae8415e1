#include "gui/SectionHeader.h"

#include "frame/MessageCatalogue.h"
#include "gui/BrowserUtils.h"
#include "gui/LBImageLink.h"
#include "gui/SectionTitleLink.h"

#include <QGridLayout>
#include <QLabel>
#include <QLinearGradient>

namespace LibraryBrowser {

using namespace BrowserUtils;

namespace {

int titleWidth(int width, int countWidth)
{
    return width - countWidth - getHeaderIconSize() - 2 * (getHeaderPanelMargin() + getHeaderPanelSpacing());
}

} // namespace

SectionHeader::SectionHeader(const std::string& name, int hits, const Look& look, int width, int height,
                             QWidget* parent)
    : QFrame(parent), m_look(look)
{
    setObjectName("sectionHeader");
    setFocusPolicy(Qt::NoFocus);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setLineWidth(1);
    QPalette palette = this->palette();
    QLinearGradient gradient(0, 0, 0, 1);
    gradient.setCoordinateMode(QGradient::ObjectMode);
    gradient.setColorAt(0, look.background);
    gradient.setColorAt(1, look.backgroundBottom);
    palette.setBrush(QPalette::Window, gradient);
    palette.setColor(QPalette::WindowText, look.frame);
    setPalette(palette);
    // Widgets in the scroll view take its role otherwise, the page's colour.
    setBackgroundRole(QPalette::Window);
    setAutoFillBackground(true);
    setMinimumSize(std::max(0, width), height);
    setMaximumSize(std::max(0, width), height);

    const QString countText = QString::number(hits);
    m_count = new QLabel(countText, this);
    m_count->setObjectName("sectionCount");
    m_count->setFont(look.font);
    m_count->setToolTip(
        QString::fromStdString(xlatedMessageFromId(MessageId::TDLB_GuiBlocksPageHeaderNumFoundToolTip)));
    m_countWidth = getFontInfoStringWidth(look.font, countText.toStdString());

    m_titleLink = new SectionTitleLink(name, look.font, titleWidth(width, m_countWidth), this);
    m_titleLink->setObjectName("sectionTitle");
    m_titleLink->setToolTip(
        QString::fromStdString(xlatedMessageFromIdAndCharStar(MessageId::TDLB_GuiLibraryLinkToolTip, name)));
    connect(m_titleLink, &SectionTitleLink::activated, this, &SectionHeader::titleActivated);

    m_imageLink = new LBImageLink(getHeaderIconSize(), this);
    m_imageLink->setObjectName("sectionToggle");
    connect(m_imageLink, &LBImageLink::clicked, this, &SectionHeader::toggleClicked);

    auto* grid = new QGridLayout(this);
    const int margin = getHeaderPanelMargin();
    grid->setContentsMargins(margin, margin, margin, margin);
    grid->setSpacing(getHeaderPanelSpacing());
    grid->setColumnStretch(1, 1);
    grid->addItem(new QSpacerItem(std::max(0, look.indent - margin), 0), 0, 0);
    grid->addWidget(m_titleLink, 0, 1);
    grid->addWidget(m_count, 0, 2);
    grid->addWidget(m_imageLink, 0, 3);
}

void SectionHeader::setExpanded(bool expanded)
{
    m_imageLink->setImage(expanded ? m_look.collapseImage : m_look.expandImage, !expanded);
    m_imageLink->setToolTip(QString::fromStdString(
        xlatedMessageFromId(expanded ? MessageId::TDLB_GuiBlocksPageHeaderHideBlocksToolTip
                                     : MessageId::TDLB_GuiBlocksPageHeaderShowBlocksToolTip)));
}

} // namespace LibraryBrowser
