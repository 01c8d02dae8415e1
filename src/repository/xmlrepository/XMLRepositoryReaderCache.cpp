#include "repository/xmlrepository/XMLRepositoryReaderCache.h"

#include "model/Serializer.h"
#include "platform/ErrorHolder.h"
#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/RepositoryReader.h"
#include "repository/search/IsValidProductCriteria.h"
#include "repository/search/TandrilObjectSearchIterator.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/StoreLock.h"
#include "repository/xmlrepository/StoredDataCheck.h"
#include "repository/xmlrepository/TempDirectories.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <QFile>

#include <algorithm>
#include <optional>
#include <vector>

namespace LibraryBrowser {

XMLRepositoryReaderCache::XMLRepositoryReaderCache(std::string directory, RepositoryReportPtr report,
                                                   RepositoryReader* reader)
    : m_directory(std::move(directory)), m_report(std::move(report)), m_reader(reader)
{
    ReaderCacheRegistry::add(m_directory, this);
}

XMLRepositoryReaderCache::~XMLRepositoryReaderCache()
{
    // Caches that take their top level from this one read their own now.
    for (ReaderCache* cache : ReaderCacheRegistry::cachesFor(m_directory))
        if (auto* sharing = dynamic_cast<XMLRepositoryReaderCache*>(cache); sharing && sharing->m_topLevelSource == this)
            sharing->m_topLevelSource = nullptr;
    ReaderCacheRegistry::remove(m_directory, this);
    m_productCaches.clear();
    unloadTopLevel();
}

namespace {

// How often a read starts again after another process changed what it read.
constexpr int Rereads = 3;

} // namespace

QByteArray XMLRepositoryReaderCache::readTopLevelBytes(FileStamp& stamp)
{
    static int topLevelReads = 0;
    stamp = FileStamp();
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
    // Writers replace the file by a rename: the stamp taken before and after
    // the copy tells whether the copy is of the file stamped.
    for (int attempt = 0; attempt <= Rereads; ++attempt) {
        stamp = fileStamp(path);
        QFile file(QString::fromStdString(copy));
        if (copyFile(*m_report, path, copy) && file.open(QIODevice::ReadOnly)) {
            bytes = file.readAll();
            file.close();
        } else {
            m_report->logError("Unable to read top level manifest file " + path);
            bytes.clear();
            break;
        }
        if (fileStamp(path) == stamp)
            break;
    }
    removeNamedTempDirectory(*m_report, "LBTop" + std::to_string(number));
    return bytes;
}

bool XMLRepositoryReaderCache::topLevelReplaced() const
{
    return m_topLevelModel
           && fileStamp(XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false)) != m_topLevelStamp;
}

void XMLRepositoryReaderCache::forgetReplacedTopLevels(const std::string& directory)
{
    bool replaced = false;
    for (ReaderCache* cache : ReaderCacheRegistry::cachesFor(directory)) {
        auto* reader = dynamic_cast<XMLRepositoryReaderCache*>(cache);
        if (reader && reader->topLevelReplaced()) {
            reader->m_productCaches.clear();
            replaced = true;
        }
    }
    if (replaced)
        ReaderCacheRegistry::unloadTopLevelCaches(directory);
}

bool XMLRepositoryReaderCache::keepsWrittenTopLevel(const Model& model)
{
    if (m_topLevelModel.get() != &model)
        return false;
    const FileStamp stamp = fileStamp(XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false));
    if (!stamp.exists)
        return false;
    m_topLevelStamp = stamp;
    m_topLevelRevision = model.revision();
    // Products may have come or gone: the list is made again, after the
    // registry has cleared the old handles' nodes.
    m_topLevelHandles.reset();
    return true;
}

bool XMLRepositoryReaderCache::holdsTopLevelAsOnDisk() const
{
    return m_topLevelModel && m_topLevelChanges == 0 && m_topLevelModel->revision() == m_topLevelRevision
           && fileStamp(XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false)) == m_topLevelStamp;
}

ModelPtr XMLRepositoryReaderCache::sharedTopLevel(bool& unreadable)
{
    XMLRepositoryReaderCache* source = m_topLevelSource;
    if (!source)
        return nullptr;
    // A source that can't load it has just tried, and said why.
    const ModelPtr shared = source->getTopLevelModel();
    unreadable = !shared;
    return shared && source->holdsTopLevelAsOnDisk() ? shared : nullptr;
}

void XMLRepositoryReaderCache::dropSharedTopLevel()
{
    // The handles of this cache's reader let go of the nodes; those of the
    // source keep them.
    if (m_topLevelModel)
        m_reader->getCache()->forgetModels({m_topLevelModel.get()});
    m_topLevelHandles.reset();
    m_topLevelModel.reset();
}

void XMLRepositoryReaderCache::beginTopLevelChange()
{
    if (m_topLevelChanges++ > 0 || !m_topLevelModel)
        return;
    for (ReaderCache* cache : ReaderCacheRegistry::cachesFor(m_directory)) {
        auto* sharing = dynamic_cast<XMLRepositoryReaderCache*>(cache);
        if (sharing && sharing != this && sharing->m_topLevelSource == this
            && sharing->m_topLevelModel == m_topLevelModel)
            sharing->dropSharedTopLevel();
    }
}

void XMLRepositoryReaderCache::topLevelMatchesFile(const Model& model)
{
    if (m_topLevelModel.get() == &model)
        m_topLevelRevision = model.revision();
}

ModelPtr XMLRepositoryReaderCache::getTopLevelModel()
{
    if (m_topLevelModel)
        return m_topLevelModel;
    bool unreadable = false;
    if (const ModelPtr shared = sharedTopLevel(unreadable)) {
        m_topLevelModel = shared;
        m_topLevelStamp = m_topLevelSource->m_topLevelStamp;
        m_topLevelRevision = shared->revision();
        m_topLevelHandles.reset();
        return m_topLevelModel;
    }
    if (unreadable)
        return nullptr;
    FileStamp stamp;
    const QByteArray bytes = readTopLevelBytes(stamp);
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
    m_topLevelStamp = stamp;
    m_topLevelRevision = model->revision();
    noteVersion(bytes, stamp);
    m_topLevelHandles.reset();
    return m_topLevelModel;
}

const TandrilObjectListPtr& XMLRepositoryReaderCache::topLevelHandles()
{
    const TandrilObjectImplList& nodes = m_topLevelModel->getNodes();
    if (!m_topLevelHandles) {
        auto handles = std::make_shared<TandrilObjectList>();
        for (TandrilObjectImpl* node : nodes)
            handles->emplace_back(node, m_reader->getCache());
        m_topLevelHandles = std::move(handles);
        return m_topLevelHandles;
    }
    for (std::size_t i = 0; i < m_topLevelHandles->size(); ++i) {
        const TandrilObject& handle = (*m_topLevelHandles)[i];
        if (handle.getData() && !handle.getData()->node())
            HandleData::acquire(nodes.get(int(i)), m_reader->getCache());
    }
    return m_topLevelHandles;
}

std::string XMLRepositoryReaderCache::getVersion()
{
    // A generation asks several times; the file it read last is not read
    // again while its stamp holds (writers replace it by a rename).
    if (m_versionStamp.exists
        && fileStamp(XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false)) == m_versionStamp)
        return m_version;
    FileStamp stamp;
    const QByteArray bytes = readTopLevelBytes(stamp);
    if (bytes.isEmpty()) {
        m_report->log("Loaded an empty manifest while trying to read its version");
        return std::string();
    }
    noteVersion(bytes, stamp);
    return m_version;
}

std::string XMLRepositoryReaderCache::topLevelFileProblem()
{
    const std::string path = XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false);
    const FileStamp before = fileStamp(path);
    StoredDataCheck::ReadManifest read;
    const std::string problem = StoredDataCheck::manifestFileProblem(path, &read);
    // Kept only if no writer replaced the file while it was read.
    if (problem.empty() && !m_topLevelModel && before.exists && fileStamp(path) == before) {
        reportLoadWarnings(*m_report, read.errors);
        m_topLevelModel = read.model;
        m_topLevelStamp = before;
        m_topLevelRevision = read.model->revision();
        m_topLevelHandles.reset();
        noteVersion(read.bytes, before);
    }
    return problem;
}

void XMLRepositoryReaderCache::noteVersion(const QByteArray& bytes, const FileStamp& stamp)
{
    // A document without a readable signature gives the null signature's
    // text, which matches no schema: the callers treat the store as stale.
    ErrorHolder errors;
    m_version = Serializer::getModelSignatureFromByteArray(bytes, errors).toString();
    m_versionStamp = stamp;
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
    // The stamp of the top level the product's record comes from.
    getTopLevelModel();
    // A product that holds nothing now, released or never read, whose
    // record has come from a new top level since: its private copies may no
    // longer fit the record, so it is read from the store as a new product.
    if (cache && cache->loadedNodeCount() == 0 && !cache->isBeingRead() && cache->originStamp() != m_topLevelStamp)
        cache.reset();
    if (!cache) {
        const XMLRepositoryArchiveCache::Origin origin{
            m_directory, XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false), m_topLevelStamp};
        cache = std::make_shared<XMLRepositoryProductCache>(m_directory, product, m_report, m_reader, m_recentIcons,
                                                            origin, m_loadedNodes);
    }
    return cache;
}

void XMLRepositoryReaderCache::releaseIdleProducts(const XMLRepositoryProductCache& last)
{
    if (*m_loadedNodes <= m_loadedNodeBudget)
        return;
    std::vector<XMLRepositoryProductCache*> idle;
    for (const auto& entry : m_productCaches) {
        XMLRepositoryProductCache* cache = entry.second.get();
        if (cache != &last && cache->loadedNodeCount() > 0 && !cache->isBeingRead())
            idle.push_back(cache);
    }
    // Those used most recently go first. Walks and searches meet the
    // products in one order each time, so releasing the oldest would release
    // exactly what the next walk needs first; this way the products a walk
    // meets first stay loaded across walks, and the first sections of a
    // search's results are still at hand when they are shown.
    std::sort(idle.begin(), idle.end(),
              [](const XMLRepositoryProductCache* a, const XMLRepositoryProductCache* b) {
                  return a->lastUse() > b->lastUse();
              });
    // A little below the budget, so that a walk does not sort the products
    // at every read.
    const std::size_t target = m_loadedNodeBudget - m_loadedNodeBudget / 20;
    for (XMLRepositoryProductCache* cache : idle) {
        if (*m_loadedNodes <= target)
            break;
        cache->release();
    }
}

template <class Read>
auto XMLRepositoryReaderCache::readProduct(const TandrilObject& object, Read read)
    -> decltype(read(XMLRepositoryProductCachePtr()))
{
    for (int attempt = 0;; ++attempt) {
        // Read again under the store's lock: no writer can come between the
        // top level and the archives then. The first read takes it only for
        // the copies of the archives, since writers may hold it for long.
        std::optional<StoreLock> lock;
        if (attempt > 0)
            lock.emplace(*m_report, m_directory, StoreLock::Read);
        // Held here: loading may drop the product cache from the table.
        const XMLRepositoryProductCachePtr productCache = productCacheOf(object);
        if (!productCache) {
            // The product left the store while it was read. A repository
            // chooses its store again; a reader of its own says so.
            if (attempt > 0 && m_reader->getCache() == this) {
                m_report->logError("The product of " + object.getDisplayPath() + " left the repository store "
                                   + m_directory + " while it was read");
                m_report->noteIncompleteRead();
            }
            return read(nullptr);
        }
        const std::uint64_t changes = XMLRepositoryArchiveCache::changeCount();
        productCache->beginRead(++m_uses);
        auto result = read(productCache);
        productCache->endRead();
        if (XMLRepositoryArchiveCache::changeCount() == changes) {
            releaseIdleProducts(*productCache);
            return result;
        }
        // Another process changed the store since its top level was read:
        // what was loaded of it goes, and the product is read anew from the
        // top level now on disk.
        for (auto it = m_productCaches.begin(); it != m_productCaches.end();)
            it = it->second->changedUnderIt() ? m_productCaches.erase(it) : std::next(it);
        ReaderCacheRegistry::unloadTopLevelCaches(m_directory);
        if (attempt == Rereads) {
            m_report->logError("The repository store " + m_directory + " changed while " + object.getDisplayPath()
                               + " was read, " + std::to_string(Rereads + 1)
                               + " times; what was read of it may be incomplete. Read it again.");
            m_report->noteIncompleteRead();
            return result;
        }
    }
}

QByteArray XMLRepositoryReaderCache::readOptionalManifestsEntry(const Library& product, const std::string& entry)
{
    return readProduct(product, [&](const XMLRepositoryProductCachePtr& productCache) {
        return productCache ? productCache->readOptionalManifestsEntry(entry) : QByteArray();
    });
}

TandrilObjectIterator XMLRepositoryReaderCache::getChildrenIterator(const TandrilObject& object)
{
    const SubSystem subsystem = object.toSubSystem();
    if (!subsystem.isValid())
        return TandrilObjectIterator();
    return readProduct(object, [&](const XMLRepositoryProductCachePtr& productCache) {
        if (!productCache)
            return TandrilObjectIterator();
        ShownNamesPtr names;
        TandrilObjectListPtr children = productCache->getChildren(subsystem, &names);
        return TandrilObjectReferenceIterator::overList(m_reader->getCache(), std::move(children), std::move(names));
    });
}

BlockIconPtr XMLRepositoryReaderCache::getIcon(const TandrilObject& object)
{
    const Block block = object.toBlock();
    if (!block.isValid())
        return nullptr;
    return readProduct(object, [&](const XMLRepositoryProductCachePtr& productCache) {
        return productCache ? productCache->getIcon(block) : BlockIconPtr();
    });
}

ModelPtr XMLRepositoryReaderCache::getModel(const TandrilObject& object)
{
    const SubSystem subsystem = object.toSubSystem();
    const XMLRepositoryProductCachePtr productCache = subsystem.isValid() ? productCacheOf(object) : nullptr;
    if (!productCache)
        return Model::createModel();
    // A reference loading its target reads on into other products.
    productCache->beginRead(++m_uses);
    ModelPtr model = productCache->getModelUncached(subsystem);
    productCache->endRead();
    return model;
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
