#include "GenerationFixture.h"

#include "repository/BlockIcon.h"
#include "repository/TandrilObjectIterator.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>

namespace LibraryBrowser::Testing {

namespace {

void copyTree(const QString& from, const QString& to)
{
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString target = to + "/" + QDir(from).relativeFilePath(file);
        QDir().mkpath(QFileInfo(target).absolutePath());
        QFile::copy(file, target);
        QFile::setPermissions(target, QFile::permissions(target) | QFileDevice::WriteOwner);
    }
}

void countDeclared(const QJsonArray& blocks, TreeCounts& counts)
{
    for (const QJsonValue& value : blocks) {
        const QJsonObject block = value.toObject();
        const QString type = block.value("type").toString();
        if (type == "Block")
            ++counts.blocks;
        else if (type == "LibraryRef")
            ++counts.references;
        else if (type == "SubSystem") {
            ++counts.subsystems;
            countDeclared(block.value("blocks").toArray(), counts);
        }
    }
}

void countStored(XMLRepositoryReader& reader, const TandrilObject& parent, TreeCounts& counts)
{
    for (TandrilObjectIterator it = reader.getChildrenIterator(parent); it.isValidIterator(); it.next()) {
        const TandrilObject child = it.current();
        const BlockIconPtr icon = reader.getIcon(child);
        if (icon && BlockIcon::isSvgDocument(icon->svg()))
            ++counts.icons;
        if (child.isLibraryRef()) {
            ++counts.references;
        } else if (child.isSubSystem()) {
            ++counts.subsystems;
            countStored(reader, child, counts);
        } else {
            ++counts.blocks;
        }
    }
}

} // namespace

void GenerationFixture::SetUp()
{
    copyTree(Host::HostOptions::bundledRoot(), m_root.path());
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    options.root = m_root.path();
    options.preferencesDirectory = m_prefs.path();
    m_host = std::make_unique<Host::EmbeddedHost>(options);
    m_host->install();
}

void GenerationFixture::TearDown()
{
    m_host.reset();
}

std::string GenerationFixture::preferences() const
{
    return m_prefs.path().toStdString();
}

std::string GenerationFixture::libraryFile(const std::string& product) const
{
    const std::string directory = product == "tandril" ? "tandril/blocks" : product;
    return root() + "/toolbox/" + directory + "/" + product + ".tdlib.json";
}

std::unique_ptr<XMLRepositoryWriter> GenerationFixture::makeWriter()
{
    return std::make_unique<XMLRepositoryWriter>(store(), report);
}

void GenerationFixture::generate(GenerationMode mode)
{
    report = RepositoryReport::create();
    makeWriter()->generateRepository(mode);
}

std::unique_ptr<XMLRepositoryReader> GenerationFixture::makeReader()
{
    return std::make_unique<XMLRepositoryReader>(store(), RepositoryReport::create());
}

TreeCounts GenerationFixture::declaredCounts(const std::string& product) const
{
    QFile file(QString::fromStdString(libraryFile(product)));
    file.open(QIODevice::ReadOnly);
    TreeCounts counts;
    countDeclared(QJsonDocument::fromJson(file.readAll()).object().value("blocks").toArray(), counts);
    return counts;
}

TreeCounts GenerationFixture::storedCounts(XMLRepositoryReader& reader, const std::string& product) const
{
    TreeCounts counts;
    const TandrilObject library = reader.getTandrilObject(product);
    if (library.isValid())
        countStored(reader, library, counts);
    return counts;
}

std::map<std::string, std::string> GenerationFixture::archiveStamps() const
{
    std::map<std::string, std::string> stamps;
    QDirIterator it(m_store.path(), {"*.rps"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        const QByteArray md5 = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5).toHex();
        const QDateTime time = QFileInfo(path).lastModified();
        stamps[path.toStdString()] = md5.toStdString() + " " + std::to_string(time.toMSecsSinceEpoch());
    }
    return stamps;
}

std::string GenerationFixture::archiveOf(const std::string& product, const char* kind) const
{
    return store() + "/" + product + "/lb_" + product + "_" + kind + "_repos.rps";
}

std::string GenerationFixture::logText() const
{
    std::string text;
    for (const std::string& line : report->getLog())
        text += line + "\n";
    return text;
}

bool GenerationFixture::logHas(const std::string& text) const
{
    return logCount(text) > 0;
}

int GenerationFixture::logCount(const std::string& text) const
{
    int count = 0;
    for (const std::string& line : report->getLog())
        if (line.find(text) != std::string::npos)
            ++count;
    return count;
}

void GenerationFixture::editRootFile(const std::string& relative, const std::string& from,
                                     const std::string& to) const
{
    const QString path = m_root.path() + "/" + QString::fromStdString(relative);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    file.close();
    ASSERT_TRUE(bytes.contains(QByteArray::fromStdString(from))) << from << " in " << relative;
    bytes.replace(QByteArray::fromStdString(from), QByteArray::fromStdString(to));
    writeRootFile(relative, bytes);
}

void GenerationFixture::writeRootFile(const std::string& relative, const QByteArray& bytes) const
{
    QFile file(m_root.path() + "/" + QString::fromStdString(relative));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
    file.flush();
    // Dates count in whole seconds: an edit within the second of the last
    // generation would look unchanged, where a user's edit comes later.
    file.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime);
}

} // namespace LibraryBrowser::Testing
