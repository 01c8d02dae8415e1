#include "repository/xmlrepository/XMLRepositoryProductCache.h"

#include "model/NodeCast.h"
#include "model/SubSystemImpl.h"
#include "repository/HandleData.h"
#include "repository/ReaderCache.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/RepositoryReader.h"
#include "repository/xmlrepository/PaletteChildren.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/StoreDamage.h"

#include <unordered_set>

namespace LibraryBrowser {

namespace {

// The library references whose targets are being loaded now, in any product
// cache: a reference met again leads back to itself.
std::unordered_set<StringId>& referencesInProgress()
{
    static std::unordered_set<StringId> references;
    return references;
}

std::string archivePath(const std::string& directory, const std::string& relative)
{
    return relative.empty() ? std::string() : directory + "/" + relative;
}

} // namespace

XMLRepositoryProductCache::XMLRepositoryProductCache(std::string directory, const Library& product,
                                                     RepositoryReportPtr report, RepositoryReader* reader,
                                                     RecentIconsPtr recent,
                                                     const XMLRepositoryArchiveCache::Origin& origin,
                                                     std::shared_ptr<std::size_t> readerNodes)
    : m_directory(std::move(directory)), m_product(product), m_report(std::move(report)), m_reader(reader),
      m_recentIcons(std::move(recent)), m_originStamp(origin.topLevelStamp), m_readerNodes(std::move(readerNodes))
{
    const auto* node = dynamic_cast<const LibraryImpl*>(m_product.getImpl());
    m_iconsArchive = std::make_shared<XMLRepositoryArchiveCache>(
        archivePath(m_directory, node ? node->getReposIconsArchiveSpec().str() : std::string()), m_report, origin);
    m_manifestsArchive = std::make_shared<XMLRepositoryArchiveCache>(
        archivePath(m_directory, node ? node->getReposManifestsArchiveSpec().str() : std::string()), m_report, origin);
}

XMLRepositoryProductCache::~XMLRepositoryProductCache()
{
    clear();
}

TandrilObjectListPtr XMLRepositoryProductCache::getChildren(const SubSystem& subsystem, ShownNamesPtr* names)
{
    ReaderCache* cache = m_reader->getCache();
    const auto known = m_children.find(subsystem);
    if (known != m_children.end()) {
        Children& children = known->second;
        // The cache may have cleared nodes that this model still holds; a
        // warm walk asks again for every subsystem, so the list is checked
        // only after a clearing.
        if (children.boundAt != cache->clearCount()) {
            const TandrilObjectImplList& nodes = m_models[subsystem]->getNodes();
            const TandrilObjectList& list = *children.list;
            for (std::size_t i = 0; i < list.size(); ++i)
                if (!list[i].getData()->node())
                    HandleData::acquire(nodes.get(int(i)), cache);
            children.boundAt = cache->clearCount();
        }
        if (names)
            *names = children.names;
        return children.list;
    }
    const ModelPtr model = getModel(subsystem);
    auto children = std::make_shared<TandrilObjectList>();
    auto shownNames = std::make_shared<ShownNames>();
    children->reserve(std::size_t(model->nodeCount()));
    shownNames->reserve(std::size_t(model->nodeCount()));
    for (TandrilObjectImpl* node : model->getNodes()) {
        children->emplace_back(node, cache);
        ShownName& shown = shownNames->emplace_back();
        if (const auto* block = nodeCast<const BlockImpl>(node)) {
            shown.text = QString::fromStdString(block->getDisplayName());
            shown.isBlock = true;
            shown.isSubSystem = nodeCast<const SubSystemImpl>(node) != nullptr;
        }
    }
    TandrilObjectListPtr list = std::move(children);
    if (names)
        *names = shownNames;
    m_children[subsystem] = Children{list, std::move(shownNames), cache->clearCount()};
    return list;
}


ModelPtr XMLRepositoryProductCache::getModel(const SubSystem& subsystem)
{
    const auto known = m_models.find(subsystem);
    if (known != m_models.end())
        return known->second;
    ModelPtr model = getModelUncached(subsystem);
    m_models[subsystem] = model;
    const auto nodes = std::size_t(model->nodeCount());
    m_loadedNodes += nodes;
    *m_readerNodes += nodes;
    return model;
}

ModelPtr XMLRepositoryProductCache::getModelUncached(const SubSystem& subsystem)
{
    ModelPtr model = Model::createModel();
    const auto* node = dynamic_cast<const SubSystemImpl*>(subsystem.getImpl());
    if (!node)
        return model;
    // Taken now: loading a target may reload the subsystem's own node.
    const std::string displayPath = node->getDisplayPath();
    const std::string uniquePath = node->getUniquePath().str();

    if (dynamic_cast<const PaletteImpl*>(node)) {
        fillPaletteModel(subsystem, *model);
    } else if (dynamic_cast<const LibraryRefImpl*>(node)) {
        if (ModelPtr target = referencedModel(subsystem))
            model = std::move(target);
    } else if (!node->getManifestFileSpec().empty()) {
        const std::string& entry = node->getManifestFileSpec();
        if (!loadManifestFromBytes(*m_report, *model, m_manifestsArchive->readEntry(entry)))
            noteDamage("the manifest " + entry + " can't be loaded");
        noteDamage(m_manifestsArchive->damage());
        // A subsystem without children has no manifest; one with children must.
        if (!node->getIsEmpty() && m_manifestsArchive->lacks(entry))
            noteDamage("the manifest " + entry + " is missing from its archive");
    }

    model->beginChangeSet();
    // One buffer for the paths of all children: a manifest has hundreds.
    std::string path;
    for (TandrilObjectImpl* child : model->getNodes()) {
        if (auto* block = nodeCast<BlockImpl>(child)) {
            path.assign(displayPath).append(1, '/').append(block->getDisplayName());
            block->setDisplayPath(path);
            path.assign(uniquePath).append(1, '/').append(block->getName());
            // Mostly the path as stored: compared first, it is not looked up again.
            if (block->getUniquePath().str() != path)
                block->setUniquePath(StringId(path));
        }
    }
    model->commitChangeSet();
    return model;
}

void XMLRepositoryProductCache::fillPaletteModel(const SubSystem& palette, Model& model)
{
    const std::string productName = palette.getProductName();
    const std::vector<TandrilObject> members = paletteChildren(*m_report, palette.toLibrary(), *m_reader);
    model.beginChangeSet();
    for (const TandrilObject& member : members) {
        const auto* subsystem = dynamic_cast<const SubSystemImpl*>(member.getImpl());
        if (!subsystem)
            continue;
        LibraryRefImpl* reference = model.createLibraryRefImpl();
        reference->copyNonStructuralPropertiesFromNode(static_cast<const Node*>(subsystem));
        reference->setLibraryRefName(subsystem->getName());
        reference->setLibraryRefPath(subsystem->getPath());
        reference->setLibraryRefUniquePath(subsystem->getUniquePath().str());
        // Filed with the palette, whose cache owns what is loaded below it.
        reference->setProductName(productName);
    }
    model.commitChangeSet();
}

ModelPtr XMLRepositoryProductCache::referencedModel(const SubSystem& reference)
{
    const auto* node = static_cast<const LibraryRefImpl*>(reference.getImpl());
    const StringId id = node->getUniquePath();
    const std::string displayPath = node->getDisplayPath();
    const std::string targetPath = node->getLibraryRefUniquePath();
    if (!referencesInProgress().insert(id).second) {
        m_report->logWarning("The library reference " + displayPath + " leads back to itself through " + targetPath);
        return nullptr;
    }
    ModelPtr model;
    const TandrilObject target = m_reader->getTandrilObject(targetPath);
    if (target.isValid())
        model = m_reader->getCache()->getModel(target);
    referencesInProgress().erase(id);
    return model;
}

BlockIconPtr XMLRepositoryProductCache::getIcon(const Block& block)
{
    const auto known = m_icons.find(block);
    if (known != m_icons.end()) {
        if (BlockIconPtr icon = known->second.lock()) {
            m_recentIcons->keep(icon);
            return icon;
        }
    }
    BlockIconPtr icon = m_noIcon;
    const auto* node = dynamic_cast<const BlockImpl*>(block.getImpl());
    const std::string entry = node ? node->getIconFileSpec() : std::string();
    if (!entry.empty()) {
        QByteArray bytes = m_iconsArchive->readEntry(entry);
        if (BlockIcon::isSvgDocument(bytes)) {
            icon = std::make_shared<BlockIcon>(std::move(bytes));
        } else if (!bytes.isEmpty()) {
            m_report->logError("Unexpected error occurred while loading the manifest file");
            noteDamage("the icon " + entry + " can't be loaded");
        }
        noteDamage(m_iconsArchive->damage());
    }
    m_icons[block] = icon;
    m_recentIcons->keep(icon);
    return icon;
}

void XMLRepositoryProductCache::noteDamage(const std::string& reason)
{
    // Once per product cache: the note stands until the product is generated again.
    if (reason.empty() || m_damageNoted)
        return;
    m_damageNoted = true;
    StoreDamage::note(m_directory, m_product.id().str(), reason);
}

void XMLRepositoryProductCache::release()
{
    std::unordered_set<const Model*> models;
    for (const auto& entry : m_models)
        models.insert(entry.second.get());
    ReaderCacheRegistry::forgetModels(m_directory, models);
    m_icons.clear();
    m_children.clear();
    m_models.clear();
    *m_readerNodes -= m_loadedNodes;
    m_loadedNodes = 0;
}

void XMLRepositoryProductCache::clear()
{
    release();
    m_iconsArchive->close();
    m_manifestsArchive->close();
}

} // namespace LibraryBrowser
