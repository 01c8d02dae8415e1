#include "repository/xmlrepository/ProductDiscovery.h"

#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/ArchiveUpdater.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/WriterContext.h"
#include "repository/xmlrepository/XMLRepository.h"
#include "repository/xmlrepository/XMLRepositoryWriter.h"

#include <QFile>

#include <set>
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace LibraryBrowser {

namespace {

bool isNamed(const LibraryImpl& node, const std::string& productName)
{
    return productName.empty() || node.getDisplayPath() == productName || node.getPath() == productName;
}

} // namespace

bool ProductDiscovery::discardIncompatibleStore()
{
    RepositoryReport& report = *m_context.report;
    const std::string current = Model::createModel()->signature().toString();
    const std::string path = XMLRepository::getTopLevelManifestFile(report, m_context.repositoryDirectory, false);
    if (!QFile::exists(QString::fromStdString(path)) || m_writer.reader().getVersion() == current)
        return true;
    report.log("The version of the repository on disk is incompatible with the current model. Destroying it.");
    if (!QFile::remove(QString::fromStdString(path))) {
        report.logError("Unable to remove top level manifest file (read-only?). Aborting generation");
        return false;
    }
    ReaderCacheRegistry::unloadTopLevelCaches(m_context.repositoryDirectory);
    m_writer.destroyRepository();
    return true;
}

void ProductDiscovery::removeProduct(Model& model, LibraryImpl* node, bool keepArchives)
{
    if (!keepArchives)
        m_archives.destroyProductData(*node);
    const LibraryImplList dependencies = node->getDependencies();
    for (LibraryImpl* dependency : dependencies)
        if (dependency && dependency != node)
            model.removeNode(dependency);
    model.removeNode(node);
}

void ProductDiscovery::syncTopLevelManifest(int mode, const std::string& productName)
{
    if (!discardIncompatibleStore())
        return;
    const ModelPtr loaded = m_writer.reader().topLevelManifest();
    ModelPtr model = loaded ? loaded : Model::createModel();
    // Discovery mostly finds what the store lists already: then the stored
    // manifest is left as it is, unread and unwritten. Setters of single
    // values note a change only when the value differs; the lists are
    // compared here, and nodes made or taken out are counted.
    const int nodesBefore = model->nodeCount();
    const std::size_t createdBefore = model->createdCount();

    // Products by path, kept in the model's order so that the walks below
    // don't depend on hashing.
    std::unordered_map<std::string, LibraryImpl*> stored;
    std::vector<LibraryImpl*> order;
    for (TandrilObjectImpl* node : model->getNodes()) {
        auto* library = dynamic_cast<LibraryImpl*>(node);
        if (library && library->getIsProduct()) {
            stored[library->getPath()] = library;
            order.push_back(library);
        }
    }

    // A product taken out of the model must leave both tables: the walks
    // below go through `order`, and the node is gone.
    const auto forget = [&](LibraryImpl* node, bool keepArchives) {
        for (auto it = stored.begin(); it != stored.end();)
            it = it->second == node ? stored.erase(it) : std::next(it);
        order.erase(std::remove(order.begin(), order.end(), node), order.end());
        removeProduct(*model, node, keepArchives);
    };

    if (mode == 2) {
        if (productName.empty() && model->nodeCount() > 0) {
            model = Model::createModel();
            stored.clear();
            order.clear();
        } else if (const auto found = stored.find(productName); found != stored.end()) {
            // The product is made anew, but its archives stay until new
            // ones replace them: the generation may fail.
            model->beginChangeSet();
            forget(found->second, true);
            model->commitChangeSet();
        }
    }

    model->beginChangeSet();
    const ProductsData data = m_context.host.getTdBlocksData(m_writer.hostPathList());
    // The nodes of the entries taken, which stand at the top unless a
    // palette lists them: set once the palettes are known, so that a member
    // is not set to the top and back, which would count as a change.
    std::vector<LibraryImpl*> announced;
    std::unordered_set<std::string> seen;
    for (std::size_t entry = 0; entry < data.size(); ++entry) {
        const std::string& file = data.modelFiles[entry];
        const std::string& label = data.productNames[entry];
        // Archives go below the store only: a directory that would lead out
        // of it is refused before anything is written there.
        if (holdsControlCharacter(file) || holdsControlCharacter(label)) {
            m_context.report->logWarning("The product " + showControlCharacters(label) + " of "
                                         + showControlCharacters(file)
                                         + " is left out: its name holds a control character.");
            continue;
        }
        if (const std::string problem = storePathProblem(data.reposDirectories.at(entry)); !problem.empty()) {
            m_context.report->logWarning("The product " + label + " is left out: its repository directory '"
                                         + data.reposDirectories.at(entry) + "' does not stay inside the store ("
                                         + problem + ").");
            continue;
        }
        if (seen.count(file)) {
            m_context.report->logWarning("The model file " + file +
                                         " appeared in more than one tdblocks file. The first one that was found "
                                         "on the path will be used.");
            continue;
        }
        if (seen.count(label)) {
            m_context.report->logWarning("The product name " + label +
                                         " appeared in more than one tdblocks file. The first one that was found "
                                         "on the path will be used.");
            continue;
        }
        seen.insert(file);
        seen.insert(label);
        if (!productName.empty() && productName != label && productName != file)
            continue;

        const bool isPalette = data.types.at(entry) == ProductsData::LibraryType::Palette;
        LibraryImpl* node = nullptr;
        if (const auto found = stored.find(file); found != stored.end()) {
            node = found->second;
            if ((dynamic_cast<PaletteImpl*>(node) != nullptr) != isPalette) {
                forget(node, false);
                node = nullptr;
            }
        }
        if (!node) {
            node = isPalette ? model->createPaletteImpl() : model->createLibraryImpl();
            stored[file] = node;
            order.push_back(node);
        }
        setProperties(*node, data, entry);
        announced.push_back(node);
        mergeFileDependencies(*node, data.fileDependencies.at(entry));
        if (isPalette && node->getChildren() != data.children.at(entry))
            node->setChildren(data.children.at(entry));
    }

    std::vector<LibraryImpl*> kept;
    for (LibraryImpl* node : order) {
        if (stored.count(node->getPath()) == 0 || stored.at(node->getPath()) != node)
            continue;
        if (isNamed(*node, productName) && !seen.count(node->getPath())) {
            stored.erase(node->getPath());
            removeProduct(*model, node);
            continue;
        }
        kept.push_back(node);
    }

    std::unordered_set<LibraryImpl*> members;
    std::unordered_map<std::string, LibraryImpl*> byDisplayName;
    for (LibraryImpl* node : kept)
        byDisplayName[node->getDisplayName()] = node;
    for (LibraryImpl* node : kept) {
        if (!isNamed(*node, productName) || !dynamic_cast<PaletteImpl*>(node))
            continue;
        for (const std::string& childName : node->getChildren()) {
            LibraryImpl* target = nullptr;
            if (const auto byName = byDisplayName.find(childName); byName != byDisplayName.end())
                target = byName->second;
            else if (const auto byPath = stored.find(childName); byPath != stored.end())
                target = byPath->second;
            if (target)
                members.insert(target);
        }
    }
    for (LibraryImpl* node : announced)
        if (!members.count(node))
            node->setIsTopLevel(true);
    for (LibraryImpl* node : members)
        node->setIsTopLevel(false);
    const bool changed = model->commitChangeSet() || model != loaded || model->nodeCount() != nodesBefore
                         || model->createdCount() != createdBefore;
    m_writer.updateTopLevelManifest(*model, !changed);
}

void ProductDiscovery::setProperties(LibraryImpl& node, const ProductsData& data, std::size_t entry)
{
    const std::string& file = data.modelFiles[entry];
    const std::string encoded = sanitizeName(file);
    node.setName(blankLineFeeds(file));
    node.setPath(blankLineFeeds(file));
    node.setDisplayName(blankLineFeeds(data.productNames[entry]));
    node.setDisplayPath(blankLineFeeds(data.productNames[entry]));
    node.setUniquePath(StringId(node.getPath()));
    node.setReposDirectorySpec(forwardSlashes(data.reposDirectories.at(entry)));
    node.setDirectorySpec(encoded);
    node.setManifestFileSpec(node.getDirectorySpec() + "/" + "lb" + encoded + "manifest.xml");
    node.setReposManifestsArchiveSpec(node.getReposDirectorySpec() + "/" + "lb_" + encoded + "_manifests_repos.rps");
    node.setReposIconsArchiveSpec(node.getReposDirectorySpec() + "/" + "lb_" + encoded + "_icons_repos.rps");
    node.setIsProduct(true);
    node.setProduct(nullptr);
    node.setProductName(file);
    node.setTreeIcon(data.treeIcons.at(entry));
    node.setPanelIcon(data.panelIcons.at(entry));
    m_context.state.enterSpecs(node.getPath(), node.getDirectorySpec(), node.getManifestFileSpec());
}

void ProductDiscovery::mergeFileDependencies(LibraryImpl& node, const FileInfoVector& entries)
{
    std::set<std::string> wanted;
    for (const FileInfo& info : entries)
        wanted.insert(forwardSlashes(info.fileSpec));
    FileInfoVector merged;
    for (const FileInfo& known : node.getFileDependencies()) {
        const auto found = wanted.find(known.fileSpec);
        if (found == wanted.end())
            continue;
        merged.push_back(known);
        wanted.erase(found);
    }
    for (const std::string& fileSpec : wanted) {
        FileInfo added;
        added.fileSpec = fileSpec;
        merged.push_back(added);
    }
    if (merged != node.getFileDependencies())
        node.setFileDependencies(merged);
}

} // namespace LibraryBrowser
