#include "LibraryFileParser.h"

#include "BlockPath.h"
#include "JsonFile.h"
#include "repository/xmlrepository/RepositoryPaths.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QXmlStreamReader>

#include <unordered_set>

namespace LibraryBrowser::Host {

namespace {
// Blocks without a position are laid out in rows of this many.
constexpr int defaultColumns = 5;

BlockPosition defaultPosition(int index)
{
    const double left = 30 + (index % defaultColumns) * 110;
    const double top = 30 + (index / defaultColumns) * 90;
    return {left, top, left + 60, top + 50};
}

bool isWellFormedSvg(const std::string& text)
{
    QXmlStreamReader xml(QByteArray::fromStdString(text));
    bool sawRoot = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && !sawRoot) {
            if (xml.name() != QLatin1String("svg"))
                return false;
            sawRoot = true;
        }
    }
    return sawRoot && !xml.hasError();
}
} // namespace

std::shared_ptr<LibraryDocument> LibraryFileParser::parseFile(const QString& path, const std::string& expectedName,
                                                              FileIssue& issue)
{
    QByteArray bytes;
    QJsonObject top;
    if (!JsonFile::read(path, bytes, top, issue))
        return nullptr;
    return LibraryFileParser().parse(path, bytes, top, expectedName, issue);
}

std::shared_ptr<LibraryDocument> LibraryFileParser::parseBytes(const QString& path, const QByteArray& bytes,
                                                               const std::string& expectedName, FileIssue& issue)
{
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject()) {
        issue = JsonFile::issueAt(path, bytes, FieldPath(), QStringLiteral("not a JSON object"));
        return nullptr;
    }
    return LibraryFileParser().parse(path, bytes, doc.object(), expectedName, issue);
}

bool LibraryFileParser::isValidLibraryName(const std::string& name)
{
    return !name.empty() && name.find_first_of("/\\\n") == std::string::npos && !holdsControlCharacter(name);
}

std::shared_ptr<LibraryDocument> LibraryFileParser::parse(const QString& path, const QByteArray& bytes,
                                                          const QJsonObject& top, const std::string& expectedName,
                                                          FileIssue& issue)
{
    auto doc = std::make_shared<LibraryDocument>();
    doc->filePath = path;
    const FieldPath root;
    m_reader.checkKeys(top, root, {"format", "version", "name", "kind", "description", "blocks"});
    m_reader.header(top, format, LibraryDocument::currentVersion, doc->version);
    if (m_reader.requiredString(top, root, "name", doc->name)) {
        if (!isValidLibraryName(doc->name))
            m_reader.fail(root.key("name"), QStringLiteral("a library name must not be empty nor hold a slash, "
                                                           "backslash, line feed or control character"));
        else if (!expectedName.empty() && doc->name != expectedName)
            m_reader.fail(root.key("name"), QStringLiteral("the library is named \"%1\" but its file is named for "
                                                           "\"%2\"")
                                                .arg(QString::fromStdString(doc->name),
                                                     QString::fromStdString(expectedName)));
    }
    std::string kind;
    if (m_reader.optionalString(top, root, "kind", kind)) {
        doc->library = kind == "library";
        if (!doc->library && kind != "model")
            m_reader.fail(root.key("kind"), QStringLiteral("unknown kind \"%1\" (expected model or library)")
                                                .arg(QString::fromStdString(kind)));
    }
    m_reader.optionalString(top, root, "description", doc->description);
    QJsonArray blocks;
    if (m_reader.requiredArray(top, root, "blocks", blocks))
        readBlocks(blocks, root.key("blocks"), 1, doc->blocks);
    if (m_reader.failed()) {
        issue = JsonFile::issueAt(path, bytes, m_reader.errorField(), m_reader.errorMessage());
        return nullptr;
    }
    doc->source = bytes;
    return doc;
}

void LibraryFileParser::readBlocks(const QJsonArray& array, const FieldPath& at, int depth,
                                   std::vector<BlockRecord>& out)
{
    if (depth > maximumDepth) {
        m_reader.fail(at, QStringLiteral("subsystems are nested deeper than %1 levels").arg(maximumDepth));
        return;
    }
    out.resize(static_cast<std::size_t>(array.size()));
    std::unordered_set<std::string> names;
    for (int i = 0; i < array.size() && !m_reader.failed(); ++i) {
        const FieldPath here = at.index(i);
        if (!array[i].isObject()) {
            m_reader.fail(here, QStringLiteral("a block must be an object"));
            return;
        }
        readBlock(array[i].toObject(), here, depth, i, out[i]);
        if (!m_reader.failed() && !names.insert(BlockPath::matchKey(out[i].name)).second)
            m_reader.fail(here.key("name"), QStringLiteral("another block of this subsystem is already named \"%1\" "
                                                           "(line feeds count as blanks)")
                                                .arg(QString::fromStdString(out[i].name)));
    }
}

void LibraryFileParser::readBlock(const QJsonObject& object, const FieldPath& at, int depth, int index,
                                  BlockRecord& out)
{
    m_reader.checkKeys(object, at,
                       {"name", "type", "description", "position", "icon", "blocks", "target", "parameters"});
    if (m_reader.requiredString(object, at, "name", out.name) && !BlockPath::isAddressable(out.name))
        m_reader.fail(at.key("name"), QStringLiteral("a block name must not be empty nor begin or end with a slash"));
    else if (holdsControlCharacter(out.name))
        m_reader.fail(at.key("name"), QStringLiteral("a block name must not hold a control character other than "
                                                     "tab and line feed"));
    std::string type;
    if (m_reader.requiredString(object, at, "type", type)) {
        if (type == "Block")
            out.type = BlockType::Block;
        else if (type == "SubSystem")
            out.type = BlockType::SubSystem;
        else if (type == "LibraryRef")
            out.type = BlockType::LibraryRef;
        else
            m_reader.fail(at.key("type"), QStringLiteral("unknown block type \"%1\" (expected Block, SubSystem or "
                                                         "LibraryRef)")
                                              .arg(QString::fromStdString(type)));
    }
    out.hasDescription = m_reader.optionalString(object, at, "description", out.description);
    readPosition(object, at, index, out.position);
    out.icon.shape = out.type == BlockType::Block ? IconShape::Rectangle : IconShape::Rounded;
    QJsonObject icon;
    out.hasIcon = m_reader.optionalObject(object, at, "icon", icon);
    if (out.hasIcon)
        readIcon(icon, at.key("icon"), out.icon);
    QJsonObject parameters;
    if (m_reader.optionalObject(object, at, "parameters", parameters)) {
        for (auto it = parameters.constBegin(); it != parameters.constEnd() && !m_reader.failed(); ++it) {
            if (!it.value().isString())
                m_reader.fail(at.key("parameters").key(it.key()),
                              QStringLiteral("a parameter's value must be a string"));
            else
                out.parameters.emplace_back(it.key().toStdString(), it.value().toString().toStdString());
        }
    }
    if (m_reader.failed())
        return;

    const bool hasBlocks = object.contains(QLatin1String("blocks"));
    const bool hasTarget = object.contains(QLatin1String("target"));
    if (out.type == BlockType::SubSystem) {
        if (hasTarget)
            m_reader.fail(at.key("target"), QStringLiteral("only a LibraryRef has a target"));
        else if (hasBlocks) {
            QJsonArray blocks;
            if (m_reader.requiredArray(object, at, "blocks", blocks))
                readBlocks(blocks, at.key("blocks"), depth + 1, out.blocks);
        }
    } else if (hasBlocks) {
        m_reader.fail(at.key("blocks"), QStringLiteral("only a SubSystem holds blocks"));
    } else if (out.type == BlockType::LibraryRef) {
        QJsonObject target;
        if (!m_reader.optionalObject(object, at, "target", target)) {
            if (!m_reader.failed())
                m_reader.fail(at.key("target"), QStringLiteral("a LibraryRef needs a target"));
            return;
        }
        readTarget(target, at.key("target"), out.target);
    } else if (hasTarget) {
        m_reader.fail(at.key("target"), QStringLiteral("only a LibraryRef has a target"));
    }
}

void LibraryFileParser::readPosition(const QJsonObject& object, const FieldPath& at, int index, BlockPosition& out)
{
    const auto it = object.constFind(QLatin1String("position"));
    if (it == object.constEnd()) {
        out = defaultPosition(index);
        return;
    }
    const FieldPath field = at.key("position");
    const QJsonArray edges = it->toArray();
    if (!it->isArray() || edges.size() != 4) {
        m_reader.fail(field, QStringLiteral("expected four numbers: left, top, right, bottom"));
        return;
    }
    double values[4];
    for (int i = 0; i < 4; ++i) {
        if (!edges[i].isDouble()) {
            m_reader.fail(field.index(i), QStringLiteral("expected a number"));
            return;
        }
        values[i] = edges[i].toDouble();
    }
    out = {values[0], values[1], values[2], values[3]};
    if (out.right < out.left || out.bottom < out.top)
        m_reader.fail(field, QStringLiteral("right must not be left of left, nor bottom above top"));
}

void LibraryFileParser::readIcon(const QJsonObject& object, const FieldPath& at, IconSpec& out)
{
    m_reader.checkKeys(object, at, {"shape", "label", "inputs", "outputs", "svg"});
    std::string shape;
    if (m_reader.optionalString(object, at, "shape", shape)) {
        if (shape == "rectangle")
            out.shape = IconShape::Rectangle;
        else if (shape == "rounded")
            out.shape = IconShape::Rounded;
        else if (shape == "triangle")
            out.shape = IconShape::Triangle;
        else if (shape == "circle")
            out.shape = IconShape::Circle;
        else if (shape == "diamond")
            out.shape = IconShape::Diamond;
        else
            m_reader.fail(at.key("shape"), QStringLiteral("unknown shape \"%1\" (expected rectangle, rounded, "
                                                          "triangle, circle or diamond)")
                                               .arg(QString::fromStdString(shape)));
    }
    m_reader.optionalString(object, at, "label", out.label);
    m_reader.optionalCount(object, at, "inputs", 64, out.inputs);
    m_reader.optionalCount(object, at, "outputs", 64, out.outputs);
    if (m_reader.optionalString(object, at, "svg", out.svg) && !isWellFormedSvg(out.svg))
        m_reader.fail(at.key("svg"), QStringLiteral("not a well-formed SVG document"));
}

void LibraryFileParser::readTarget(const QJsonObject& object, const FieldPath& at, ReferenceTarget& out)
{
    m_reader.checkKeys(object, at, {"library", "path"});
    if (m_reader.requiredString(object, at, "library", out.library) && !isValidLibraryName(out.library))
        m_reader.fail(at.key("library"), QStringLiteral("not a valid library name"));
    m_reader.optionalString(object, at, "path", out.path);
}

} // namespace LibraryBrowser::Host
