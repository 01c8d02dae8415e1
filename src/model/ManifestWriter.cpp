#include "model/ManifestWriter.h"

#include "model/Model.h"
#include "model/Serializer.h"
#include "platform/Utf8.h"

#include <QString>

#include <array>
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

// Appends `text` escaped for an attribute value. False, with `out` partly
// written, at the first sequence that is not well-formed UTF-8.
bool appendEscapedUtf8(std::string& out, std::string_view text)
{
    const char* p = text.data();
    const char* end = p + text.size();
    while (p != end) {
        const char* run = p;
        while (p != end && kinds[static_cast<unsigned char>(*p)] == ByteKind::Plain)
            ++p;
        out.append(run, std::size_t(p - run));
        if (p == end)
            break;
        switch (kinds[static_cast<unsigned char>(*p)]) {
        case ByteKind::Reference:
            out += reference(*p++);
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

void appendEscaped(std::string& out, const std::string& text)
{
    const std::size_t start = out.size();
    const bool bom = text.size() >= 3 && text.compare(0, 3, "\xEF\xBB\xBF") == 0;
    if (!bom && appendEscapedUtf8(out, text))
        return;
    // Rare: decoded as the conversion to QString decodes it, which is
    // well-formed UTF-8 once encoded again.
    out.resize(start);
    appendEscapedUtf8(out, QString::fromStdString(text).toStdString());
}

// Each element starts a line, indented by its depth: an auto-formatting
// writer's layout of empty elements inside one root.
class Document {
public:
    explicit Document(int indent) : m_indent(std::size_t(indent)) {}

    void newLine(std::size_t level)
    {
        m_out += '\n';
        m_out.append(level * m_indent, ' ');
    }

    void attribute(std::string_view name, const std::string& value)
    {
        m_out += ' ';
        m_out += name;
        m_out += "=\"";
        appendEscaped(m_out, value);
        m_out += '"';
    }

    Document& operator<<(std::string_view text)
    {
        m_out += text;
        return *this;
    }

    QByteArray bytes() const { return QByteArray(m_out.data(), qsizetype(m_out.size())); }

private:
    std::size_t m_indent;
    std::string m_out;
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
