#include "repository/xmlrepository/XMLRepositoryReaderCache.h"

#include "model/Serializer.h"
#include "platform/ErrorHolder.h"
#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/RepositoryReader.h"
#include "repository/search/IsValidProductCriteria.h"
#include "repository/search/TandrilObjectSearchIterator.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/TempDirectories.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <QFile>

namespace LibraryBrowser {

XMLRepositoryReaderCache::XMLRepositoryReaderCache(std::string directory, RepositoryReportPtr report,
                                                   RepositoryReader* reader)
    : m_directory(std::move(directory)), m_report(std::move(report)), m_reader(reader)
{
    ReaderCacheRegistry::add(m_directory, this);
}

XMLRepositoryReaderCache::~XMLRepositoryReaderCache()
{
    ReaderCacheRegistry::remove(m_directory, this);
    m_productCaches.clear();
    unloadTopLevel();
}

QByteArray XMLRepositoryReaderCache::readTopLevelBytes()
{
    static int topLevelReads = 0;
    if (m_directory.empty()) {
        m_report->log("The repository path is empty");
        return QByteArray();
    }
    const std::string path = XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false);
    if (!XMLRepository::waitForFile(path)) {
        m_report->log("The top level manifest does not exist");
        return QByteArray();
    }
    const int number = topLevelReads++;
    const std::string temp = topLevelTempDirectory(*m_report, number);
    if (temp.empty())
        return QByteArray();
    const std::string copy = temp + "/cachedTopLevel.xml";
    QByteArray bytes;
    QFile file(QString::fromStdString(copy));
    if (copyFile(*m_report, path, copy) && file.open(QIODevice::ReadOnly)) {
        bytes = file.readAll();
        file.close();
    } else {
        m_report->logError("Unable to read top level manifest file " + path);
    }
    removeNamedTempDirectory(*m_report, "LBTop" + std::to_string(number));
    return bytes;
}

ModelPtr XMLRepositoryReaderCache::getTopLevelModel()
{
    if (m_topLevelModel)
        return m_topLevelModel;
    const QByteArray bytes = readTopLevelBytes();
    if (bytes.isEmpty())
        return nullptr;
    ModelPtr model = Model::createModel();
    ErrorHolder errors;
    model->beginChangeSet();
    const bool loaded = Serializer::loadFromByteArray(*model, bytes, errors);
    model->commitChangeSet();
    reportLoadWarnings(*m_report, errors);
    if (!loaded || errors.hasError()) {
        // The file stays as it is: repair is the writer's business.
        m_report->logError("The top level manifest file looks corrupted. Returning an empty manifest.");
        return nullptr;
    }
    m_topLevelModel = model;
    auto handles = std::make_shared<TandrilObjectList>();
    for (TandrilObjectImpl* node : model->getNodes())
        handles->emplace_back(node, m_reader->getCache());
    m_topLevelHandles = std::move(handles);
    return m_topLevelModel;
}

const TandrilObjectListPtr& XMLRepositoryReaderCache::topLevelHandles()
{
    const TandrilObjectImplList& nodes = m_topLevelModel->getNodes();
    for (std::size_t i = 0; i < m_topLevelHandles->size(); ++i) {
        const TandrilObject& handle = (*m_topLevelHandles)[i];
        if (handle.getData() && !handle.getData()->node())
            HandleData::acquire(nodes.get(int(i)), m_reader->getCache());
    }
    return m_topLevelHandles;
}

std::string XMLRepositoryReaderCache::getVersion()
{
    const QByteArray bytes = readTopLevelBytes();
    if (bytes.isEmpty()) {
        m_report->log("Loaded an empty manifest while trying to read its version");
        return std::string();
    }
    // A document without a readable signature gives the null signature's
    // text, which matches no schema: the callers treat the store as stale.
    ErrorHolder errors;
    return Serializer::getModelSignatureFromByteArray(bytes, errors).toString();
}

TandrilObjectIterator XMLRepositoryReaderCache::getAllProductsIterator()
{
    if (!getTopLevelModel())
        return TandrilObjectIterator();
    return TandrilObjectReferenceIterator::overList(m_reader->getCache(), topLevelHandles());
}

TandrilObjectIterator XMLRepositoryReaderCache::getProductsIterator()
{
    return TandrilObjectSearchIterator::filter(getAllProductsIterator(), std::make_unique<IsValidProductCriteria>());
}

XMLRepositoryProductCachePtr XMLRepositoryReaderCache::productCacheOf(const TandrilObject& object)
{
    const Library product = getProductOf(object);
    if (!product.isValid())
        return nullptr;
    XMLRepositoryProductCachePtr& cache = m_productCaches[product];
    if (!cache)
        cache = std::make_shared<XMLRepositoryProductCache>(m_directory, product, m_report, m_reader, m_recentIcons);
    return cache;
}

TandrilObjectIterator XMLRepositoryReaderCache::getChildrenIterator(const TandrilObject& object)
{
    const SubSystem subsystem = object.toSubSystem();
    if (!subsystem.isValid())
        return TandrilObjectIterator();
    // Held here: loading may drop the product cache from the table.
    const XMLRepositoryProductCachePtr productCache = productCacheOf(object);
    if (!productCache)
        return TandrilObjectIterator();
    ShownNamesPtr names;
    TandrilObjectListPtr children = productCache->getChildren(subsystem, &names);
    return TandrilObjectReferenceIterator::overList(m_reader->getCache(), std::move(children), std::move(names));
}

BlockIconPtr XMLRepositoryReaderCache::getIcon(const TandrilObject& object)
{
    const Block block = object.toBlock();
    if (!block.isValid())
        return nullptr;
    const XMLRepositoryProductCachePtr productCache = productCacheOf(object);
    return productCache ? productCache->getIcon(block) : nullptr;
}

ModelPtr XMLRepositoryReaderCache::getModel(const TandrilObject& object)
{
    const SubSystem subsystem = object.toSubSystem();
    const XMLRepositoryProductCachePtr productCache = subsystem.isValid() ? productCacheOf(object) : nullptr;
    return productCache ? productCache->getModelUncached(subsystem) : Model::createModel();
}

void XMLRepositoryReaderCache::refresh()
{
    unloadTopLevel();
    m_productCaches.clear();
}

void XMLRepositoryReaderCache::unloadProduct(const Library& product)
{
    m_productCaches.erase(product);
}

void XMLRepositoryReaderCache::unloadTopLevel()
{
    if (m_topLevelModel)
        ReaderCacheRegistry::forgetModels(m_directory, {m_topLevelModel.get()});
    m_topLevelHandles.reset();
    m_topLevelModel.reset();
}

} // namespace LibraryBrowser
