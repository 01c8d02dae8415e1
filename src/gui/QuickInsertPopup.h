#pragma once

#include "gui/QuickInsertRows.h"
#include "repository/search/BlockRanker.h"

#include <QFrame>

#include <functional>
#include <string>

class QLabel;
class QLineEdit;
class QListWidget;

namespace LibraryBrowser {

class BlockHistory;
class RepositoryReader;

// A small popup that finds a block by a few letters and puts it into a
// model: the ranked matches update as one types, each row with the block's
// icon, its name with the matched letters in bold and where it lives. Up and
// Down move, Enter inserts and closes, Ctrl+Enter inserts and stays, Ctrl+D
// marks or unmarks a favourite, Escape closes. With nothing typed it lists
// the favourites, then the recently used blocks.
class QuickInsertPopup : public QFrame {
    Q_OBJECT

public:
    // Puts the block into the model; the count of blocks this popup put in
    // before, so that the next may go beside the last.
    using Insert = std::function<void(const TandrilObject& block, int insertedBefore)>;

    static constexpr int RowLimit = 50;

    // A subsystem stands for a library and goes only into a library: the
    // rows have subsystems only when they are offered.
    QuickInsertPopup(RankingIndexPtr index, RepositoryReader& reader, BlockHistory& history, Insert insert,
                     bool offerSubsystems, QWidget* parent = nullptr);

    // Shows the popup with its top left corner at the point (kept on the
    // screen) and the text typed so far.
    void popUp(const QPoint& global, const QString& typed);

    QString query() const;
    const QuickInsertRows& rows() const { return m_rows; }
    QLineEdit* queryEdit() const { return m_query; }
    QListWidget* list() const { return m_list; }
    QString footerText() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void update();
    void fillList();
    void showCurrent();
    void insertCurrent(bool keepOpen);
    void toggleFavourite();

    BlockRanker m_ranker;
    RepositoryReader& m_reader;
    BlockHistory& m_history;
    Insert m_insert;
    QuickInsertRows m_rows;
    std::size_t m_total = 0;
    // More matched than the rows show.
    bool m_truncated = false;
    bool m_offerSubsystems;
    int m_inserted = 0;
    QLineEdit* m_query = nullptr;
    QListWidget* m_list = nullptr;
    QLabel* m_footer = nullptr;
};

} // namespace LibraryBrowser
