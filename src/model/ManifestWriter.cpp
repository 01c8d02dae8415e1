#include "model/ManifestWriter.h"

#include "model/Model.h"
#include "model/Serializer.h"
#include "platform/ByteScan.h"
#include "platform/Utf8.h"

#include <QString>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

namespace LibraryBrowser {

namespace {

enum class ByteKind : unsigned char { Plain, Reference, Dropped, Lead };

constexpr std::array<ByteKind, 256> byteKinds()
{
    std::array<ByteKind, 256> kinds{};
    for (int b = 0; b < 256; ++b)
        kinds[b] = b < 0x20 ? ByteKind::Dropped : b >= 0x80 ? ByteKind::Lead : ByteKind::Plain;
    for (unsigned char b : {'<', '>', '&', '"', '\t', '\n', '\r'})
        kinds[b] = ByteKind::Reference;
    return kinds;
}

constexpr std::array<ByteKind, 256> kinds = byteKinds();

// Whether any of eight bytes is other than plain: values are mostly long
// runs that are copied as they stand.
bool mayNeedEscape(std::uint64_t bytes)
{
    using namespace ByteScan;
    return hasByteBelow(bytes, 0x20) || hasHighByte(bytes) || hasByte(bytes, '<') || hasByte(bytes, '>')
        || hasByte(bytes, '&') || hasByte(bytes, '"');
}

std::string_view reference(char c)
{
    switch (c) {
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '&': return "&amp;";
    case '"': return "&quot;";
    case '\t': return "&#9;";
    case '\n': return "&#10;";
    default: return "&#13;";
    }
}

// The document's bytes, grown in place: the buffer is reallocated, which
// for a large document extends its mapping instead of copying it.
class Output {
public:
    void append(const char* text, std::size_t length)
    {
        makeRoom(length);
        std::memcpy(m_data + m_size, text, length);
        m_size += qsizetype(length);
    }
    void append(std::string_view text) { append(text.data(), text.size()); }
    void append(char c)
    {
        makeRoom(1);
        m_data[m_size++] = c;
    }

    qsizetype size() const { return m_size; }
    void truncate(qsizetype size) { m_size = size; }

    QByteArray take()
    {
        m_bytes.resize(m_size);
        m_bytes.squeeze();
        m_data = nullptr;
        m_size = 0;
        return std::move(m_bytes);
    }

private:
    void makeRoom(std::size_t length)
    {
        if (m_size + qsizetype(length) > m_bytes.size()) {
            m_bytes.resize(std::max(2 * m_bytes.size(), m_size + qsizetype(length) + 4096));
            m_data = m_bytes.data();
        }
    }

    QByteArray m_bytes;
    char* m_data = nullptr;
    qsizetype m_size = 0;
};

// Appends `text` escaped for an attribute value. False, with `out` partly
// written, at the first sequence that is not well-formed UTF-8.
bool appendEscapedUtf8(Output& out, std::string_view text)
{
    const char* p = text.data();
    const char* end = p + text.size();
    while (p != end) {
        const char* run = p;
        while (end - p >= 8 && !mayNeedEscape(ByteScan::eightBytesAt(p)))
            p += 8;
        while (p != end && kinds[static_cast<unsigned char>(*p)] == ByteKind::Plain)
            ++p;
        out.append(run, std::size_t(p - run));
        if (p == end)
            break;
        switch (kinds[static_cast<unsigned char>(*p)]) {
        case ByteKind::Reference:
            out.append(reference(*p++));
            break;
        case ByteKind::Dropped:
            ++p;
            break;
        default: {
            std::uint32_t c = 0;
            const std::size_t length = decodeUtf8(p, end, c);
            if (!length)
                return false;
            // Non-characters of the basic plane are not written.
            if (c != 0xFFFE && c != 0xFFFF)
                out.append(p, length);
            p += length;
        }
        }
    }
    return true;
}

bool startsWithByteOrderMark(const std::string& text)
{
    return text.size() >= 3 && text[0] == '\xEF' && text[1] == '\xBB' && text[2] == '\xBF';
}

void appendEscaped(Output& out, const std::string& text)
{
    const qsizetype start = out.size();
    if (!startsWithByteOrderMark(text) && appendEscapedUtf8(out, text))
        return;
    // Rare: decoded as the conversion to QString decodes it, which is
    // well-formed UTF-8 once encoded again.
    out.truncate(start);
    appendEscapedUtf8(out, QString::fromStdString(text).toStdString());
}

// Each element starts a line, indented by its depth: an auto-formatting
// writer's layout of empty elements inside one root.
class Document {
public:
    explicit Document(int indent) : m_indent(std::size_t(indent)) {}

    void newLine(std::size_t level)
    {
        m_out.append('\n');
        for (std::size_t i = 0; i < level * m_indent; ++i)
            m_out.append(' ');
    }

    void attribute(std::string_view name, const std::string& value)
    {
        m_out.append(' ');
        m_out.append(name);
        m_out.append("=\"");
        appendEscaped(m_out, value);
        m_out.append('"');
    }

    Document& operator<<(std::string_view text)
    {
        m_out.append(text);
        return *this;
    }

    QByteArray bytes() { return m_out.take(); }

private:
    std::size_t m_indent;
    Output m_out;
};

} // namespace

QByteArray ManifestWriter::write(const Model& model, int indent)
{
    const std::string_view rootName = Serializer::rootElementName();
    Document out(indent);
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    out.newLine(0);
    out << "<" << rootName;
    out.attribute("format", std::to_string(Serializer::formatVersion()));
    out.attribute("signature", model.signature().toString());
    out.attribute("domain", Node::getDomain().str());
    if (model.getNodes().isEmpty()) {
        out << "/>\n";
        return out.bytes();
    }
    out << ">";
    for (const TandrilObjectImpl* node : model.getNodes()) {
        const MetaNode& meta = node->metaNode();
        out.newLine(1);
        out << "<" << meta.typeName().str();
        out.attribute("id", std::to_string(node->id()));
        for (const auto& property : meta.properties()) {
            if (property->hasDefaultValue(*node))
                continue;
            if (const std::string* text = property->textIfStored(*node))
                out.attribute(property->name().str(), *text);
            else
                out.attribute(property->name().str(), property->getPropAsString(*node));
        }
        out << "/>";
    }
    out.newLine(0);
    out << "</" << rootName << ">\n";
    return out.bytes();
}

} // namespace LibraryBrowser
