#include "LibraryFileWriter.h"

#include "LibraryFileParser.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace LibraryBrowser::Host {

namespace {
QString text(const std::string& s)
{
    return QString::fromStdString(s);
}

const char* shapeText(IconShape shape)
{
    switch (shape) {
    case IconShape::Rounded: return "rounded";
    case IconShape::Triangle: return "triangle";
    case IconShape::Circle: return "circle";
    case IconShape::Diamond: return "diamond";
    case IconShape::Rectangle: break;
    }
    return "rectangle";
}

QJsonArray blocksToJson(const std::vector<BlockRecord>& blocks);

QJsonObject blockToJson(const BlockRecord& block)
{
    QJsonObject object;
    object.insert("name", text(block.name));
    object.insert("type", QLatin1String(blockTypeName(block.type)));
    if (block.hasDescription)
        object.insert("description", text(block.description));
    const BlockPosition& p = block.position;
    object.insert("position", QJsonArray{p.left, p.top, p.right, p.bottom});
    if (block.hasIcon) {
        QJsonObject icon;
        if (!block.icon.svg.empty()) {
            icon.insert("svg", text(block.icon.svg));
        } else {
            icon.insert("shape", QLatin1String(shapeText(block.icon.shape)));
            if (!block.icon.label.empty())
                icon.insert("label", text(block.icon.label));
            icon.insert("inputs", block.icon.inputs);
            icon.insert("outputs", block.icon.outputs);
        }
        object.insert("icon", icon);
    }
    if (!block.parameters.empty()) {
        QJsonObject parameters;
        for (const auto& [name, value] : block.parameters)
            parameters.insert(text(name), text(value));
        object.insert("parameters", parameters);
    }
    if (block.type == BlockType::SubSystem)
        object.insert("blocks", blocksToJson(block.blocks));
    if (block.type == BlockType::LibraryRef) {
        QJsonObject target{{"library", text(block.target.library)}};
        if (!block.target.path.empty())
            target.insert("path", text(block.target.path));
        object.insert("target", target);
    }
    return object;
}

QJsonArray blocksToJson(const std::vector<BlockRecord>& blocks)
{
    QJsonArray array;
    for (const BlockRecord& block : blocks)
        array.append(blockToJson(block));
    return array;
}
} // namespace

QByteArray LibraryFileWriter::toBytes(const LibraryDocument& document)
{
    QJsonObject top;
    top.insert("format", QLatin1String(LibraryFileParser::format));
    top.insert("version", LibraryDocument::currentVersion);
    top.insert("name", text(document.name));
    if (document.library)
        top.insert("kind", QLatin1String("library"));
    if (!document.description.empty())
        top.insert("description", text(document.description));
    top.insert("blocks", blocksToJson(document.blocks));
    return QJsonDocument(top).toJson(QJsonDocument::Indented);
}

bool LibraryFileWriter::save(const LibraryDocument& document, const QString& path, QString& error)
{
    const QString directory = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(directory)) {
        error = QStringLiteral("cannot make the directory %1").arg(directory);
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray bytes = toBytes(document);
    if (file.write(bytes) != bytes.size() || !file.commit()) {
        error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace LibraryBrowser::Host
