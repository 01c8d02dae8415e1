#include "repository/search/SearchPattern.h"

#include <QStringDecoder>

#include <cctype>

namespace LibraryBrowser {

SearchPattern::SearchPattern(const std::string& pattern, SearchOptions::RegExp regExp,
                             SearchOptions::WholeWord wholeWord, SearchOptions::MatchCase matchCase)
{
    std::string text = regExp == SearchOptions::RegExpOn ? pattern : translatePlainPattern(pattern);
    // Not grouped on purpose: in an alternation each boundary binds to the
    // outer alternative only, as users of the search have come to expect.
    if (wholeWord == SearchOptions::WholeWordOn)
        text = "\\b" + text + "\\b";
    m_regExp = QRegExp(QString::fromUtf8(text.data(), qsizetype(text.size())),
                       matchCase == SearchOptions::MatchCaseOn ? Qt::CaseSensitive : Qt::CaseInsensitive,
                       QRegExp::RegExp);
}

std::string SearchPattern::translatePlainPattern(const std::string& pattern)
{
    std::string out;
    for (std::size_t i = 0; i < pattern.size() && out.size() < MaxTranslatedLength; ++i) {
        const char c = pattern[i];
        switch (c) {
        case '?':
            out += '.';
            break;
        case '*':
            out += ".*";
            break;
        case ' ':
            // A run of blanks counts once: only its last blank becomes "\s+".
            if (i + 1 < pattern.size() && std::isspace(static_cast<unsigned char>(pattern[i + 1])))
                break;
            out += "\\s+";
            break;
        case '+':
        case '.':
        case '[':
        case '\\':
        case ']':
        case '{':
        case '}':
            out += '\\';
            out += c;
            break;
        default:
            out += c;
        }
    }
    return out;
}

bool SearchPattern::matches(const std::string& text) const
{
    if (!m_regExp.isValid())
        return false;
    m_subject.resize(text.size());
    std::size_t length = 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    while (length < text.size() && bytes[length] < 0x80) {
        m_subject[length] = char16_t(bytes[length]);
        ++length;
    }
    if (length < text.size()) {
        // Not plain ASCII: the decoder writes the rest, never more code
        // units than there are bytes.
        QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
        QChar* end = decoder.appendToBuffer(reinterpret_cast<QChar*>(m_subject.data()) + length,
                                            QByteArrayView(text.data() + length, qsizetype(text.size() - length)));
        length = std::size_t(end - reinterpret_cast<QChar*>(m_subject.data()));
    }
    return matches(QString::fromRawData(reinterpret_cast<const QChar*>(m_subject.data()), qsizetype(length)));
}

bool SearchPattern::matches(const QString& text) const
{
    return m_regExp.isValid() && m_regExp.indexIn(text, 0, QRegExp::CaretAtZero) != -1;
}

} // namespace LibraryBrowser
