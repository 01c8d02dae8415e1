#include "repository/xmlrepository/XMLRepositoryCache.h"

#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/XMLRepository.h"

namespace LibraryBrowser {

namespace {

bool lostANode(const TandrilObjectListPtr& list)
{
    if (!list)
        return true;
    for (const TandrilObject& object : *list)
        if (!object.getData()->node())
            return true;
    return false;
}

} // namespace

XMLRepositoryCache::XMLRepositoryCache(std::string shippedDirectory, std::string writableDirectory,
                                       RepositoryReportPtr report, XMLRepository* repository)
    : m_shippedDirectory(std::move(shippedDirectory)),
      m_writableDirectory(std::move(writableDirectory)),
      m_report(std::move(report)),
      m_repository(repository)
{
    ReaderCacheRegistry::add(m_shippedDirectory, this);
    ReaderCacheRegistry::add(m_writableDirectory, this);
}

XMLRepositoryCache::~XMLRepositoryCache()
{
    ReaderCacheRegistry::remove(m_shippedDirectory, this);
    ReaderCacheRegistry::remove(m_writableDirectory, this);
}

const TandrilObjectListPtr& XMLRepositoryCache::products()
{
    if (m_repository && lostANode(m_products))
        m_products = std::make_shared<TandrilObjectList>(m_repository->getMergedProducts());
    if (!m_products)
        m_products = std::make_shared<TandrilObjectList>();
    return m_products;
}

const TandrilObjectListPtr& XMLRepositoryCache::productsAndDependencies()
{
    if (m_repository && lostANode(m_productsAndDependencies))
        m_productsAndDependencies =
            std::make_shared<TandrilObjectList>(m_repository->getMergedProductsAndDependencies());
    if (!m_productsAndDependencies)
        m_productsAndDependencies = std::make_shared<TandrilObjectList>();
    return m_productsAndDependencies;
}

TandrilObjectIterator XMLRepositoryCache::getAllProductsIterator()
{
    return TandrilObjectReferenceIterator::overList(this, productsAndDependencies());
}

TandrilObjectIterator XMLRepositoryCache::getProductsIterator()
{
    return TandrilObjectReferenceIterator::overList(this, products());
}

std::shared_ptr<XMLRepositoryReader> XMLRepositoryCache::getReader(const Library& product)
{
    if (!m_repository)
        return nullptr;
    const auto known = m_productReaders.find(product);
    if (known != m_productReaders.end())
        return known->second;
    std::shared_ptr<XMLRepositoryReader> reader = m_repository->getReaderForProduct(product);
    m_productReaders[product] = reader;
    return reader;
}

std::shared_ptr<XMLRepositoryReader> XMLRepositoryCache::readerOf(const TandrilObject& object)
{
    if (!m_repository)
        return nullptr;
    const Library product = getProductOf(object);
    return product.isValid() ? getReader(product) : nullptr;
}

TandrilObjectIterator XMLRepositoryCache::getChildrenIterator(const TandrilObject& object)
{
    for (int attempt = 0;; ++attempt) {
        const auto reader = readerOf(object);
        if (!reader)
            return TandrilObjectIterator();
        const std::uint64_t changes = XMLRepositoryArchiveCache::changeCount();
        TandrilObjectIterator children = reader->getChildrenIterator(object);
        // Another process changed the chosen store under the read and it
        // gave nothing: the store may no longer hold the product, so the
        // store is chosen again, once.
        if (attempt > 0 || children.isValidIterator() || XMLRepositoryArchiveCache::changeCount() == changes)
            return children;
        m_productReaders.clear();
    }
}

BlockIconPtr XMLRepositoryCache::getIcon(const TandrilObject& object)
{
    const auto reader = readerOf(object);
    return reader ? reader->getIcon(object) : nullptr;
}

ModelPtr XMLRepositoryCache::getModel(const TandrilObject& object)
{
    const auto reader = readerOf(object);
    return reader ? reader->getCache()->getModel(object) : Model::createModel();
}

void XMLRepositoryCache::forgetProductLists()
{
    m_products.reset();
    m_productsAndDependencies.reset();
    m_productReaders.clear();
}

void XMLRepositoryCache::refresh()
{
    forgetProductLists();
    // The writable reader's cache is reached through the registry.
    if (m_repository) {
        ReaderCache* shipped = m_repository->shippedReader()->getCache();
        shipped->clearHandles();
        shipped->refresh();
    }
}

void XMLRepositoryCache::unloadProduct(const Library& product)
{
    m_productReaders.erase(product);
}

void XMLRepositoryCache::unloadTopLevel()
{
    forgetProductLists();
}

} // namespace LibraryBrowser
