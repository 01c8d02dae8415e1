#include "JsonLocator.h"

#include <QJsonDocument>
#include <QJsonArray>
#include <QJsonValue>

#include <algorithm>

namespace LibraryBrowser::Host {

namespace {
// Deep enough for any real file; protects the scan from pathological nesting.
constexpr int maximumDepth = 512;
}

JsonLocator::Position JsonLocator::positionOfOffset(qsizetype offset) const
{
    Position position;
    const qsizetype end = std::min(offset, m_text.size());
    for (qsizetype i = 0; i < end; ++i) {
        const auto byte = static_cast<unsigned char>(m_text[i]);
        if (byte == '\n') {
            ++position.line;
            position.column = 1;
        } else if ((byte & 0xC0) != 0x80) {
            ++position.column;
        }
    }
    return position;
}

JsonLocator::Position JsonLocator::positionOf(const FieldPath& field) const
{
    return positionOfOffset(find(field));
}

qsizetype JsonLocator::find(const FieldPath& field) const
{
    qsizetype at = skipSpace(0);
    for (const FieldPath::Step& step : field.steps()) {
        if (at >= m_text.size())
            return at;
        const char open = m_text[at];
        if (step.index < 0 && open == '{') {
            qsizetype cursor = skipSpace(at + 1);
            qsizetype found = -1;
            while (cursor < m_text.size() && m_text[cursor] == '"') {
                const QByteArray key = readKey(cursor);
                cursor = skipSpace(skipString(cursor));
                cursor = skipSpace(cursor + 1); // the colon
                if (QString::fromUtf8(key) == step.key) {
                    found = cursor;
                    break;
                }
                cursor = skipSpace(skipValue(cursor, 0));
                if (cursor < m_text.size() && m_text[cursor] == ',')
                    cursor = skipSpace(cursor + 1);
            }
            if (found < 0)
                return at;
            at = found;
        } else if (step.index >= 0 && open == '[') {
            qsizetype cursor = skipSpace(at + 1);
            for (int i = 0; i < step.index && cursor < m_text.size() && m_text[cursor] != ']'; ++i) {
                cursor = skipSpace(skipValue(cursor, 0));
                if (cursor < m_text.size() && m_text[cursor] == ',')
                    cursor = skipSpace(cursor + 1);
            }
            if (cursor >= m_text.size() || m_text[cursor] == ']')
                return at;
            at = cursor;
        } else {
            return at;
        }
    }
    return at;
}

qsizetype JsonLocator::skipSpace(qsizetype at) const
{
    while (at < m_text.size()) {
        const char c = m_text[at];
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
            break;
        ++at;
    }
    return at;
}

qsizetype JsonLocator::skipString(qsizetype at) const
{
    ++at; // opening quote
    while (at < m_text.size()) {
        const char c = m_text[at];
        if (c == '\\')
            at += 2;
        else if (c == '"')
            return at + 1;
        else
            ++at;
    }
    return at;
}

qsizetype JsonLocator::skipValue(qsizetype at, int depth) const
{
    if (at >= m_text.size() || depth > maximumDepth)
        return m_text.size();
    const char c = m_text[at];
    if (c == '"')
        return skipString(at);
    if (c == '{' || c == '[') {
        const char close = c == '{' ? '}' : ']';
        qsizetype cursor = skipSpace(at + 1);
        while (cursor < m_text.size() && m_text[cursor] != close) {
            const char here = m_text[cursor];
            if (here == ',' || here == ':')
                cursor = skipSpace(cursor + 1);
            else
                cursor = skipSpace(skipValue(cursor, depth + 1));
        }
        return cursor + 1;
    }
    while (at < m_text.size()) {
        const char here = m_text[at];
        if (here == ',' || here == '}' || here == ']' || here == ' ' || here == '\n' || here == '\t'
            || here == '\r')
            break;
        ++at;
    }
    return at;
}

QByteArray JsonLocator::readKey(qsizetype at) const
{
    const qsizetype end = skipString(at);
    // Let the JSON parser undo escapes, so that keys compare as text.
    const QByteArray literal = "[" + m_text.mid(at, end - at) + "]";
    const QJsonDocument doc = QJsonDocument::fromJson(literal);
    return doc.isArray() ? doc.array().at(0).toString().toUtf8() : m_text.mid(at + 1, end - at - 2);
}

} // namespace LibraryBrowser::Host
