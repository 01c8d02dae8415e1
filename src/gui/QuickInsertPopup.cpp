#include "gui/QuickInsertPopup.h"

#include "gui/BlockHistory.h"
#include "gui/IconPixmapCache.h"
#include "gui/QuickInsertRowDelegate.h"
#include "repository/RepositoryReader.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace LibraryBrowser {

namespace {

constexpr int IconSide = QuickInsertRowDelegate::IconSide;
constexpr int VisibleRows = 10;

} // namespace

QuickInsertPopup::QuickInsertPopup(RankingIndexPtr index, RepositoryReader& reader, BlockHistory& history,
                                   Insert insert, bool offerSubsystems, QWidget* parent)
    : QFrame(parent, Qt::Popup | Qt::FramelessWindowHint), m_ranker(std::move(index)), m_reader(reader), m_history(history),
      m_insert(std::move(insert)), m_offerSubsystems(offerSubsystems)
{
    setObjectName(QStringLiteral("LBQuickInsertPopup"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    m_query = new QLineEdit(this);
    m_query->setObjectName(QStringLiteral("LBQuickInsertQuery"));
    m_query->setPlaceholderText(QStringLiteral("Find a block to insert"));
    m_query->installEventFilter(this);
    layout->addWidget(m_query);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("LBQuickInsertList"));
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setUniformItemSizes(true);
    m_list->setItemDelegate(new QuickInsertRowDelegate(m_list));
    layout->addWidget(m_list);
    m_footer = new QLabel(this);
    m_footer->setObjectName(QStringLiteral("LBQuickInsertFooter"));
    layout->addWidget(m_footer);
    connect(m_query, &QLineEdit::textChanged, this, [this] { update(); });
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            m_rows.setCurrent(row);
    });
    connect(m_list, &QListWidget::itemDoubleClicked, this, [this] { insertCurrent(false); });
    setMinimumWidth(480);
}

void QuickInsertPopup::popUp(const QPoint& global, const QString& typed)
{
    m_query->setText(typed);
    if (typed.isEmpty())
        update();
    QRect placed(global, size());
    if (const QScreen* screen = QGuiApplication::screenAt(global)) {
        const QRect area = screen->availableGeometry();
        placed.moveRight(std::min(placed.right(), area.right()));
        placed.moveBottom(std::min(placed.bottom(), area.bottom()));
        placed.moveTopLeft(QPoint(std::max(placed.left(), area.left()), std::max(placed.top(), area.top())));
    }
    move(placed.topLeft());
    show();
    activateWindow();
    m_query->setFocus();
    m_query->end(false);
}

QString QuickInsertPopup::query() const { return m_query->text(); }

QString QuickInsertPopup::footerText() const { return m_footer->text(); }

void QuickInsertPopup::update()
{
    RankingQuery query;
    query.text = m_query->text().toStdString();
    query.favourites = m_history.favouriteSet();
    query.recents = m_history.recentSet();
    // Room for the subsystems that are left out; the count of blocks is
    // exact only when the answer was whole.
    query.limit = m_offerSubsystems ? RowLimit : 4 * RowLimit;
    RankingResult result = m_ranker.rank(query);
    m_truncated = result.total > result.blocks.size();
    m_total = result.total;
    if (!m_offerSubsystems) {
        const auto gone = std::remove_if(result.blocks.begin(), result.blocks.end(),
                                         [](const RankedBlock& row) { return row.block.isSubSystem(); });
        m_total -= std::size_t(result.blocks.end() - gone);
        result.blocks.erase(gone, result.blocks.end());
    }
    if (result.blocks.size() > std::size_t(RowLimit)) {
        result.blocks.resize(RowLimit);
        m_truncated = true;
    }
    const bool empty = BlockRanker::queryWords(query.text).empty();
    if (empty)
        QuickInsertRows::orderAsHistory(result.blocks, m_history.favourites(), m_history.recents());
    m_rows.setRows(std::move(result.blocks));
    fillList();
    if (empty && m_rows.rows().empty())
        m_footer->setText(QStringLiteral("Type a name. Ctrl+D marks a favourite."));
    else if (empty)
        m_footer->setText(QStringLiteral("Favorites, then recently used blocks"));
    else if (m_total == 0)
        m_footer->setText(QStringLiteral("No block matches \u201c%1\u201d").arg(m_query->text().trimmed()));
    else if (m_truncated && m_offerSubsystems)
        m_footer->setText(QStringLiteral("%1 of %2 matching blocks").arg(m_rows.rows().size()).arg(m_total));
    else if (m_truncated)
        m_footer->setText(QStringLiteral("The first %1 matching blocks").arg(m_rows.rows().size()));
    else
        m_footer->setText(QStringLiteral("%1 matching block%2").arg(m_total).arg(m_total == 1 ? "" : "s"));
}

void QuickInsertPopup::fillList()
{
    m_list->clear();
    const qreal ratio = devicePixelRatioF();
    for (const RankedBlock& row : m_rows.rows()) {
        auto* item = new QListWidgetItem(m_list);
        const std::string name = row.block.getDisplayName();
        item->setData(Qt::DecorationRole, IconPixmapCache::instance().pixmap(m_reader.getIcon(row.block),
                                                                             QSize(IconSide, IconSide), ratio));
        item->setData(QuickInsertRowDelegate::NameHtml,
                      QuickInsertRows::highlighted(QString::fromStdString(name), row.spans));
        QString where = QuickInsertRows::libraryPath(row.block.getDisplayPath(), name);
        if (row.favourite)
            where = QStringLiteral("\u2605 ") + where;
        item->setData(QuickInsertRowDelegate::LibraryPath, where);
    }
    // As tall as its rows, up to ten; one row's room when there are none.
    const int shown = std::clamp(int(m_rows.rows().size()), 1, VisibleRows);
    m_list->setFixedHeight(QuickInsertRowDelegate::RowHeight * shown + 2 * m_list->frameWidth());
    adjustSize();
    showCurrent();
}

void QuickInsertPopup::showCurrent()
{
    m_list->setCurrentRow(m_rows.current());
    if (QListWidgetItem* item = m_list->currentItem())
        m_list->scrollToItem(item);
}

void QuickInsertPopup::insertCurrent(bool keepOpen)
{
    const RankedBlock* row = m_rows.currentBlock();
    if (!row)
        return;
    const TandrilObject block = row->block;
    // The insert may show the host's windows and dialogs, which would close
    // a popup shown meanwhile: hidden, it waits, and comes back if it stays.
    // The function is a copy, as whatever the host shows may end the popup.
    hide();
    const Insert insert = m_insert;
    const QPointer<QuickInsertPopup> self(this);
    insert(block, m_inserted++);
    if (!self)
        return;
    if (!keepOpen) {
        close();
        return;
    }
    // The rows stay as they were, so that the next Ctrl+Enter takes the same.
    show();
    activateWindow();
    m_query->setFocus();
}

void QuickInsertPopup::toggleFavourite()
{
    const RankedBlock* row = m_rows.currentBlock();
    if (!row)
        return;
    const std::string path = row->block.getPath();
    const bool saved = m_history.setFavourite(path, !m_history.isFavourite(path));
    // The boost may move the block: the current row follows it.
    update();
    if (!saved)
        m_footer->setText(m_history.saveFailureMessage());
    const auto& rows = m_rows.rows();
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (rows[i].block.getPath() == path)
            m_rows.setCurrent(int(i));
    showCurrent();
}

bool QuickInsertPopup::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_query || event->type() != QEvent::KeyPress)
        return QFrame::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool control = key->modifiers() & Qt::ControlModifier;
    switch (key->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        const int step = key->key() == Qt::Key_PageUp || key->key() == Qt::Key_PageDown ? VisibleRows : 1;
        m_rows.move(key->key() == Qt::Key_Up || key->key() == Qt::Key_PageUp ? -step : step);
        showCurrent();
        return true;
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        insertCurrent(control);
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    case Qt::Key_D:
        if (!control)
            break;
        toggleFavourite();
        return true;
    default: break;
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace LibraryBrowser
