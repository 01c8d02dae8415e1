#pragma once

#include "model/Model.h"
#include "repository/BlockIcon.h"
#include "repository/RepositoryReport.h"
#include "repository/TandrilObjectReferenceIterator.h"
#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace LibraryBrowser {

class RepositoryReader;

// What one reader has loaded of one product: a model per subsystem, its
// children as handles, and icons, all read on first demand from the
// product's two archives and kept until clear(). Each manifest holds only
// what is relative to its place; loading rebases the unique and display
// paths below the subsystem, so one manifest can serve below two parents.
class XMLRepositoryProductCache {
public:
    XMLRepositoryProductCache(std::string directory, const Library& product, RepositoryReportPtr report,
                              RepositoryReader* reader);
    ~XMLRepositoryProductCache();
    XMLRepositoryProductCache(const XMLRepositoryProductCache&) = delete;
    XMLRepositoryProductCache& operator=(const XMLRepositoryProductCache&) = delete;

    // Handles, bound to the outer reader's cache, on the subsystem's children.
    TandrilObjectListPtr getChildren(const SubSystem& subsystem);
    // The kept model of the subsystem's children, loaded on first demand.
    ModelPtr getModel(const SubSystem& subsystem);
    // A model of the subsystem's children, loaded anew. A palette's
    // children are computed, a reference's are its target's, any other
    // subsystem's are read from the manifests archive.
    ModelPtr getModelUncached(const SubSystem& subsystem);
    // The block's icon, loaded on first demand; an empty icon if the block
    // has none or it can't be read.
    BlockIconPtr getIcon(const Block& block);
    // Drops all that was loaded and the private copies of the archives.
    void clear();

private:
    void fillPaletteModel(const SubSystem& palette, Model& model);
    ModelPtr referencedModel(const SubSystem& reference);

    std::string m_directory;
    Library m_product;
    RepositoryReportPtr m_report;
    RepositoryReader* m_reader;
    std::unordered_map<Block, BlockIconPtr> m_icons;
    XMLRepositoryArchiveCachePtr m_iconsArchive;
    std::unordered_map<SubSystem, ModelPtr> m_models;
    std::unordered_map<SubSystem, TandrilObjectListPtr> m_children;
    XMLRepositoryArchiveCachePtr m_manifestsArchive;
};

using XMLRepositoryProductCachePtr = std::shared_ptr<XMLRepositoryProductCache>;

} // namespace LibraryBrowser
