#pragma once

#include "repository/search/SearchOptions.h"

#include <QRegExp>

#include <string>

namespace LibraryBrowser {

// What a user typed into the search box, made into one compiled expression.
// A plain pattern is a kind of glob: "?" is one character, "*" any run, a
// blank any white space; "(", ")", "^", "$" and "|" keep their meaning as
// operators, so "gain|sum" finds either word and "^Sine" names that begin so.
// An expression the engine finds invalid matches nothing.
class SearchPattern {
public:
    // The translation stops once its text has reached this many bytes; the
    // limit is checked after each input byte, so the text may run up to two
    // bytes past it.
    static constexpr std::size_t MaxTranslatedLength = 2044;

    SearchPattern(const std::string& pattern, SearchOptions::RegExp regExp, SearchOptions::WholeWord wholeWord,
                  SearchOptions::MatchCase matchCase);

    // The expression text for a plain (non-regular-expression) pattern.
    static std::string translatePlainPattern(const std::string& pattern);

    // True when the expression matches anywhere inside `text` (UTF-8).
    bool matches(const std::string& text) const;
    bool matches(const char* text) const { return matches(std::string(text)); }
    bool matches(const QString& text) const;
    bool isValid() const { return m_regExp.isValid(); }
    // The compiled expression, to be copied: the pattern's own matches leave
    // it pointing at a buffer it doesn't own, so its captured texts are not
    // for reading.
    const QRegExp& regExp() const { return m_regExp; }

private:
    QRegExp m_regExp;
    // The subject of the last match in UTF-16, reused: a search matches
    // every name of the repository, and a string allocated per name was a
    // large part of a search over read manifests.
    mutable std::u16string m_subject;
};

} // namespace LibraryBrowser
