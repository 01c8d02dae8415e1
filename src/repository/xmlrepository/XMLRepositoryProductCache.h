#pragma once

#include "model/Model.h"
#include "repository/BlockIcon.h"
#include "repository/RepositoryReport.h"
#include "repository/ShownName.h"
#include "repository/TandrilObjectReferenceIterator.h"
#include "repository/xmlrepository/RecentIcons.h"
#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace LibraryBrowser {

class RepositoryReader;

// What one reader has loaded of one product: a model per subsystem, its
// children as handles, and icons, all read on first demand from the
// product's two archives. Models and children are kept until release() or
// clear(); an icon is kept while something shows it and read again from the
// private copy after that (or found among the recent icons), since a window
// that has visited every product would otherwise hold every document of the
// store. Each manifest holds only what is relative to its place; loading
// rebases the unique and display paths below the subsystem, so one manifest
// can serve below two parents.
class XMLRepositoryProductCache {
public:
    // Icons read here are also handed to `recent`, shared by the products
    // of one reader.
    // `origin` ties the private copies of the archives to the top-level
    // manifest the product's record came from. The nodes of the models
    // loaded here are counted in `readerNodes` too, shared by the products
    // of one reader.
    XMLRepositoryProductCache(std::string directory, const Library& product, RepositoryReportPtr report,
                              RepositoryReader* reader, RecentIconsPtr recent,
                              const XMLRepositoryArchiveCache::Origin& origin,
                              std::shared_ptr<std::size_t> readerNodes);
    ~XMLRepositoryProductCache();
    XMLRepositoryProductCache(const XMLRepositoryProductCache&) = delete;
    XMLRepositoryProductCache& operator=(const XMLRepositoryProductCache&) = delete;

    // Handles, bound to the outer reader's cache, on the subsystem's children.
    // Where `names` is given, it receives their shown names, in the same order.
    TandrilObjectListPtr getChildren(const SubSystem& subsystem, ShownNamesPtr* names = nullptr);
    // The kept model of the subsystem's children, loaded on first demand.
    ModelPtr getModel(const SubSystem& subsystem);
    // A model of the subsystem's children, loaded anew. A palette's
    // children are computed, a reference's are its target's, any other
    // subsystem's are read from the manifests archive.
    ModelPtr getModelUncached(const SubSystem& subsystem);
    // The block's icon, loaded on demand; an empty icon if the block has
    // none or it can't be read. A missing or unreadable icon is reported
    // once: the empty answer is kept for as long as the cache.
    BlockIconPtr getIcon(const Block& block);
    // The entry of the manifests archive, or empty bytes without a word
    // where the archive has none.
    QByteArray readOptionalManifestsEntry(const std::string& entry)
    {
        return m_manifestsArchive->holds(entry) ? m_manifestsArchive->readEntry(entry) : QByteArray();
    }
    // Another process changed the product's archives after its record was
    // read: what this cache gave may be short, and it must be read anew.
    bool changedUnderIt() const { return m_iconsArchive->changedUnderIt() || m_manifestsArchive->changedUnderIt(); }
    // Drops all that was loaded and the private copies of the archives.
    void clear();
    // Drops the models, children and icons and keeps the private copies of
    // the archives: what is asked for again is read again from the same
    // copies, so it is what was read before. Handles on the dropped nodes
    // find them anew on their next use.
    void release();

    // The manifest nodes of the models held now.
    std::size_t loadedNodeCount() const { return m_loadedNodes; }
    // Brackets a read of the product, which marks it used at `use` (a
    // reader's running count). Reads nest through library references; a
    // product being read is never released.
    void beginRead(std::uint64_t use)
    {
        ++m_reads;
        m_lastUse = use;
    }
    void endRead() { --m_reads; }
    bool isBeingRead() const { return m_reads > 0; }
    std::uint64_t lastUse() const { return m_lastUse; }
    // The stamp of the top-level manifest the product's record came from.
    const FileStamp& originStamp() const { return m_originStamp; }

private:
    // Notes damage met by a read, so that the product is generated again.
    void noteDamage(const std::string& reason);
    void fillPaletteModel(const SubSystem& palette, Model& model);
    ModelPtr referencedModel(const SubSystem& reference);

    std::string m_directory;
    Library m_product;
    RepositoryReportPtr m_report;
    RepositoryReader* m_reader;
    RecentIconsPtr m_recentIcons;
    bool m_damageNoted = false;
    std::unordered_map<Block, std::weak_ptr<BlockIcon>> m_icons;
    const BlockIconPtr m_noIcon = std::make_shared<BlockIcon>();
    XMLRepositoryArchiveCachePtr m_iconsArchive;
    std::unordered_map<SubSystem, ModelPtr> m_models;
    struct Children {
        TandrilObjectListPtr list;
        ShownNamesPtr names;
        // The reader cache's clear count when every handle was last bound.
        std::uint64_t boundAt = 0;
    };
    std::unordered_map<SubSystem, Children> m_children;
    XMLRepositoryArchiveCachePtr m_manifestsArchive;
    FileStamp m_originStamp;
    std::shared_ptr<std::size_t> m_readerNodes;
    std::size_t m_loadedNodes = 0;
    std::uint64_t m_lastUse = 0;
    int m_reads = 0;
};

using XMLRepositoryProductCachePtr = std::shared_ptr<XMLRepositoryProductCache>;

} // namespace LibraryBrowser
