#include "TdBlocksParser.h"

#include "JsonFieldReader.h"
#include "JsonFile.h"
#include "LibraryFileParser.h"
#include "SearchPath.h"
#include "repository/xmlrepository/RepositoryPaths.h"

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

void refuseNames(const QString& path, const QByteArray& bytes, const FieldPath& field, const char* key,
                 std::vector<std::string>& names, std::vector<FileIssue>& refused)
{
    std::vector<std::string> kept;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const QString reason = TdBlocksParser::refusedNameReason(key, names[i]);
        if (reason.isEmpty())
            kept.push_back(std::move(names[i]));
        else
            refused.push_back(JsonFile::issueAt(path, bytes, field.index(int(i)), reason));
    }
    names = std::move(kept);
}
} // namespace

QString TdBlocksParser::refusedNameReason(const char* key, const std::string& name)
{
    const bool children = std::string(key) == "children";
    const char* separators = children ? ",\n\r" : "|\n\r";
    if (name.find_first_of(separators) == std::string::npos && !holdsControlCharacter(name))
        return QString();
    return children ? QStringLiteral("a palette child's name may not hold a comma, line feed or control character; "
                                     "it is left out")
                    : QStringLiteral("a dependency's file name may not hold \"|\", a line feed or a control "
                                     "character; it is left out");
}

bool TdBlocksParser::parse(const QString& path, const QString& root, std::vector<TdBlocksEntry>& entries,
                           FileIssue& issue, std::vector<FileIssue>& refused)
{
    const std::size_t refusedBefore = refused.size();
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
        if (reader.requiredString(object, at, "name", entry.productName) && holdsControlCharacter(entry.productName))
            reader.fail(at.key("name"), QStringLiteral("a product name must not hold a control character other "
                                                       "than tab and line feed"));
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
        bool leftOut = false;
        if (reader.optionalString(object, at, "repository", entry.repositoryDirectory)) {
            std::replace(entry.repositoryDirectory.begin(), entry.repositoryDirectory.end(), '\\', '/');
            // The store writes its archives there: it must stay inside the store.
            const std::string problem = storePathProblem(entry.repositoryDirectory);
            if (!problem.empty() && !reader.failed()) {
                refused.push_back(JsonFile::issueAt(
                    path, bytes, at.key(QStringLiteral("repository")),
                    QStringLiteral("the repository directory does not stay inside the store (%1); the entry "
                                   "is left out")
                        .arg(QString::fromStdString(problem))));
                leftOut = true;
            }
        }
        reader.optionalBool(object, at, "flag", entry.flag);
        reader.optionalString(object, at, "treeIcon", entry.treeIcon);
        reader.optionalString(object, at, "panelIcon", entry.panelIcon);
        if (reader.optionalStringList(object, at, "children", entry.children) && entry.type != EntryType::Palette)
            reader.fail(at.key("children"), QStringLiteral("only a Palette lists children"));
        reader.optionalStringList(object, at, "dependencies", entry.dependencies);
        for (const char* key : {"children", "dependencies"})
            refuseNames(path, bytes, at.key(QString::fromLatin1(key)), key,
                        key[0] == 'c' ? entry.children : entry.dependencies, refused);
        entry.treeIcon = hostFileSpec(base, root, entry.treeIcon);
        entry.panelIcon = hostFileSpec(base, root, entry.panelIcon);
        for (std::string& dependency : entry.dependencies)
            dependency = hostFileSpec(base, root, dependency);
        if (!leftOut)
            read.push_back(std::move(entry));
    }
    if (reader.failed()) {
        // The whole file is left out: a warning that a name in it was left
        // out would only mislead.
        refused.resize(refusedBefore);
        issue = JsonFile::issueAt(path, bytes, reader.errorField(), reader.errorMessage());
        return false;
    }
    entries.insert(entries.end(), read.begin(), read.end());
    return true;
}

} // namespace LibraryBrowser::Host
