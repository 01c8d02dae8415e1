#include "repository/search/RankingText.h"

#include "platform/Utf8.h"

#include <QChar>
#include <QList>
#include <QString>

namespace LibraryBrowser::RankingText {

namespace {

// Invalid UTF-8 comes back as replacement characters, as Qt reads it.
QList<uint> codePoints(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size())).toUcs4();
}

bool isWordCharacter(char32_t c) { return QChar::isLetterOrNumber(c); }

// Lower case without accents, one character for one: "É" is compared as "e",
// so that "resonateur" finds "Résonateur".
char32_t foldCharacter(char32_t c)
{
    const char32_t lower = QChar::toLower(c);
    if (lower < 0x80 || QChar::decompositionTag(lower) != QChar::Canonical)
        return lower;
    const QList<uint> parts = QChar::decomposition(lower).toUcs4();
    return !parts.isEmpty() && QChar::isLetter(char32_t(parts.first())) ? char32_t(parts.first()) : lower;
}

} // namespace

FoldedName foldName(std::string_view utf8)
{
    FoldedName folded;
    const QList<uint> characters = codePoints(utf8);
    folded.lowered.reserve(utf8.size());
    folded.characters = std::size_t(characters.size());
    for (qsizetype i = 0; i < characters.size(); ++i) {
        const char32_t c = characters[i];
        const char32_t before = i > 0 ? characters[i - 1] : U' ';
        const char32_t after = i + 1 < characters.size() ? characters[i + 1] : U' ';
        bool starts = false;
        if (isWordCharacter(c)) {
            if (!isWordCharacter(before))
                starts = true;
            else if (QChar::isUpper(c) && QChar::isLower(before))
                starts = true;
            else if (QChar::isUpper(c) && QChar::isUpper(before) && QChar::isLower(after))
                starts = true;
            else if (QChar::isDigit(c) != QChar::isDigit(before))
                starts = true;
        }
        if (starts)
            folded.wordStarts.push_back(std::uint32_t(folded.lowered.size()));
        appendUtf8(folded.lowered, foldCharacter(c));
    }
    return folded;
}

std::string lowered(std::string_view utf8)
{
    std::string out;
    out.reserve(utf8.size());
    for (const uint c : codePoints(utf8))
        appendUtf8(out, foldCharacter(char32_t(c)));
    return out;
}

std::vector<std::string> words(std::string_view utf8)
{
    std::vector<std::string> found;
    std::string word;
    for (const uint c : codePoints(utf8)) {
        if (isWordCharacter(c)) {
            appendUtf8(word, foldCharacter(char32_t(c)));
        } else if (!word.empty()) {
            found.push_back(std::move(word));
            word.clear();
        }
    }
    if (!word.empty())
        found.push_back(std::move(word));
    return found;
}

int characterIndex(std::string_view utf8, std::size_t byteOffset)
{
    int index = 0;
    for (std::size_t i = 0; i < byteOffset && i < utf8.size(); ++i)
        index += isContinuationByte(utf8[i]) ? 0 : 1;
    return index;
}

} // namespace LibraryBrowser::RankingText
