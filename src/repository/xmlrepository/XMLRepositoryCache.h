#pragma once

#include "repository/ReaderCache.h"
#include "repository/RepositoryReport.h"
#include "repository/TandrilObjectReferenceIterator.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace LibraryBrowser {

class XMLRepository;
class XMLRepositoryReader;

// The cache of a repository that joins two stores. It loads nothing itself:
// it keeps the merged product lists and, per product, the store's reader
// that serves it, and forwards every read to that reader. The repository's
// handles are bound here, so a handle stays the same when its product moves
// from the shipped to the writable store.
class XMLRepositoryCache : public ReaderCache {
public:
    XMLRepositoryCache(std::string shippedDirectory, std::string writableDirectory, RepositoryReportPtr report,
                       XMLRepository* repository);
    ~XMLRepositoryCache() override;

    // The repository is going: from now on every answer is empty.
    void detachRepository() { m_repository = nullptr; }

    TandrilObjectIterator getAllProductsIterator() override;
    TandrilObjectIterator getProductsIterator() override;
    TandrilObjectIterator getChildrenIterator(const TandrilObject& object) override;
    BlockIconPtr getIcon(const TandrilObject& object) override;
    ModelPtr getModel(const TandrilObject& object) override;
    void refresh() override;
    void unloadProduct(const Library& product) override;
    void unloadTopLevel() override;

    // The reader that serves the product, chosen on first demand; this is
    // when a product may be generated. Null without a repository.
    std::shared_ptr<XMLRepositoryReader> getReader(const Library& product);

private:
    // The list, filled from the repository if it is empty or lost a node.
    const TandrilObjectListPtr& products();
    const TandrilObjectListPtr& productsAndDependencies();
    // The reader for the object's product; null if there is none to ask.
    std::shared_ptr<XMLRepositoryReader> readerOf(const TandrilObject& object);
    void forgetProductLists();

    std::string m_shippedDirectory;
    std::string m_writableDirectory;
    RepositoryReportPtr m_report;
    XMLRepository* m_repository;
    TandrilObjectListPtr m_products;
    TandrilObjectListPtr m_productsAndDependencies;
    std::unordered_map<Library, std::shared_ptr<XMLRepositoryReader>> m_productReaders;
};

using XMLRepositoryCachePtr = std::shared_ptr<XMLRepositoryCache>;

} // namespace LibraryBrowser
