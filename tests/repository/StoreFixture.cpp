#include "StoreFixture.h"

#include "platform/ErrorHolder.h"
#include "platform/Platform.h"
#include "platform/ZipArchive.h"
#include "repository/TandrilObjectIterator.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/XMLRepositoryWriter.h"

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

    environment = new RecordingEnvironment(hostRoot(), path("prefs"));
    Platform::setEnvironment(environment);
    interpreter.on("tdprivate:rmdir", [](int, const std::vector<HostValue>& inputs) {
        const bool removed = QDir(QString::fromStdString(inputs.at(1).toString())).removeRecursively();
        return HostInterpreter::CallResult{true, {HostValue::logicalScalar(removed),
                                                  HostValue::string(removed ? "" : "rmdir failed"), HostValue::string("")}, {}, {}};
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

void StoreFixture::saveManifest(const Model& model, const std::string& file)
{
    QDir().mkpath(QFileInfo(QString::fromStdString(file)).absolutePath());
    ErrorHolder errors;
    ASSERT_TRUE(model.save(file, errors)) << errors.message();
}

LibraryImpl* StoreFixture::addRecordedSignals(Model& nodes, const std::string& dependencySpec)
{
    writeFile(store() + "/signals/icons.rps", "icons");
    writeFile(store() + "/signals/manifests.rps", "manifests");
    LibraryImpl* product = nodes.createLibraryImpl();
    product->setName("Signals");
    product->setPath("signals");
    product->setReposIconsArchiveSpec("signals/icons.rps");
    product->setReposManifestsArchiveSpec("signals/manifests.rps");
    recordModelFile(*product, "toolbox/signals/signals.tdlib.json");
    const std::string file = hostRoot() + "/" + dependencySpec;
    product->setFileDependencies({{dependencySpec, computeCheckSum(*RepositoryReport::create(), file), fileDate(file),
                                   std::uint64_t(readFile(file).size())}});
    return product;
}

void StoreFixture::recordModelFile(LibraryImpl& library, const std::string& spec)
{
    const std::string file = hostRoot() + "/" + spec;
    library.setModelFileSpec(spec);
    library.setModelFileCheckSum(computeCheckSum(*RepositoryReport::create(), file));
    library.setModelFileSize(readFile(file).size());
    library.setModelFileDate(std::int32_t(fileDate(file)));
    m_modelFiles[library.getPath()] = spec;
    interpreter.on("tdprivate:lb_getLibraryData", [this](int, const std::vector<HostValue>& inputs) {
        const auto it = m_modelFiles.find(inputs.at(2).toString());
        if (it == m_modelFiles.end())
            return HostInterpreter::CallResult{};
        return HostInterpreter::CallResult{true, {HostValue::cellOfStrings({it->second}),
            HostValue::doubleScalar(double(readFile(hostRoot() + "/" + it->second).size())), HostValue()}, {}, {}};
    });
}

void StoreFixture::setAlphaAndBeta(int alphaBlocks, int betaBlocks)
{
    std::vector<ScriptedProduct> products{{"Alpha Library", "Alpha"}};
    libraries.setLibrary("Alpha", blocks("A", alphaBlocks));
    if (betaBlocks > 0) {
        products.push_back({"Beta Library", "Beta"});
        libraries.setLibrary("Beta", blocks("B", betaBlocks));
    }
    libraries.setProducts(std::move(products));
}

void StoreFixture::generate(GenerationMode mode)
{
    report = RepositoryReport::create();
    XMLRepositoryWriter(store(), report).generateRepository(mode);
}

std::vector<std::string> StoreFixture::entries(const std::string& product, const std::string& kind) const
{
    ZipArchive zip;
    return zip.open(archive(product, kind), ZipArchive::ReadOnly) ? zip.entryNames() : std::vector<std::string>();
}

std::vector<std::string> StoreFixture::childNames(const std::string& id)
{
    XMLRepositoryReader reader(store(), RepositoryReport::create());
    std::vector<std::string> names;
    for (TandrilObjectIterator it = reader.getChildrenIterator(reader.getTandrilObject(id)); it.isValidIterator();
         it.next())
        names.push_back(it.current().getName());
    return names;
}

std::vector<ScriptedBlock> StoreFixture::blocks(const std::string& prefix, int count)
{
    std::vector<ScriptedBlock> result;
    for (int i = 0; i < count; ++i)
        result.push_back({prefix + std::to_string(i)});
    return result;
}

void StoreFixture::makeShippedStore(std::initializer_list<const char*> names)
{
    auto model = Model::createModel();
    std::vector<ScriptedProduct> announced;
    for (const std::string name : names) {
        announced.push_back({name + " Library", name, "Product", {}, {}});
        addProduct(*model, name, "shipped-1");
        writeFile(archive(shipped(), name, "icons"), QByteArray::fromStdString("shipped icons of " + name));
        writeFile(archive(shipped(), name, "manifests"), QByteArray::fromStdString("shipped manifests of " + name));
    }
    libraries.setProducts(announced);
    saveManifest(*model, topLevelFile(shipped()));
    setModified(topLevelFile(shipped()), shippedDate);
}

XMLRepositoryPtr StoreFixture::openRepository()
{
    return std::dynamic_pointer_cast<XMLRepository>(Repository::open(writable(), shipped(), {"/host/path"}));
}

std::string StoreFixture::currentToken() const
{
    return QFileInfo(QString::fromStdString(topLevelFile(shipped()))).lastModified().toString(Qt::TextDate).toStdString();
}

} // namespace LibraryBrowser::Testing
