#pragma once

#include <QStringList>

#include <string>

namespace LibraryBrowser::SearchHistory {

// Trims blanks, tabs and line ends in place; a text of at least two
// characters is searched.
bool validateSearchString(std::string& text);

// The history as a new search of `text` starts: a text that found nothing
// last time leaves it, at the limit the last item makes room unless it is
// the text itself, and a new text goes to the top.
QStringList beforeSearch(QStringList items, const QString& text, const QString& lastFailedSearch,
                         const QString& prompt, int limit);

// What is kept on disk: every item but the last text that found nothing
// (the prompt counts as one until a search finds something).
QStringList toSave(const QStringList& items, const QString& lastFailedSearch);

} // namespace LibraryBrowser::SearchHistory
