#include "model/ManifestScanner.h"

#include "model/LoadContext.h"
#include "model/MetaModel.h"
#include "model/Model.h"
#include "model/Serializer.h"
#include "platform/ByteScan.h"
#include "platform/Utf8.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace LibraryBrowser {

namespace {

// Node classes and their property names as bytes, built once.
class ByteTables {
public:
    struct Class {
        std::string name;
        StringId typeName;
        const MetaNode* meta = nullptr;
        std::vector<std::string> propertyNames;
    };

    static const ByteTables& instance()
    {
        static const ByteTables tables;
        return tables;
    }

    const Class* findClass(std::string_view name) const
    {
        for (const Class& c : m_classes)
            if (c.name == name)
                return &c;
        return nullptr;
    }

private:
    ByteTables()
    {
        for (const auto& meta : MetaModel::instance().metaNodes()) {
            Class c;
            c.name = meta->typeName().str();
            c.typeName = meta->typeName();
            c.meta = meta.get();
            for (const auto& property : meta->properties())
                c.propertyNames.push_back(property->name().str());
            m_classes.push_back(std::move(c));
        }
    }
    std::vector<Class> m_classes;
};

// What each byte may be, looked up once per byte of a document.
enum ByteClass : unsigned char {
    Space = 1,
    NameByte = 2,
    // Ends a run of a value's bytes that are taken as they are: either quote,
    // a reference, a character of more than one byte, a control character.
    EndsPlainRun = 4,
};

constexpr std::array<unsigned char, 256> byteClasses()
{
    std::array<unsigned char, 256> classes{};
    for (int b = 0; b < 256; ++b) {
        if (b == ' ' || b == '\t' || b == '\n' || b == '\r')
            classes[b] |= Space;
        if ((b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || (b >= '0' && b <= '9') || b == '-' || b == '_'
            || b == '.' || b == ':')
            classes[b] |= NameByte;
        if (b < 0x20 || b >= 0x80 || b == '"' || b == '\'' || b == '&' || b == '<')
            classes[b] |= EndsPlainRun;
    }
    return classes;
}

constexpr std::array<unsigned char, 256> classes = byteClasses();

bool is(char c, ByteClass byteClass)
{
    return classes[static_cast<unsigned char>(c)] & byteClass;
}

// Whether any of eight bytes ends a plain run for this quote (or is the
// other quote): a value's bytes are taken eight at a time until one might.
bool mayEndPlainRun(std::uint64_t bytes, unsigned char quote)
{
    using namespace ByteScan;
    return hasByteBelow(bytes, 0x20) || hasHighByte(bytes) || hasByte(bytes, quote) || hasByte(bytes, '&')
        || hasByte(bytes, '<');
}

// Names begin with a letter or an underscore; a colon is left to the full
// reader.
bool startsName(std::string_view name)
{
    if (name.empty() || name.find(':') != std::string_view::npos)
        return false;
    const char c = name.front();
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// A code point that XML allows in a document.
bool isXmlChar(std::uint32_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD)
        || (c >= 0x10000 && c <= 0x10FFFF);
}

// The length of the well-formed UTF-8 sequence of an XML character at p,
// or 0. Overlong forms, surrogates and non-characters are refused, so that
// what is accepted reads the same through the full reader's decoder.
std::size_t utf8SequenceLength(const char* p, const char* end)
{
    std::uint32_t c = 0;
    const std::size_t length = decodeUtf8(p, end, c);
    return length && isXmlChar(c) ? length : 0;
}

class Scan {
public:
    Scan(const char* begin, const char* end) : m_p(begin), m_end(end) {}

    bool document(Model& model)
    {
        if (!declaration())
            return false;
        skipSpace();
        if (!take('<'))
            return false;
        if (name() != Serializer::rootElementName())
            return false;
        if (!rootAttributes())
            return false;
        if (take('/')) {
            if (!take('>'))
                return false;
            return onlySpaceLeft();
        }
        if (!take('>'))
            return false;
        const ByteTables& tables = ByteTables::instance();
        LoadContext context;
        for (;;) {
            skipSpace();
            if (!take('<'))
                return false;
            if (take('/')) {
                if (name() != Serializer::rootElementName())
                    return false;
                skipSpace();
                if (!take('>'))
                    return false;
                break;
            }
            const ByteTables::Class* nodeClass = tables.findClass(name());
            TandrilObjectImpl* node = nodeClass ? model.createNode(nodeClass->typeName) : nullptr;
            if (!node || !nodeAttributes(*nodeClass, *node, context))
                return false;
        }
        if (!onlySpaceLeft())
            return false;
        context.bindReferences();
        return true;
    }

private:
    bool atEnd() const { return m_p == m_end; }

    bool take(char c)
    {
        if (m_p == m_end || *m_p != c)
            return false;
        ++m_p;
        return true;
    }

    bool takeText(std::string_view text)
    {
        if (std::size_t(m_end - m_p) < text.size() || std::memcmp(m_p, text.data(), text.size()) != 0)
            return false;
        m_p += text.size();
        return true;
    }

    // Takes the name if it stands here whole, not as the start of a longer one.
    bool takeName(std::string_view name)
    {
        // Most names that are not there differ in their first letter.
        if (std::size_t(m_end - m_p) <= name.size() || name.empty() || *m_p != name.front()
            || std::memcmp(m_p, name.data(), name.size()) != 0 || is(m_p[name.size()], NameByte))
            return false;
        m_p += name.size();
        return true;
    }

    // Whether any blank was skipped.
    bool skipSpace()
    {
        const char* start = m_p;
        while (m_p != m_end && is(*m_p, Space))
            ++m_p;
        return m_p != start;
    }

    bool onlySpaceLeft()
    {
        skipSpace();
        return atEnd();
    }

    // An ASCII name; empty if there is none here.
    std::string_view name()
    {
        const char* start = m_p;
        while (m_p != m_end && is(*m_p, NameByte))
            ++m_p;
        return std::string_view(start, std::size_t(m_p - start));
    }

    // `S? = S? "value"`, the value decoded into `out`.
    bool equalsAndValue(std::string& out)
    {
        skipSpace();
        if (!take('='))
            return false;
        skipSpace();
        return value(out);
    }

    bool value(std::string& out)
    {
        out.clear();
        if (atEnd() || (*m_p != '"' && *m_p != '\''))
            return false;
        const char quote = *m_p++;
        for (;;) {
            const char* run = m_p;
            while (m_end - m_p >= 8 && !mayEndPlainRun(ByteScan::eightBytesAt(m_p), static_cast<unsigned char>(quote)))
                m_p += 8;
            while (m_p != m_end && !is(*m_p, EndsPlainRun))
                ++m_p;
            out.append(run, std::size_t(m_p - run));
            if (atEnd())
                return false;
            const auto b = static_cast<unsigned char>(*m_p);
            if (b == static_cast<unsigned char>(quote)) {
                ++m_p;
                return true;
            }
            if (b == '"' || b == '\'') {
                out += char(b);
                ++m_p;
            } else if (b >= 0x80) {
                const std::size_t length = utf8SequenceLength(m_p, m_end);
                if (!length)
                    return false;
                out.append(m_p, length);
                m_p += length;
            } else if (b == '&') {
                if (!reference(out))
                    return false;
            } else {
                // '<', or a literal control character or line break, which
                // the full reader rejects or folds to a blank.
                return false;
            }
        }
    }

    bool reference(std::string& out)
    {
        ++m_p;
        static const struct {
            std::string_view name;
            char c;
        } named[] = {{"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}};
        for (const auto& entity : named)
            if (takeText(entity.name)) {
                out += entity.c;
                return true;
            }
        if (!take('#'))
            return false;
        const bool hex = take('x');
        std::uint32_t code = 0;
        int digits = 0;
        for (; m_p != m_end && *m_p != ';'; ++m_p, ++digits) {
            const char c = *m_p;
            int digit;
            if (c >= '0' && c <= '9')
                digit = c - '0';
            else if (hex && c >= 'a' && c <= 'f')
                digit = c - 'a' + 10;
            else if (hex && c >= 'A' && c <= 'F')
                digit = c - 'A' + 10;
            else
                return false;
            if (digits >= 7)
                return false;
            code = code * (hex ? 16 : 10) + std::uint32_t(digit);
        }
        if (digits == 0 || !take(';') || !isXmlChar(code))
            return false;
        appendUtf8(out, code);
        return true;
    }

    // `<?xml version="1.0" encoding="UTF-8"?>`; absent is fine too.
    bool declaration()
    {
        if (!takeText("<?xml"))
            return true;
        if (!skipSpace())
            return false;
        std::string text;
        bool versionSeen = false;
        for (;;) {
            if (takeText("?>"))
                return versionSeen;
            const std::string_view key = name();
            if (!equalsAndValue(text))
                return false;
            if (key == "version" && !versionSeen && text == "1.0")
                versionSeen = true;
            else if (!(key == "encoding" && versionSeen && (text == "UTF-8" || text == "utf-8")))
                return false;
            if (!skipSpace() && !(m_p != m_end && *m_p == '?'))
                return false;
        }
    }

    // The root's attributes say nothing that loading needs; they must only
    // be well formed and distinct.
    bool rootAttributes()
    {
        std::vector<std::string_view> seen;
        std::string text;
        while (skipSpace()) {
            if (atEnd() || *m_p == '/' || *m_p == '>')
                return true;
            const std::string_view key = name();
            if (!startsName(key))
                return false;
            for (const std::string_view& other : seen)
                if (other == key)
                    return false;
            seen.push_back(key);
            if (!equalsAndValue(text))
                return false;
        }
        return !atEnd() && (*m_p == '/' || *m_p == '>');
    }

    // Attributes up to the closing "/>" of an empty element.
    bool nodeAttributes(const ByteTables::Class& nodeClass, TandrilObjectImpl& node, LoadContext& context)
    {
        const std::vector<std::string>& names = nodeClass.propertyNames;
        const auto& properties = nodeClass.meta->properties();
        const std::size_t count = names.size();
        if (count > 64)
            return false;
        std::uint64_t seen = 0;
        bool hasId = false;
        std::size_t hint = 0;
        std::string reason;
        for (;;) {
            const bool spaced = skipSpace();
            if (take('/'))
                return take('>') && hasId;
            if (!spaced)
                return false;
            if (takeName("id")) {
                if (hasId || !equalsAndValue(m_value) || !nodeId(m_value, node, context))
                    return false;
                hasId = true;
                continue;
            }
            // Attributes come in the property table's order, those left at
            // their defaults left out: the name is looked for from the one
            // after the last, and compared where it stands.
            std::size_t index = count;
            if (hint == count)
                hint = 0;
            for (std::size_t k = 0, i = hint; k < count; ++k, i = i + 1 == count ? 0 : i + 1) {
                if (takeName(names[i])) {
                    index = i;
                    break;
                }
            }
            if (index == count || (seen & (std::uint64_t(1) << index)))
                return false;
            seen |= std::uint64_t(1) << index;
            hint = index + 1;
            if (!equalsAndValue(m_value))
                return false;
            if (!properties[index]->setPropFromString(node, m_value, context, reason))
                return false;
        }
    }

    static bool nodeId(const std::string& text, TandrilObjectImpl& node, LoadContext& context)
    {
        if (text.empty() || text.size() > 9)
            return false;
        unsigned id = 0;
        for (char c : text) {
            if (c < '0' || c > '9')
                return false;
            id = id * 10 + unsigned(c - '0');
        }
        return id != 0 && context.addNode(id, &node);
    }

    const char* m_p;
    const char* m_end;
    std::string m_value;
};

} // namespace

bool ManifestScanner::scan(Model& model, const QByteArray& bytes)
{
    const std::size_t before = model.createdCount();
    Scan scan(bytes.constData(), bytes.constData() + bytes.size());
    if (scan.document(model))
        return true;
    model.removeNodesCreatedAfter(before);
    return false;
}

} // namespace LibraryBrowser
