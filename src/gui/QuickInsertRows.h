#pragma once

#include "repository/search/RankedBlock.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace LibraryBrowser {

// The rows of the quick insert and the one that Enter takes: the first row
// after each new answer, moved by the arrow keys without wrapping, none when
// there are no rows.
class QuickInsertRows {
public:
    void setRows(std::vector<RankedBlock> rows);
    const std::vector<RankedBlock>& rows() const { return m_rows; }
    int current() const { return m_current; }
    const RankedBlock* currentBlock() const;
    // By steps, stopping at the first and the last row.
    void move(int steps);
    void setCurrent(int row);

    // The name as rich text with the matched runs in bold; the rest escaped.
    static QString highlighted(const QString& name, const std::vector<NameSpan>& spans);
    // The empty query's rows as the history keeps them: favourites in the
    // order they were marked, then recents newest first.
    static void orderAsHistory(std::vector<RankedBlock>& rows, const QStringList& favourites,
                               const QStringList& recents);
    // Where a block lives, as the tree shows it: its display path less its name.
    static QString libraryPath(const std::string& displayPath, const std::string& displayName);

private:
    std::vector<RankedBlock> m_rows;
    int m_current = -1;
};

} // namespace LibraryBrowser
