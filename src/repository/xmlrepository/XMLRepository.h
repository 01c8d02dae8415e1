#pragma once

#include "repository/Repository.h"
#include "repository/xmlrepository/XMLRepositoryCache.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"
#include "repository/xmlrepository/XMLRepositoryWriter.h"

#include <string>
#include <vector>

namespace LibraryBrowser {

// The repository on disk: a shipped, read-only store below the host's root
// joined with a writable store below the user's preferences directory. Both
// have one layout:
//
//   toolbox/tandril/blocks/lbtoplevelmanifest.xml     the product list
//   toolbox/tandril/blocks/.topLevelManifestToken     writable store only
//   <reposDirectorySpec>/lb_<tag>_manifests_repos.rps  a product's manifests
//   <reposDirectorySpec>/lb_<tag>_icons_repos.rps      a product's icons
//   .lbstore.lock                                      the lock of processes that write
//
// The token holds the date of the shipped top-level manifest the writable
// store descends from; a new shipped store makes it stale, and the writable
// store is then thrown away and seeded anew. Products move to the writable
// store one by one as they change. Reads go through the merging cache, which
// picks the store per product.
class XMLRepository : public Repository {
    Q_OBJECT

public:
    // On the default stores; the writable directory is made if missing.
    XMLRepository();
    XMLRepository(const std::string& writableDirectory, const std::string& shippedDirectory,
                  const std::vector<std::string>& hostPathList);
    // The cache goes first: handles may outlive the repository, and must
    // not reach the readers through it.
    ~XMLRepository() override;

    // RepositoryReader
    bool exists() override;
    using RepositoryReader::isProductUpToDate;
    bool isProductUpToDate(const TandrilObject& product, bool ignoreTimestamp) override;
    // The merged lists of both stores: with and without dependencies.
    TandrilObjectIterator getAllProductsIterator() override;
    TandrilObjectIterator getProductsIterator() override;
    using RepositoryReader::getChildrenIterator;
    TandrilObjectIterator getChildrenIterator(const TandrilObject& object) override;
    BlockIconPtr getIcon(const TandrilObject& object) override;
    std::shared_ptr<const SearchIndex> getSearchIndex(const TandrilObject& product) override;
    RepositoryReportPtr getRepositoryReport() const override { return m_report; }
    ReaderCache* getCache() override { return m_cache.get(); }

    // RepositoryWriter
    using RepositoryWriter::generateProduct;
    using RepositoryWriter::generateRepository;
    void generateRepository(GenerationMode mode) override;
    void generateProduct(const Library& product, GenerationMode mode) override;
    void updateProducts() override;
    // updateProducts for a repository just made, which has read nothing yet:
    // what the update loaded is kept for the reads that follow.
    void updateProductsOnOpen();
    void destroyRepository() override;
    void destroyProduct(const Library& product) override;

    // Brings the writable store in step with the shipped one through the
    // token file; called by every updateProducts().
    void syncTopLevelManifest();
    // The store to read a product from, generating it into the writable
    // store first if neither store has it up to date. A product that can't
    // be brought up to date is read from the shipped store.
    XMLRepositoryReaderPtr getReaderForProduct(const Library& product);
    // The products of both stores: the writable store's list, where each
    // product the shipped store also has is taken from the writable store
    // only while the shipped one is unchanged since the writable copy was
    // made (shipped lastModified equal to writable shadowedLastModified).
    // Handles bound to the repository's cache, on the chosen store's node.
    std::vector<TandrilObject> getMergedProducts();
    // The same, followed by the products' direct dependencies not yet listed.
    std::vector<TandrilObject> getMergedProductsAndDependencies();

    // The writable store can't be written: both stores are read as they are.
    bool isReadOnly() const { return m_readOnly; }

    const std::string& writableDirectory() const { return m_writableDirectory; }
    const std::string& shippedDirectory() const { return m_shippedDirectory; }
    const std::vector<std::string>& hostPathList() const { return m_hostPathList; }
    const XMLRepositoryReaderPtr& shippedReader() const { return m_shippedReader; }
    const XMLRepositoryReaderPtr& writableReader() const { return m_writableReader; }
    const XMLRepositoryWriterPtr& writer() const { return m_writer; }

    // Paths of a store's top-level manifest and token file. With create set,
    // their directory is made; a failure is an error, and the path is given
    // all the same.
    static std::string getTopLevelManifestFile(RepositoryReport& report, const std::string& store, bool create);
    static std::string getTopLevelTokenFile(RepositoryReport& report, const std::string& store, bool create);
    // Whether the file exists; on the build account it is waited for, since
    // another process may be writing the shipped store.
    static bool waitForFile(const std::string& path);
    // Seeds the writable store with the shipped archives of a product unless
    // it has both of its own, so that generation need only redo what changed.
    static void copyProductArchives(RepositoryReport& report, XMLRepositoryReader& writableReader,
                                    XMLRepositoryReader& shippedReader, const Library& product);

private:
    void bringProductsInStep();
    // Notes as damage an archive missing from the writable store where its
    // own record of the product says it made one.
    void noteMissingArchives(const Library& product);
    void buildParts();
    // With the writable store read-only, an error for a verb that writes; true then.
    bool refuseWriting();
    // Makes the shipped store anew in a development tree where it is missing
    // or stale. False if that failed.
    bool regenerateShippedStore();
    // The writable store's state changed on disk: readers must read again.
    void forgetTopLevelManifests();
    // A handle of the cache on exactly this node: the store chosen here wins
    // over whichever store's node the handle had.
    TandrilObject boundHandle(TandrilObjectImpl* node);

    RepositoryReportPtr m_report;
    std::string m_writableDirectory;
    std::string m_shippedDirectory;
    std::vector<std::string> m_hostPathList;
    XMLRepositoryReaderPtr m_shippedReader;
    XMLRepositoryReaderPtr m_writableReader;
    XMLRepositoryCachePtr m_cache;
    XMLRepositoryWriterPtr m_writer;
    bool m_readOnly = false;
};

using XMLRepositoryPtr = std::shared_ptr<XMLRepository>;

} // namespace LibraryBrowser
