#include "model/Serializer.h"

#include "model/LoadContext.h"
#include "model/ManifestScanner.h"
#include "model/ManifestWriter.h"
#include "model/MetaModel.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "platform/FileFaults.h"

#include <QBuffer>
#include <QFile>
#include <QSaveFile>
#include <QStringEncoder>
#include <QXmlStreamReader>

#include <algorithm>

namespace LibraryBrowser {

namespace {

// Straight into a std::string: one allocation per value instead of two.
std::string utf8(QStringView text)
{
    std::string bytes(std::size_t(text.size()) * 3, '\0');
    QStringEncoder encoder(QStringEncoder::Utf8, QStringConverter::Flag::Stateless);
    char* end = encoder.appendToBuffer(bytes.data(), text);
    bytes.resize(std::size_t(end - bytes.data()));
    return bytes;
}

std::string position(const std::string& origin, const QXmlStreamReader& reader)
{
    return origin + ":" + std::to_string(reader.lineNumber()) + ":" + std::to_string(reader.columnNumber())
        + ": ";
}

// Node classes by element name; a handful of entries, so a scan is fastest.
class TypeTable {
public:
    TypeTable()
    {
        for (const auto& meta : MetaModel::instance().metaNodes())
            m_entries.push_back({QString::fromStdString(meta->typeName().str()), meta->typeName()});
    }
    // The empty id for an unknown name.
    StringId find(QStringView name) const
    {
        for (const auto& e : m_entries)
            if (e.name == name)
                return e.id;
        return StringId();
    }

private:
    struct Entry {
        QString name;
        StringId id;
    };
    std::vector<Entry> m_entries;
};

} // namespace

bool Serializer::loadFromFile(Model& model, const std::string& path, ErrorHolder& errors)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        errors.addError("Unable to open manifest " + path + ": " + file.errorString().toStdString());
        return false;
    }
    // Manifests are small; parsing from memory is markedly faster than from
    // the device in chunks.
    const QByteArray bytes = file.readAll();
    if (ManifestScanner::scan(model, bytes))
        return true;
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return load(model, buffer, path, errors);
}

bool Serializer::loadFromByteArray(Model& model, const QByteArray& bytes, ErrorHolder& errors)
{
    // The plain form the writer makes goes the fast way; anything else, and
    // every document with a fault, through the full reader and its messages.
    if (ManifestScanner::scan(model, bytes))
        return true;
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return load(model, buffer, "<manifest data>", errors);
}

bool Serializer::load(Model& model, QIODevice& device, const std::string& origin, ErrorHolder& errors)
{
    static const TypeTable types;
    const std::size_t errorsBefore = errors.errors().size();
    QXmlStreamReader reader(&device);
    // Manifests use no namespaces; not resolving them saves a lookup per attribute.
    reader.setNamespaceProcessing(false);
    LoadContext context;

    if (!reader.readNextStartElement()) {
        errors.addError(position(origin, reader)
                        + (reader.hasError() ? reader.errorString().toStdString() : "Empty document"));
        return false;
    }
    if (reader.name() != QLatin1String(rootElementName())) {
        errors.addError(position(origin, reader) + "Not a manifest: the root element is '"
                        + utf8(reader.name()) + "'");
        return false;
    }

    while (reader.readNextStartElement()) {
        const StringId typeName = types.find(reader.name());
        TandrilObjectImpl* node = typeName.isEmpty() ? nullptr : model.createNode(typeName);
        if (!node) {
            errors.addError(position(origin, reader) + "Unknown node type '" + utf8(reader.name()) + "'");
            return false;
        }
        const MetaNode& meta = node->metaNode();
        bool hasId = false;
        std::size_t hint = 0;
        for (const QXmlStreamAttribute& attribute : reader.attributes()) {
            const QStringView name = attribute.name();
            if (name == QLatin1String("id")) {
                bool ok = false;
                const unsigned storedId = attribute.value().toUInt(&ok);
                if (!ok || storedId == 0 || !context.addNode(storedId, node)) {
                    errors.addError(position(origin, reader) + "Invalid or repeated node id '"
                                    + utf8(attribute.value()) + "'");
                    return false;
                }
                hasId = true;
                continue;
            }
            const PropertyBase* property = meta.findProperty(name, hint);
            if (!property) {
                errors.addError(position(origin, reader) + "Unknown property '" + utf8(name) + "' of "
                                + typeName.str());
                return false;
            }
            // One unreadable value costs that value only: the property keeps
            // its default and the rest of the document still loads.
            std::string reason;
            if (!property->setPropFromString(*node, utf8(attribute.value()), context, reason))
                errors.addWarning(position(origin, reader) + reason + " of " + typeName.str());
        }
        if (!hasId) {
            errors.addError(position(origin, reader) + typeName.str() + " without an id");
            return false;
        }
        reader.skipCurrentElement();
    }
    if (reader.hasError()) {
        errors.addError(position(origin, reader) + reader.errorString().toStdString());
        return false;
    }
    context.bindReferences();
    return errors.errors().size() == errorsBefore;
}

bool Serializer::saveToFile(const Model& model, const std::string& path, ErrorHolder& errors, int options)
{
    return saveBytesToFile(saveToByteArray(model, options), path, errors);
}

bool Serializer::saveBytesToFile(const QByteArray& bytes, const std::string& path, ErrorHolder& errors)
{
    // Written aside and renamed into place, so a reader never sees half a file.
    QSaveFile file(QString::fromStdString(path));
    bool refused = FileFaults::failNow(FileFaults::Create, path);
    if (refused || !file.open(QIODevice::WriteOnly)) {
        errors.addError("Unable to write manifest " + path + ": "
                        + (refused ? FileFaults::message() : file.errorString().toStdString()));
        return false;
    }
    file.write(bytes);
    refused = FileFaults::failNow(FileFaults::Write, path) || FileFaults::failNow(FileFaults::Rename, path);
    if (refused)
        file.cancelWriting();
    if (!file.commit()) {
        errors.addError("Unable to write manifest " + path + ": "
                        + (refused ? FileFaults::message() : file.errorString().toStdString()));
        return false;
    }
    return true;
}

QByteArray Serializer::saveToByteArray(const Model& model, int options)
{
    return ManifestWriter::write(model, options == Model::Indented ? 2 : 0);
}

Signature Serializer::getModelSignatureFromByteArray(const QByteArray& bytes, ErrorHolder& errors)
{
    // The signature is on the first element: the reader is given the bytes
    // a piece at a time, so that a large document is not decoded whole.
    QXmlStreamReader reader;
    qsizetype given = 0;
    const auto giveMore = [&] {
        const qsizetype piece = std::max<qsizetype>(4096, given);
        reader.addData(bytes.mid(given, piece));
        given = std::min(bytes.size(), given + piece);
    };
    giveMore();
    bool found = reader.readNextStartElement();
    while (!found && reader.error() == QXmlStreamReader::PrematureEndOfDocumentError && given < bytes.size()) {
        giveMore();
        found = reader.readNextStartElement();
    }
    if (!found) {
        errors.addError(reader.hasError() ? "Unable to read the signature: " + reader.errorString().toStdString()
                                          : std::string("Unable to read the signature: empty document"));
        return Signature();
    }
    const QStringView text = reader.attributes().value(QLatin1String("signature"));
    const Signature signature = Signature::fromString(utf8(text));
    if (signature.isNull())
        errors.addError("The document carries no valid signature");
    return signature;
}

} // namespace LibraryBrowser
