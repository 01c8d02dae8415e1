#pragma once

#include "repository/ReaderCache.h"
#include "repository/RepositoryReport.h"
#include "repository/TandrilObjectReferenceIterator.h"
#include "repository/xmlrepository/XMLRepositoryProductCache.h"

#include <QByteArray>

#include <string>
#include <unordered_map>

namespace LibraryBrowser {

class RepositoryReader;

// The cache of one store's reader, which does the real loading: the
// top-level manifest (from a private copy of the file) and, per product, an
// XMLRepositoryProductCache. New handles are bound to the cache of the
// outer reader, the repository when there is one, so that a handle stays
// the same whichever store serves its product.
class XMLRepositoryReaderCache : public ReaderCache {
public:
    XMLRepositoryReaderCache(std::string directory, RepositoryReportPtr report, RepositoryReader* reader);
    ~XMLRepositoryReaderCache() override;

    // The top-level manifest, read on first use and kept; null while it is
    // missing or corrupt (then the next call tries again).
    ModelPtr getTopLevelModel();
    // The signature text of the top-level manifest as it is on disk now, or
    // the empty string. Doesn't touch the loaded model.
    std::string getVersion();
    // Why the top-level manifest file can't be read, as
    // StoredDataCheck::manifestFileProblem tells it, or the empty string.
    // Where none is loaded yet, a readable one is kept as the loaded model:
    // a check before a generation then costs no second read.
    std::string topLevelFileProblem();

    TandrilObjectIterator getAllProductsIterator() override;
    TandrilObjectIterator getProductsIterator() override;
    TandrilObjectIterator getChildrenIterator(const TandrilObject& object) override;
    BlockIconPtr getIcon(const TandrilObject& object) override;
    ModelPtr getModel(const TandrilObject& object) override;
    void refresh() override;
    void unloadProduct(const Library& product) override;
    void unloadTopLevel() override;

    std::size_t productCacheCount() const { return m_productCaches.size(); }

    // An entry of the product's manifests archive that the store may lack,
    // read from the same private copy as its manifests; empty bytes if there
    // is none.
    QByteArray readOptionalManifestsEntry(const Library& product, const std::string& entry);

    // How many manifest nodes the products' models may hold in all before
    // products are released (read again when asked again): a walk over a
    // store of a million blocks then holds a part of it, while a store of a
    // few hundred thousand stays loaded whole. A product being read, and
    // the one read last, are never released.
    static constexpr std::size_t DefaultLoadedNodeBudget = 600000;
    void setLoadedNodeBudget(std::size_t nodes) { m_loadedNodeBudget = nodes; }
    std::size_t loadedNodeCount() const { return *m_loadedNodes; }

    // Drops, in every cache of the store, what was loaded from a top-level
    // manifest that another process has since replaced. Called by a writer
    // once it holds the store's lock, before it reads the store.
    static void forgetReplacedTopLevels(const std::string& directory);
    // The store's top-level manifest was just written from `model`: if that
    // is the one this cache holds, the cache keeps it, stamped with the new
    // file, instead of reading back what it already has.
    bool keepsWrittenTopLevel(const Model& model);
    // Takes the top-level model from `source`, another cache of the same
    // store, while that holds it as the file on disk has it and nothing is
    // changing it: a writer's look into the shipped store, or a
    // repository's read of the store its writer has just read or written,
    // then costs no read of its own. The source must outlive this cache.
    void shareTopLevelOf(XMLRepositoryReaderCache* source) { m_topLevelSource = source; }
    // A writer's work on the model this cache holds, between which the
    // model is not shared; caches that share it let it go when it starts,
    // so that nothing reads a model half changed.
    void beginTopLevelChange();
    void endTopLevelChange() { --m_topLevelChanges; }
    // The model serialized is what the file holds, though it was changed
    // since it was read.
    void topLevelMatchesFile(const Model& model);
    // Whether the model held is, unchanged, the one the file on disk holds.
    bool holdsTopLevelAsOnDisk() const;

private:
    // The bytes of the top-level manifest and the stamp of the file they
    // were read from.
    QByteArray readTopLevelBytes(FileStamp& stamp);
    // Keeps the signature text of the top-level manifest read with `stamp`.
    void noteVersion(const QByteArray& bytes, const FileStamp& stamp);
    // Whether the loaded top-level manifest is no longer the one on disk.
    bool topLevelReplaced() const;
    // The source's model, if it may be shared now; null if it is missing or
    // corrupt (`unreadable` then says so), or held otherwise.
    ModelPtr sharedTopLevel(bool& unreadable);
    // Lets go of a model shared with the source.
    void dropSharedTopLevel();
    // Reads the product's part of the store through `read`; if another
    // process changed the product meanwhile, drops what was loaded and reads
    // again, a few times, and then says so in the report.
    template <class Read>
    auto readProduct(const TandrilObject& object, Read read) -> decltype(read(XMLRepositoryProductCachePtr()));
    // The product cache that serves the object, made if missing; null for
    // an object without a valid product.
    XMLRepositoryProductCachePtr productCacheOf(const TandrilObject& object);
    // Releases the products used most recently, other than `last`, until
    // the nodes loaded are within the budget.
    void releaseIdleProducts(const XMLRepositoryProductCache& last);
    // The top-level handles, given their nodes again if the outer cache
    // cleared them while the model stayed.
    const TandrilObjectListPtr& topLevelHandles();

    std::string m_directory;
    RepositoryReportPtr m_report;
    RepositoryReader* m_reader;
    ModelPtr m_topLevelModel;
    XMLRepositoryReaderCache* m_topLevelSource = nullptr;
    // The model's revision when it last was as the file has it.
    std::uint64_t m_topLevelRevision = 0;
    int m_topLevelChanges = 0;
    FileStamp m_topLevelStamp;
    // The signature text of the top-level manifest last read, and its stamp.
    std::string m_version;
    FileStamp m_versionStamp;
    TandrilObjectListPtr m_topLevelHandles;
    std::unordered_map<Library, XMLRepositoryProductCachePtr> m_productCaches;
    const RecentIconsPtr m_recentIcons = std::make_shared<RecentIcons>();
    const std::shared_ptr<std::size_t> m_loadedNodes = std::make_shared<std::size_t>(0);
    std::size_t m_loadedNodeBudget = DefaultLoadedNodeBudget;
    // Goes up with each read of a product: the order of last use.
    std::uint64_t m_uses = 0;
};

using XMLRepositoryReaderCachePtr = std::shared_ptr<XMLRepositoryReaderCache>;

} // namespace LibraryBrowser
