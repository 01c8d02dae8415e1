#include "StoreFixture.h"

#include "platform/ErrorHolder.h"
#include "platform/Platform.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <QDir>
#include <QFileInfo>

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
    interpreter.on("tdprivate:lb_getLibraryData", [this](int, const std::vector<HostValue>& inputs) {
        HostInterpreter::CallResult result;
        const auto it = m_modelFiles.find(inputs.at(2).toString());
        result.ok = it != m_modelFiles.end();
        if (result.ok)
            result.outputs = {HostValue::cellOfStrings({it->second}),
                              HostValue::doubleScalar(double(readFile(hostRoot() + "/" + it->second).size())),
                              HostValue()};
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

std::string StoreFixture::archive(const std::string& store, const std::string& product, const std::string& kind)
{
    return store + "/toolbox/" + product + "/lb_" + product + "_" + kind + "_repos.rps";
}

void StoreFixture::saveManifest(const Model& model, const std::string& file)
{
    QDir().mkpath(QFileInfo(QString::fromStdString(file)).absolutePath());
    ErrorHolder errors;
    ASSERT_TRUE(model.save(file, errors)) << errors.message();
}

void StoreFixture::recordModelFile(LibraryImpl& library, const std::string& spec)
{
    const std::string file = hostRoot() + "/" + spec;
    RepositoryReport report;
    library.setModelFileSpec(spec);
    library.setModelFileCheckSum(computeCheckSum(report, file));
    library.setModelFileSize(readFile(file).size());
    library.setModelFileDate(std::int32_t(fileDate(file)));
    m_modelFiles[library.getPath()] = spec;
}

int StoreFixture::loggedCount(const RepositoryReport& report, const std::string& text)
{
    int n = 0;
    for (const std::string& line : report.getLog())
        n += line.find(text) != std::string::npos;
    return n;
}

std::vector<std::string> StoreFixture::errorMessages(const RepositoryReport& report)
{
    std::vector<std::string> messages;
    for (const RepositoryReport::Issue& issue : report.getErrors())
        messages.push_back(issue.message);
    return messages;
}

} // namespace LibraryBrowser::Testing
