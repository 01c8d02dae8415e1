#include "gui/QuickInsertRows.h"

#include <QList>

#include <algorithm>

namespace LibraryBrowser {

void QuickInsertRows::setRows(std::vector<RankedBlock> rows)
{
    m_rows = std::move(rows);
    m_current = m_rows.empty() ? -1 : 0;
}

const RankedBlock* QuickInsertRows::currentBlock() const
{
    return m_current < 0 ? nullptr : &m_rows[std::size_t(m_current)];
}

void QuickInsertRows::orderAsHistory(std::vector<RankedBlock>& rows, const QStringList& favourites,
                                     const QStringList& recents)
{
    const auto place = [&](const RankedBlock& row) -> qsizetype {
        const QString path = QString::fromStdString(row.block.getPath());
        const qsizetype favourite = favourites.indexOf(path);
        if (favourite >= 0)
            return favourite;
        const qsizetype recent = recents.indexOf(path);
        return favourites.size() + (recent >= 0 ? recent : recents.size());
    };
    std::stable_sort(rows.begin(), rows.end(),
                     [&](const RankedBlock& a, const RankedBlock& b) { return place(a) < place(b); });
}

void QuickInsertRows::move(int steps)
{
    if (!m_rows.empty())
        setCurrent(std::clamp(m_current + steps, 0, int(m_rows.size()) - 1));
}

void QuickInsertRows::setCurrent(int row)
{
    if (row >= 0 && row < int(m_rows.size()))
        m_current = row;
}

QString QuickInsertRows::highlighted(const QString& name, const std::vector<NameSpan>& spans)
{
    // Spans count characters (code points); QString counts UTF-16 units.
    const QList<uint> points = name.toUcs4();
    const auto piece = [&](int from, int to) {
        from = std::clamp(from, 0, int(points.size()));
        to = std::clamp(to, from, int(points.size()));
        return QString::fromUcs4(reinterpret_cast<const char32_t*>(points.constData()) + from, to - from).toHtmlEscaped();
    };
    QString html;
    int at = 0;
    for (const NameSpan& span : spans) {
        if (span.start < at || span.length <= 0)
            continue;
        html += piece(at, span.start) + "<b>" + piece(span.start, span.start + span.length) + "</b>";
        at = span.start + span.length;
    }
    return html + piece(at, int(points.size()));
}

QString QuickInsertRows::libraryPath(const std::string& displayPath, const std::string& displayName)
{
    QString path = QString::fromStdString(displayPath);
    const QString name = QString::fromStdString(displayName);
    if (path.endsWith(name) && path.size() > name.size())
        path.chop(name.size());
    while (path.endsWith('/'))
        path.chop(1);
    return path;
}

} // namespace LibraryBrowser
