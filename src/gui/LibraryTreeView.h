#pragma once

#include <QHash>
#include <QIcon>
#include <QTreeWidget>

#include <string>
#include <vector>

namespace LibraryBrowser {

// The library tree as the window drives it: every node is known by a UID
// that the window hands out, one column, no header, single selection. The
// window sends operations by UID and hears four things back: a selection
// moved (keyboard or mouse), a node was pressed with the mouse, a node's
// expander was opened, and a menu was asked for over a node. Moves made by
// the window itself through selectItem stay quiet, so that only the user's
// moves go the timed route.
class LibraryTreeView : public QTreeWidget {
    Q_OBJECT

public:
    explicit LibraryTreeView(QWidget* parent = nullptr);

    void addItem(const std::string& label, int parentUID, int uid);
    // One level at once: the view sees a single change.
    void addChildren(int parentUID, const std::vector<std::string>& labels, const std::vector<int>& uids,
                     const std::vector<bool>& expandable, const std::vector<std::string>& iconFiles);
    void removeChildren(int uid);
    void clearItems();
    void selectItem(int uid);
    void selectItemAsUser(int uid);
    void setItemExpanded(int uid, bool expanded);
    void setItemExpandable(int uid, bool expandable);
    void setItemIcon(int uid, const std::string& iconFile);
    void setItemIcon(int uid, const QIcon& icon);
    void ensureItemVisible(int uid);

    bool isItemExpanded(int uid) const;
    bool isItemExpandable(int uid) const;
    // 0 for a top-level node or an unknown UID.
    int getItemParent(int uid) const;
    std::vector<int> getItemChildren(int uid) const;
    int currentUID() const;
    QTreeWidgetItem* itemOf(int uid) const { return m_items.value(uid); }
    static int uidOf(const QTreeWidgetItem* item);

    // Branches a scroll opens keep their items: the view still holds the
    // index it scrolls to, and rebuilding that branch would free it.
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

signals:
    void selectionMoved(int uid);
    void itemPressedWithMouse(int uid);
    void expandRequested(int uid);
    // The * key over a node: open it and every branch below it.
    void expandAllRequested(int uid);
    void contextMenuRequested(const QPoint& globalPosition, int uid);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QTreeWidgetItem* makeItem(const std::string& label, int uid, bool expandable);
    void forget(QTreeWidgetItem* item);
    QIcon iconFor(const std::string& file);

    QHash<int, QTreeWidgetItem*> m_items;
    QHash<QString, QIcon> m_icons;
    bool m_quiet = false;
};

} // namespace LibraryBrowser
