#include "gui/LibraryTreeView.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace LibraryBrowser {

namespace {

constexpr int UIDRole = Qt::UserRole + 1;

// Runs a change of the view without telling the window about it.
class QuietScope {
public:
    explicit QuietScope(bool& flag) : m_flag(flag), m_old(flag) { m_flag = true; }
    ~QuietScope() { m_flag = m_old; }

private:
    bool& m_flag;
    bool m_old;
};

} // namespace

LibraryTreeView::LibraryTreeView(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(1);
    setHeaderHidden(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformRowHeights(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setObjectName(QStringLiteral("LBTreeView"));

    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* current, QTreeWidgetItem*) {
        if (!m_quiet && current)
            emit selectionMoved(uidOf(current));
    });
    connect(this, &QTreeWidget::itemPressed, this, [this](QTreeWidgetItem* item, int) {
        if (!m_quiet && item)
            emit itemPressedWithMouse(uidOf(item));
    });
    connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        if (!m_quiet)
            emit expandRequested(uidOf(item));
    });
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) {
        if (QTreeWidgetItem* item = itemAt(position))
            emit contextMenuRequested(viewport()->mapToGlobal(position), uidOf(item));
    });
}

int LibraryTreeView::uidOf(const QTreeWidgetItem* item) { return item ? item->data(0, UIDRole).toInt() : 0; }

QTreeWidgetItem* LibraryTreeView::makeItem(const std::string& label, int uid, bool expandable)
{
    auto* item = new QTreeWidgetItem(QStringList(QString::fromStdString(label)));
    item->setData(0, UIDRole, uid);
    item->setChildIndicatorPolicy(expandable ? QTreeWidgetItem::ShowIndicator
                                             : QTreeWidgetItem::DontShowIndicator);
    m_items.insert(uid, item);
    return item;
}

QIcon LibraryTreeView::iconFor(const std::string& file)
{
    const QString name = QString::fromStdString(file);
    auto found = m_icons.find(name);
    if (found == m_icons.end())
        found = m_icons.insert(name, QIcon(name));
    return *found;
}

void LibraryTreeView::addItem(const std::string& label, int parentUID, int uid)
{
    QuietScope quiet(m_quiet);
    QTreeWidgetItem* item = makeItem(label, uid, false);
    if (QTreeWidgetItem* parent = m_items.value(parentUID))
        parent->addChild(item);
    else
        addTopLevelItem(item);
}

void LibraryTreeView::addChildren(int parentUID, const std::vector<std::string>& labels,
                                  const std::vector<int>& uids, const std::vector<bool>& expandable,
                                  const std::vector<std::string>& iconFiles)
{
    QTreeWidgetItem* parent = m_items.value(parentUID);
    if (!parent)
        return;
    QuietScope quiet(m_quiet);
    QList<QTreeWidgetItem*> items;
    items.reserve(int(uids.size()));
    for (std::size_t i = 0; i < uids.size(); ++i) {
        QTreeWidgetItem* item = makeItem(labels[i], uids[i], expandable[i]);
        if (!iconFiles[i].empty())
            item->setIcon(0, iconFor(iconFiles[i]));
        items.append(item);
    }
    parent->addChildren(items);
}

void LibraryTreeView::forget(QTreeWidgetItem* item)
{
    for (int i = 0; i < item->childCount(); ++i)
        forget(item->child(i));
    m_items.remove(uidOf(item));
}

void LibraryTreeView::removeChildren(int uid)
{
    QTreeWidgetItem* parent = m_items.value(uid);
    if (!parent)
        return;
    QuietScope quiet(m_quiet);
    const QList<QTreeWidgetItem*> children = parent->takeChildren();
    for (QTreeWidgetItem* child : children) {
        forget(child);
        delete child;
    }
}

void LibraryTreeView::clearItems()
{
    QuietScope quiet(m_quiet);
    clear();
    m_items.clear();
}

void LibraryTreeView::selectItem(int uid)
{
    QuietScope quiet(m_quiet);
    if (QTreeWidgetItem* item = m_items.value(uid))
        setCurrentItem(item);
}

void LibraryTreeView::selectItemAsUser(int uid)
{
    if (QTreeWidgetItem* item = m_items.value(uid))
        setCurrentItem(item);
}

void LibraryTreeView::setItemExpanded(int uid, bool expanded)
{
    QuietScope quiet(m_quiet);
    if (QTreeWidgetItem* item = m_items.value(uid))
        item->setExpanded(expanded);
}

void LibraryTreeView::setItemExpandable(int uid, bool expandable)
{
    if (QTreeWidgetItem* item = m_items.value(uid))
        item->setChildIndicatorPolicy(expandable ? QTreeWidgetItem::ShowIndicator
                                                 : QTreeWidgetItem::DontShowIndicator);
}

void LibraryTreeView::setItemIcon(int uid, const std::string& iconFile)
{
    if (QTreeWidgetItem* item = m_items.value(uid))
        item->setIcon(0, iconFor(iconFile));
}

void LibraryTreeView::ensureItemVisible(int uid)
{
    // Not scrollToItem: it passes by the quiet scrollTo below.
    if (QTreeWidgetItem* item = m_items.value(uid))
        scrollTo(indexFromItem(item));
}

void LibraryTreeView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    // Scrolling opens the closed parents of the index; their children are there.
    QuietScope quiet(m_quiet);
    QTreeWidget::scrollTo(index, hint);
}

void LibraryTreeView::setItemIcon(int uid, const QIcon& icon)
{
    if (QTreeWidgetItem* item = m_items.value(uid))
        item->setIcon(0, icon);
}

bool LibraryTreeView::isItemExpanded(int uid) const
{
    const QTreeWidgetItem* item = m_items.value(uid);
    return item && item->isExpanded();
}

bool LibraryTreeView::isItemExpandable(int uid) const
{
    const QTreeWidgetItem* item = m_items.value(uid);
    return item && (item->childIndicatorPolicy() == QTreeWidgetItem::ShowIndicator || item->childCount() > 0);
}

int LibraryTreeView::getItemParent(int uid) const
{
    const QTreeWidgetItem* item = m_items.value(uid);
    return item ? uidOf(item->parent()) : 0;
}

std::vector<int> LibraryTreeView::getItemChildren(int uid) const
{
    std::vector<int> children;
    if (const QTreeWidgetItem* item = m_items.value(uid))
        for (int i = 0; i < item->childCount(); ++i)
            children.push_back(uidOf(item->child(i)));
    return children;
}

void LibraryTreeView::keyPressEvent(QKeyEvent* event)
{
    // The view's own * walks only the children already made; ours are made
    // as a branch opens, so the window opens the branches one by one.
    if (event->key() == Qt::Key_Asterisk && currentItem()) {
        emit expandAllRequested(uidOf(currentItem()));
        event->accept();
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

int LibraryTreeView::currentUID() const { return uidOf(currentItem()); }

} // namespace LibraryBrowser
