#include "TdBlocksParser.h"

#include "JsonFieldReader.h"
#include "JsonFile.h"
#include "LibraryFileParser.h"
#include "SearchPath.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>

namespace LibraryBrowser::Host {

namespace {
std::string hostFileSpec(const QDir& base, const QString& root, const std::string& spec)
{
    if (spec.empty())
        return spec;
    QString given = QString::fromStdString(spec);
    given.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return SearchPath::fileSpec(root, base.absoluteFilePath(given));
}
} // namespace

bool TdBlocksParser::parse(const QString& path, const QString& root, std::vector<TdBlocksEntry>& entries,
                           FileIssue& issue)
{
    QByteArray bytes;
    QJsonObject top;
    if (!JsonFile::read(path, bytes, top, issue))
        return false;
    const QDir base = QFileInfo(path).absoluteDir();
    JsonFieldReader reader;
    const FieldPath rootField;
    int version = 0;
    reader.checkKeys(top, rootField, {"format", "version", "entries"});
    reader.header(top, format, currentVersion, version);
    QJsonArray array;
    reader.requiredArray(top, rootField, "entries", array);
    std::vector<TdBlocksEntry> read;
    for (int i = 0; i < array.size() && !reader.failed(); ++i) {
        const FieldPath at = rootField.key("entries").index(i);
        if (!array[i].isObject()) {
            reader.fail(at, QStringLiteral("an entry must be an object"));
            break;
        }
        const QJsonObject object = array[i].toObject();
        reader.checkKeys(object, at,
                         {"name", "library", "repository", "type", "treeIcon", "panelIcon", "children",
                          "dependencies", "flag"});
        TdBlocksEntry entry;
        reader.requiredString(object, at, "name", entry.productName);
        if (reader.requiredString(object, at, "library", entry.library)
            && !LibraryFileParser::isValidLibraryName(entry.library))
            reader.fail(at.key("library"), QStringLiteral("not a valid library name"));
        std::string type;
        if (reader.requiredString(object, at, "type", type)) {
            const QString word = QString::fromStdString(type);
            if (word.compare(QLatin1String("Product"), Qt::CaseInsensitive) == 0)
                entry.type = EntryType::Product;
            else if (word.compare(QLatin1String("Palette"), Qt::CaseInsensitive) == 0)
                entry.type = EntryType::Palette;
            else
                reader.fail(at.key("type"),
                            QStringLiteral("unknown entry type \"%1\" (expected Product or Palette)").arg(word));
        }
        entry.repositoryDirectory = entry.library;
        if (reader.optionalString(object, at, "repository", entry.repositoryDirectory))
            std::replace(entry.repositoryDirectory.begin(), entry.repositoryDirectory.end(), '\\', '/');
        reader.optionalBool(object, at, "flag", entry.flag);
        reader.optionalString(object, at, "treeIcon", entry.treeIcon);
        reader.optionalString(object, at, "panelIcon", entry.panelIcon);
        if (reader.optionalStringList(object, at, "children", entry.children) && entry.type != EntryType::Palette)
            reader.fail(at.key("children"), QStringLiteral("only a Palette lists children"));
        reader.optionalStringList(object, at, "dependencies", entry.dependencies);
        entry.treeIcon = hostFileSpec(base, root, entry.treeIcon);
        entry.panelIcon = hostFileSpec(base, root, entry.panelIcon);
        for (std::string& dependency : entry.dependencies)
            dependency = hostFileSpec(base, root, dependency);
        read.push_back(std::move(entry));
    }
    if (reader.failed()) {
        issue = JsonFile::issueAt(path, bytes, reader.errorField(), reader.errorMessage());
        return false;
    }
    entries.insert(entries.end(), read.begin(), read.end());
    return true;
}

} // namespace LibraryBrowser::Host
