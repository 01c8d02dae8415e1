#include "platform/PlainXmlCheck.h"

#include <cstring>
#include <vector>

namespace LibraryBrowser {

namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNameChar(char c)
{
    return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// A character allowed in plain text or a plain attribute value, '<' and '&'
// aside.
bool isPlainChar(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x80 && (byte >= 0x20 || c == '\t' || c == '\n' || c == '\r');
}

class Scanner {
public:
    Scanner(const QByteArray& bytes, QByteArrayView rootName)
        : m_at(bytes.constData()), m_end(bytes.constData() + bytes.size()), m_rootName(rootName)
    {
    }

    bool run()
    {
        skipSpace();
        if (!startTag())
            return false;
        while (!m_open.empty()) {
            if (m_at >= m_end)
                return false;
            const bool ok = *m_at != '<' ? text() : (m_at + 1 < m_end && m_at[1] == '/') ? endTag() : startTag();
            if (!ok)
                return false;
        }
        return trailingSpaceOnly();
    }

private:
    struct Name {
        const char* start;
        int size;
        bool operator==(const Name& other) const
        {
            return size == other.size && std::memcmp(start, other.start, std::size_t(size)) == 0;
        }
    };

    void skipSpace()
    {
        while (m_at < m_end && isSpace(*m_at))
            ++m_at;
    }

    bool trailingSpaceOnly()
    {
        skipSpace();
        return m_at == m_end;
    }

    bool name(Name& out)
    {
        if (m_at >= m_end || !isNameStart(*m_at))
            return false;
        out.start = m_at++;
        while (m_at < m_end && isNameChar(*m_at))
            ++m_at;
        out.size = int(m_at - out.start);
        return true;
    }

    // At '&': one of the five named references.
    bool reference()
    {
        static const char* const named[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
        for (const char* candidate : named) {
            const std::size_t size = std::strlen(candidate);
            if (std::size_t(m_end - m_at) >= size && std::memcmp(m_at, candidate, size) == 0) {
                m_at += size;
                return true;
            }
        }
        return false;
    }

    bool text()
    {
        while (m_at < m_end && *m_at != '<') {
            if (*m_at == '&') {
                if (!reference())
                    return false;
                continue;
            }
            // Text comes after a start tag, so two characters precede it.
            if (!isPlainChar(*m_at) || (*m_at == '>' && m_at[-1] == ']' && m_at[-2] == ']'))
                return false;
            ++m_at;
        }
        return true;
    }

    bool attributeValue()
    {
        if (m_at >= m_end || (*m_at != '"' && *m_at != '\''))
            return false;
        const char quote = *m_at++;
        while (m_at < m_end && *m_at != quote) {
            if (*m_at == '&') {
                if (!reference())
                    return false;
                continue;
            }
            if (*m_at == '<' || !isPlainChar(*m_at))
                return false;
            ++m_at;
        }
        if (m_at >= m_end)
            return false;
        ++m_at;
        return true;
    }

    // At '<' of a start tag; a second root or a name other than the root's
    // at the top is not plain.
    bool startTag()
    {
        if (m_at >= m_end || *m_at != '<' || m_rootClosed)
            return false;
        ++m_at;
        Name element;
        if (!name(element))
            return false;
        if (m_open.empty() && QByteArrayView(element.start, element.size) != m_rootName)
            return false;
        m_attributes.clear();
        for (;;) {
            const char* beforeSpace = m_at;
            skipSpace();
            if (m_at >= m_end)
                return false;
            if (*m_at == '>' || *m_at == '/') {
                const bool empty = *m_at == '/';
                if (empty && (++m_at >= m_end || *m_at != '>'))
                    return false;
                ++m_at;
                if (!empty)
                    m_open.push_back(element);
                else if (m_open.empty())
                    m_rootClosed = true;
                return true;
            }
            Name attribute;
            if (m_at == beforeSpace || !name(attribute))
                return false;
            for (const Name& seen : m_attributes)
                if (seen == attribute)
                    return false;
            m_attributes.push_back(attribute);
            skipSpace();
            if (m_at >= m_end || *m_at != '=')
                return false;
            ++m_at;
            skipSpace();
            if (!attributeValue())
                return false;
        }
    }

    // At "</": the name of the innermost open element.
    bool endTag()
    {
        m_at += 2;
        Name element;
        if (!name(element) || !(element == m_open.back()))
            return false;
        skipSpace();
        if (m_at >= m_end || *m_at != '>')
            return false;
        ++m_at;
        m_open.pop_back();
        if (m_open.empty())
            m_rootClosed = true;
        return true;
    }

    const char* m_at;
    const char* m_end;
    QByteArrayView m_rootName;
    std::vector<Name> m_open;
    std::vector<Name> m_attributes;
    bool m_rootClosed = false;
};

} // namespace

PlainXmlCheck::Verdict PlainXmlCheck::check(const QByteArray& bytes, QByteArrayView rootName)
{
    return Scanner(bytes, rootName).run() ? Verdict::WellFormed : Verdict::Unsure;
}

} // namespace LibraryBrowser
