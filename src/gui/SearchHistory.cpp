#include "gui/SearchHistory.h"

namespace LibraryBrowser::SearchHistory {

bool validateSearchString(std::string& text)
{
    const char* blanks = " \t\n\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        text.clear();
        return false;
    }
    text = text.substr(first, text.find_last_not_of(blanks) - first + 1);
    return QString::fromStdString(text).size() >= 2;
}

QStringList beforeSearch(QStringList items, const QString& text, const QString& lastFailedSearch,
                         const QString& prompt, int limit)
{
    if (!lastFailedSearch.isEmpty()) {
        for (int i = 0; i < items.size(); ++i) {
            if (items[i] == lastFailedSearch || items[i] == prompt) {
                items.removeAt(i);
                break;
            }
        }
    }
    if (items.size() >= limit && items.last() != text)
        items.removeLast();
    // A text already in the history keeps its place, as a combo box does.
    if (!items.contains(text))
        items.prepend(text);
    return items;
}

QStringList toSave(const QStringList& items, const QString& lastFailedSearch)
{
    QStringList kept;
    for (const QString& item : items)
        if (item != lastFailedSearch)
            kept.append(item);
    return kept;
}

} // namespace LibraryBrowser::SearchHistory
