#include "GenerationFixture.h"

#include "repository/BlockIcon.h"
#include "support/Files.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>

#include <algorithm>


namespace LibraryBrowser::Testing {

namespace {

void countDeclared(const QJsonArray& blocks, TreeCounts& counts)
{
    for (const QJsonValue& value : blocks) {
        const QString type = value.toObject().value("type").toString();
        counts.blocks += type == "Block";
        counts.references += type == "LibraryRef";
        if (type == "SubSystem") {
            ++counts.subsystems;
            countDeclared(value.toObject().value("blocks").toArray(), counts);
        }
    }
}

void countStored(XMLRepositoryReader& reader, const TandrilObject& parent, TreeCounts& counts)
{
    for (TandrilObjectIterator it = reader.getChildrenIterator(parent); it.isValidIterator(); it.next()) {
        const TandrilObject child = it.current();
        const BlockIconPtr icon = reader.getIcon(child);
        counts.icons += icon && BlockIcon::isSvgDocument(icon->svg());
        counts.references += child.isLibraryRef();
        counts.blocks += !child.isSubSystem();
        if (child.isSubSystem() && !child.isLibraryRef()) {
            ++counts.subsystems;
            countStored(reader, child, counts);
        }
    }
}

} // namespace

void GenerationFixture::SetUp()
{
    for (const auto& [file, bytes] : snapshot(Host::HostOptions::bundledRoot().toStdString()))
        if (copiesRootFile(file))
            writeFile(root() + "/" + file.toStdString(), bytes);
    addRootFiles();
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    options.root = m_root.path();
    options.preferencesDirectory = m_prefs.path();
    m_host = std::make_unique<Host::EmbeddedHost>(options);
    m_host->install();
}

void GenerationFixture::generate(GenerationMode mode)
{
    report = RepositoryReport::create();
    makeWriter()->generateRepository(mode);
}

std::vector<std::string> GenerationFixture::paths(TandrilObjectIterator it, bool sorted)
{
    std::vector<std::string> result;
    for (; it.isValidIterator(); it.next())
        result.push_back(it.current().getPath());
    if (sorted)
        std::sort(result.begin(), result.end());
    return result;
}

TreeCounts GenerationFixture::declaredCounts(const std::string& product) const
{
    TreeCounts counts;
    countDeclared(QJsonDocument::fromJson(readFile(libraryFile(product))).object().value("blocks").toArray(), counts);
    return counts;
}

TreeCounts GenerationFixture::storedCounts(XMLRepositoryReader& reader, const std::string& product) const
{
    TreeCounts counts;
    countStored(reader, reader.getTandrilObject(product), counts);
    return counts;
}

std::map<std::string, std::string> GenerationFixture::archiveStamps() const
{
    // The checksum alone would miss an archive written again unchanged.
    std::map<std::string, std::string> stamps;
    QDirIterator it(m_store.path(), {"*.rps"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const std::string path = it.next().toStdString();
        const qint64 time = QFileInfo(QString::fromStdString(path)).lastModified().toMSecsSinceEpoch();
        const QByteArray md5 = QCryptographicHash::hash(readFile(path), QCryptographicHash::Md5).toHex();
        stamps[path] = md5.toStdString() + " " + std::to_string(time);
    }
    return stamps;
}

std::string GenerationFixture::logText() const
{
    std::string text;
    for (const std::string& line : report->getLog())
        text += line;
    return text;
}

void GenerationFixture::editRootFile(const std::string& relative, const std::string& from,
                                     const std::string& to) const
{
    QByteArray bytes = readFile(root() + "/" + relative);
    ASSERT_TRUE(bytes.contains(QByteArray::fromStdString(from))) << from << " in " << relative;
    writeRootFile(relative, bytes.replace(QByteArray::fromStdString(from), QByteArray::fromStdString(to)));
}

void GenerationFixture::writeRootFile(const std::string& relative, const QByteArray& bytes) const
{
    writeFile(root() + "/" + relative, bytes);
    // Dates count in whole seconds: an edit within the second of the last
    // generation would look unchanged, where a user's edit comes later.
    setModified(root() + "/" + relative, QDateTime::currentDateTime().addSecs(60));
}

} // namespace LibraryBrowser::Testing
