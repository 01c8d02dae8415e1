#include "gui/QuickInsertRowDelegate.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QPainter>
#include <QTextDocument>

namespace LibraryBrowser {

void QuickInsertRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const
{
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    background.icon = QIcon();
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &background, painter, widget);

    const bool selected = option.state & QStyle::State_Selected;
    const QRect row = option.rect.adjusted(4, 0, -6, 0);
    const QPixmap icon = index.data(Qt::DecorationRole).value<QPixmap>();
    const QRect iconRect(row.left(), row.top() + (row.height() - IconSide) / 2, IconSide, IconSide);
    if (!icon.isNull())
        painter->drawPixmap(iconRect, icon);

    QTextDocument name;
    name.setDefaultFont(option.font);
    name.setDocumentMargin(0);
    name.setHtml(index.data(NameHtml).toString());
    const int nameLeft = iconRect.right() + 9;
    const int nameWidth = int(name.idealWidth()) + 1;

    const QString path = index.data(LibraryPath).toString();
    const int pathLeft = nameLeft + nameWidth + 16;
    const QString shownPath = option.fontMetrics.elidedText(path, Qt::ElideLeft, std::max(0, row.right() - pathLeft));

    painter->save();
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = option.palette;
    context.palette.setColor(QPalette::Text, option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->translate(nameLeft, row.top() + (row.height() - name.size().height()) / 2);
    painter->setClipRect(QRectF(0, 0, row.right() - nameLeft, row.height()));
    name.documentLayout()->draw(painter, context);
    painter->restore();

    painter->save();
    QColor pathColour = option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    pathColour.setAlphaF(0.6f);
    painter->setPen(pathColour);
    painter->drawText(QRect(pathLeft, row.top(), std::max(0, row.right() - pathLeft), row.height()),
                      Qt::AlignRight | Qt::AlignVCenter, shownPath);
    painter->restore();
}

QSize QuickInsertRowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const
{
    return QSize(0, RowHeight);
}

} // namespace LibraryBrowser
