#pragma once

#include <QStyledItemDelegate>

namespace LibraryBrowser {

// Draws a row of the quick insert: the icon, the name as rich text (the
// matched letters in bold) and, right-aligned and elided, where the block
// lives. Painting rows in view only keeps a keystroke within a frame, where
// a widget per row did not.
class QuickInsertRowDelegate : public QStyledItemDelegate {
public:
    enum Role { NameHtml = Qt::UserRole, LibraryPath };

    static constexpr int IconSide = 24;
    static constexpr int RowHeight = IconSide + 6;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace LibraryBrowser
