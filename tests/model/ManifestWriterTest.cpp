#include "model/LoadContext.h"
#include "model/MetaModel.h"
#include "model/Model.h"
#include "model/Serializer.h"

#include <QBuffer>
#include <QXmlStreamWriter>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace LibraryBrowser;

namespace {

// The serializer's form as Qt's XML stream writer writes it: the bytes the
// manifest writer must give for every model.
QByteArray writtenByQt(const Model& model, int options)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter writer(&buffer);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(options == Model::Indented ? 2 : 0);
    writer.writeStartDocument();
    writer.writeStartElement(QLatin1String(Serializer::rootElementName()));
    writer.writeAttribute(QLatin1String("format"), QString::number(Serializer::formatVersion()));
    writer.writeAttribute(QLatin1String("signature"), QString::fromStdString(model.signature().toString()));
    writer.writeAttribute(QLatin1String("domain"), QString::fromStdString(Node::getDomain().str()));
    for (const TandrilObjectImpl* node : model.getNodes()) {
        writer.writeEmptyElement(QString::fromStdString(node->getTypeName().str()));
        writer.writeAttribute(QLatin1String("id"), QString::number(node->id()));
        for (const auto& property : node->metaNode().properties())
            if (!property->hasDefaultValue(*node))
                writer.writeAttribute(QString::fromStdString(property->name().str()),
                                      QString::fromStdString(property->getPropAsString(*node)));
    }
    writer.writeEndElement();
    writer.writeEndDocument();
    return bytes;
}

// Text of every kind a value may hold: markup, blanks and other control
// characters, characters of one to four bytes (byte order marks and
// non-characters among them), and bytes that are not UTF-8 at all.
class TextMaker {
public:
    explicit TextMaker(unsigned seed) : m_random(seed) {}

    std::string text()
    {
        static const char* const pieces[] = {
            "<", ">", "&", "\"", "'", "\t", "\n", "\r", "\v", "\f", "\x01", "\x1F", "\x7F", "|", ",", "[", "]",
            "\xEF\xBB\xBF", "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xEF\xBF\xBD", "\xEF\xB7\x90", "\xF0\x9F\xBF\xBE",
            "\xF4\x8F\xBF\xBF", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
            // not UTF-8: stray, truncated, overlong, surrogate, past U+10FFFF
            "\x80", "\xBF", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80",
            "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFE", "\xFF"};
        std::string text;
        const int length = int(m_random() % 12);
        for (int i = 0; i < length; ++i) {
            switch (m_random() % 4) {
            case 0: text += pieces[m_random() % std::size(pieces)]; break;
            case 1: text += char(m_random() % 256); break;
            case 2: text += codePoint(); break;
            default: text += "Gain block"; break;
            }
        }
        return text;
    }

    std::string number() { return std::to_string(std::int64_t(m_random()) - (std::int64_t(1) << 31)); }
    double real() { return std::uniform_real_distribution<double>(-1e7, 1e7)(m_random); }
    bool chance(unsigned inFour) { return m_random() % 4 < inFour; }
    unsigned below(unsigned n) { return unsigned(m_random() % n); }

private:
    // Any code point but a surrogate, in UTF-8.
    std::string codePoint()
    {
        std::uint32_t c = m_random() % 0x110000;
        if (c >= 0xD800 && c <= 0xDFFF)
            c -= 0x800;
        return QString::fromUcs4(reinterpret_cast<const char32_t*>(&c), 1).toStdString();
    }

    std::mt19937 m_random;
};

// Every property of a node from text in its type's form, a quarter of them
// left at their defaults; references to nodes of the same model.
void fill(TandrilObjectImpl& node, TextMaker& maker, LoadContext& context, unsigned nodeCount)
{
    for (const auto& property : node.metaNode().properties()) {
        if (maker.chance(1))
            continue;
        const std::string type = property->valueTypeName().str();
        std::string text;
        if (type == "bool")
            text = maker.chance(2) ? "1" : "0";
        else if (type == "std::int32_t" || type == "std::int64_t")
            text = maker.number();
        else if (type == "QRectF")
            text = std::to_string(maker.real()) + "," + std::to_string(maker.real()) + ",3e-9,4";
        else if (type == "LibraryImplPointer")
            text = std::to_string(1 + maker.below(nodeCount));
        else if (type == "LibraryImplList")
            text = "[1," + std::to_string(nodeCount) + "]";
        else if (type == "StringVector" || type == "FileInfoVector")
            text = "[" + maker.text() + "," + maker.text() + "|" + maker.text() + "|" + maker.number() + "|7]";
        else
            text = maker.text();
        std::string reason;
        property->setPropFromString(node, text, context, reason);
    }
}

void expectWrittenAsQtWrites(const Model& model)
{
    for (int option : {int(Model::Compact), int(Model::Indented)}) {
        const QByteArray expected = writtenByQt(model, option);
        const QByteArray actual = model.saveToBytes(option);
        if (actual == expected)
            continue;
        qsizetype at = 0;
        while (at < actual.size() && at < expected.size() && actual[at] == expected[at])
            ++at;
        const qsizetype from = std::max<qsizetype>(0, at - 20);
        FAIL() << "option " << option << ", first difference at byte " << at << ":\n  expected "
               << expected.mid(from, 60).toPercentEncoding().toStdString() << "\n  written  "
               << actual.mid(from, 60).toPercentEncoding().toStdString();
    }
}

} // namespace

// Each byte value alone, between letters and at the start of a value, in
// every kind of text property; then random models of every node class with
// every property type holding any text, broken UTF-8 included; and the
// model without nodes. Compact and indented.
TEST(ManifestWriter, WritesTheBytesQtsXmlWriterWritesForAnyValue)
{
    expectWrittenAsQtWrites(Model());

    Model bytes;
    for (int b = 0; b < 256; ++b) {
        const std::string alone(1, char(b));
        LibraryRefImpl* node = bytes.createLibraryRefImpl();
        node->setUniquePath(StringId("u" + alone));
        node->setName(alone);
        node->setDisplayName("a" + alone + "z");
        node->setReposIconsArchiveSpec(alone + "z");
        node->setLibraryRefPath(alone + "\xC3\xA9" + alone);
    }
    expectWrittenAsQtWrites(bytes);

    const std::vector<StringId> classes = {BlockImpl::staticGetTypeName(), SubSystemImpl::staticGetTypeName(),
                                           LibraryImpl::staticGetTypeName(), LibraryRefImpl::staticGetTypeName(),
                                           PaletteImpl::staticGetTypeName()};
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        TextMaker maker(seed);
        Model model;
        LoadContext context;
        const unsigned count = 40;
        for (unsigned i = 1; i <= count; ++i)
            context.addNode(i, model.createNode(classes[(seed + i) % classes.size()]));
        for (TandrilObjectImpl* node : model.getNodes())
            fill(*node, maker, context, count);
        context.bindReferences();
        expectWrittenAsQtWrites(model);
    }
}
