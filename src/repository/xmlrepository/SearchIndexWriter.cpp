#include "repository/xmlrepository/SearchIndexWriter.h"

#include "model/LibraryImpl.h"
#include "model/LibraryRefImpl.h"
#include "model/MetaNode.h"
#include "model/Model.h"
#include "model/NodeCast.h"
#include "model/PaletteImpl.h"
#include "repository/RepositoryReport.h"
#include "repository/search/SearchIndex.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <algorithm>

namespace LibraryBrowser {

bool SearchIndexWriter::write(const LibraryImpl& product, ZipArchive& manifests, const WrittenModels& written)
{
    m_archive = &manifests;
    m_written.clear();
    for (const auto& [node, model] : written)
        if (node && model)
            m_written.emplace(node->getManifestFileSpec(), model.get());
    const std::optional<SearchIndex> index = make(product);
    m_archive = nullptr;
    // The archive came from the store with the index of its last state. It
    // goes before the new one is added: an entry replaced in place keeps
    // libzip's highest level of compression whatever is asked, which took
    // 4 ms of a changed product. An index that can't be added leaves none,
    // and the product's manifests are searched instead.
    const ZipArchive::Entry old = manifests.find(SearchIndex::EntryName);
    if (old.isValid() && !manifests.remove(old)) {
        m_report.logError("Unable to remove the search index from archive " + manifests.getArchiveFilePath());
        return false;
    }
    if (index)
        manifests.add(SearchIndex::EntryName, index->toBytes());
    return true;
}

std::optional<SearchIndex> SearchIndexWriter::make(const LibraryImpl& product)
{
    if (nodeCast<const PaletteImpl>(&product))
        return std::nullopt;
    SearchIndex index;
    std::vector<std::string> reading;
    if (!product.getManifestFileSpec().empty()
        && !addChildren(product.getManifestFileSpec(), product.getIsEmpty(), 0, reading, index))
        return std::nullopt;
    // The libraries the product depends on, read from its archive under
    // their own unique paths, for the references that lead into them.
    for (const LibraryImpl* dependency : product.getDependencies()) {
        if (!dependency || nodeCast<const PaletteImpl>(dependency))
            continue;
        SearchIndex::Object root;
        root.kind = SearchIndex::Block | SearchIndex::SubSystem | SearchIndex::Library | SearchIndex::Dependency;
        root.name = dependency->getDisplayName();
        root.key = dependency->getUniquePath().str();
        root.path = dependency->getPath();
        if (!index.add(std::move(root))
            || (!dependency->getManifestFileSpec().empty()
                && !addChildren(dependency->getManifestFileSpec(), dependency->getIsEmpty(), 1, reading, index)))
            return std::nullopt;
    }
    return index;
}

ModelPtr SearchIndexWriter::readManifest(const std::string& entry, bool& missing)
{
    missing = false;
    QByteArray bytes;
    if (!m_archive || !m_archive->read(m_archive->find(entry), bytes)) {
        missing = true;
        return nullptr;
    }
    ModelPtr model = Model::createModel();
    return loadManifestFromBytes(m_report, *model, bytes) ? model : nullptr;
}

bool SearchIndexWriter::addChildren(const std::string& entry, bool empty, int depth,
                                    std::vector<std::string>& reading, SearchIndex& index)
{
    static const StringId description("description");
    // Subsystems are kept as the manifests hold them: which of them a walk
    // steps over depends on where it came from, so the search decides. A
    // manifest that leads back to itself is no store this writer made.
    if (depth > SearchIndex::MaximumDepth || std::find(reading.begin(), reading.end(), entry) != reading.end())
        return false;
    reading.push_back(entry);
    const bool added = addManifest(entry, empty, depth, reading, index);
    reading.pop_back();
    return added;
}

bool SearchIndexWriter::addManifest(const std::string& entry, bool empty, int depth,
                                    std::vector<std::string>& reading, SearchIndex& index)
{
    static const StringId description("description");
    // What this run wrote is at hand; the rest is read from the archive.
    const auto known = m_written.find(entry);
    bool missing = false;
    ModelPtr read = known == m_written.end() ? readManifest(entry, missing) : nullptr;
    const Model* model = known != m_written.end() ? known->second : read.get();
    // A subsystem without children may have no manifest; one with children
    // must, or the reader finds the product damaged.
    if (missing)
        return empty;
    if (!model)
        return false;
    for (const TandrilObjectImpl* node : model->getNodes()) {
        // A palette's members are computed, not read.
        if (nodeCast<const PaletteImpl>(node))
            return false;
        const auto* subsystem = nodeCast<const SubSystemImpl>(node);
        SearchIndex::Object object;
        object.depth = std::uint16_t(depth);
        if (const auto* block = nodeCast<const BlockImpl>(node)) {
            object.kind |= SearchIndex::Block;
            object.name = block->getDisplayName();
            object.key = block->getName();
        }
        if (subsystem) {
            object.kind |= SearchIndex::SubSystem;
            object.path = subsystem->getPath();
        }
        const auto* reference = nodeCast<const LibraryRefImpl>(node);
        if (reference) {
            object.kind |= SearchIndex::Reference;
            object.target = reference->getLibraryRefUniquePath();
        }
        if (nodeCast<const LibraryImpl>(node))
            object.kind |= SearchIndex::Library;
        if (const PropertyBase* property = node->metaNode().findProperty(description)) {
            object.kind |= SearchIndex::HasDescription;
            object.description = property->getPropAsString(*node);
        }
        if (!index.add(std::move(object)))
            return false;
        // A reference shows its target's children, found when searched.
        if (subsystem && !reference && !subsystem->getManifestFileSpec().empty()
            && !addChildren(subsystem->getManifestFileSpec(), subsystem->getIsEmpty(), depth + 1, reading, index))
            return false;
    }
    return true;
}

} // namespace LibraryBrowser
