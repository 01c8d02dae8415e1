#include "StoreFixture.h"

#include "platform/ErrorHolder.h"
#include "platform/Platform.h"

#include <QDir>
#include <QFile>

namespace LibraryBrowser::Testing {

void StoreFixture::SetUp()
{
    ASSERT_TRUE(scratch.isValid());
    for (const char* dir : {"root", "prefs", "tmp"})
        ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path(dir))));
    m_hadTmpDir = qEnvironmentVariableIsSet("TMPDIR");
    m_savedTmpDir = qgetenv("TMPDIR");
    qputenv("TMPDIR", QByteArray::fromStdString(tempRoot()));

    environment = new RecordingEnvironment(hostRoot(), preferences());
    Platform::setEnvironment(environment);
    interpreter.on("tdprivate:rmdir", [](int, const std::vector<HostValue>& inputs) {
        HostInterpreter::CallResult result;
        result.ok = true;
        const bool removed = QDir(QString::fromStdString(inputs.at(1).toString())).removeRecursively();
        result.outputs = {HostValue::logicalScalar(removed), HostValue::string(removed ? "" : "rmdir failed"),
                          HostValue::string("")};
        return result;
    });
    Platform::setInterpreter(&interpreter);
}

void StoreFixture::TearDown()
{
    Platform::setInterpreter(nullptr);
    Platform::setEnvironment(nullptr);
    delete environment;
    environment = nullptr;
    if (m_hadTmpDir)
        qputenv("TMPDIR", m_savedTmpDir);
    else
        qunsetenv("TMPDIR");
}

std::string StoreFixture::path(const std::string& relative) const
{
    return scratch.path().toStdString() + "/" + relative;
}

QStringList StoreFixture::tempEntries() const
{
    return QDir(QString::fromStdString(tempRoot())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

void StoreFixture::writeFile(const std::string& file, const QByteArray& bytes)
{
    const QString name = QString::fromStdString(file);
    QDir().mkpath(QFileInfo(name).absolutePath());
    QFile out(name);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate)) << file;
    out.write(bytes);
}

QByteArray StoreFixture::readFile(const std::string& file)
{
    QFile in(QString::fromStdString(file));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

bool StoreFixture::exists(const std::string& file)
{
    return QFileInfo::exists(QString::fromStdString(file));
}

void StoreFixture::setModified(const std::string& file, const QDateTime& time)
{
    QFile f(QString::fromStdString(file));
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    ASSERT_TRUE(f.setFileTime(time, QFileDevice::FileModificationTime));
}

LibraryImpl* StoreFixture::addProduct(Model& model, const std::string& name, const std::string& lastModified,
                                      const std::string& shadowedLastModified)
{
    LibraryImpl* product = model.createLibraryImpl();
    product->setUniquePath(StringId(name));
    product->setName(name);
    product->setPath(name);
    product->setDisplayName(name + " Library");
    product->setDisplayPath(name + "Path");
    product->setIsProduct(true);
    product->setIsTopLevel(true);
    product->setReposDirectorySpec("toolbox/" + name);
    product->setReposIconsArchiveSpec("toolbox/" + name + "/lb_" + name + "_icons_repos.rps");
    product->setReposManifestsArchiveSpec("toolbox/" + name + "/lb_" + name + "_manifests_repos.rps");
    product->setModelFileCheckSum("1234");
    product->setLastModified(lastModified);
    product->setShadowedLastModified(shadowedLastModified);
    return product;
}

std::string StoreFixture::topLevelFile(const std::string& store)
{
    return store + "/toolbox/tandril/blocks/lbtoplevelmanifest.xml";
}

std::string StoreFixture::tokenFile(const std::string& store)
{
    return store + "/toolbox/tandril/blocks/.topLevelManifestToken";
}

void StoreFixture::saveManifest(const Model& model, const std::string& file)
{
    QDir().mkpath(QFileInfo(QString::fromStdString(file)).absolutePath());
    ErrorHolder errors;
    ASSERT_TRUE(model.save(file, errors)) << errors.message();
}

bool StoreFixture::logged(const RepositoryReport& report, const std::string& text)
{
    for (const std::string& line : report.getLog())
        if (line.find(text) != std::string::npos)
            return true;
    return false;
}

std::vector<std::string> StoreFixture::errorMessages(const RepositoryReport& report)
{
    std::vector<std::string> messages;
    for (const RepositoryReport::Issue& issue : report.getErrors())
        messages.push_back(issue.message);
    return messages;
}

} // namespace LibraryBrowser::Testing
