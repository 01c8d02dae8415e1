#include "repository/xmlrepository/ManifestGenerator.h"

#include "repository/xmlrepository/ArchiveUpdater.h"
#include "repository/xmlrepository/GeneratedNames.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/WriterContext.h"

#include <QDir>

namespace LibraryBrowser {

namespace {

LibraryImpl* findByPath(const LibraryImplList& libraries, const std::string& path)
{
    for (LibraryImpl* library : libraries)
        if (library && library->getPath() == path)
            return library;
    return nullptr;
}

void appendDependency(LibraryImpl& owner, LibraryImpl* dependency)
{
    LibraryImplList dependencies = owner.getDependencies();
    dependencies.append(dependency);
    owner.setDependencies(dependencies);
}

} // namespace

bool ManifestGenerator::hasNoChildren(const std::string& path) const
{
    return m_context.host.getChildrenHandles(path).empty();
}

bool ManifestGenerator::childrenHaveNoChildren(const std::string& path) const
{
    for (double handle : m_context.host.getChildrenHandles(path))
        if (!m_context.host.getChildrenHandles(handle).empty())
            return false;
    return true;
}

void ManifestGenerator::generateLibrary(LibraryImpl& product, LibraryImpl& library, SubSystemImpl& node,
                                        LibraryWorklist& worklist, LibrarySet& usedLibraries)
{
    RepositoryReport& report = *m_context.report;
    report.log("Entering " + node.getDisplayPath());
    ++report.indentation;
    Model* owner = node.getModel();
    owner->beginChangeSet();
    node.setIsEmpty(hasNoChildren(node.getPath()));
    node.setIsFlat(childrenHaveNoChildren(node.getPath()));
    owner->commitChangeSet();

    const ModelPtr model = generateManifest(node);
    collectLibraryReferences(product, library, *model, worklist, usedLibraries);
    m_archives.generateIcons(node, *model);
    for (TandrilObjectImpl* child : model->getNodes()) {
        auto* subsystem = dynamic_cast<SubSystemImpl*>(child);
        if (subsystem && !dynamic_cast<LibraryRefImpl*>(subsystem))
            generateLibrary(product, library, *subsystem, worklist, usedLibraries);
    }
    if (model->nodeCount() > 0)
        m_context.state.storeSubSystemModel(&node, model);
    --report.indentation;
}

ModelPtr ManifestGenerator::generateManifest(const SubSystemImpl& node)
{
    ModelPtr model = Model::createModel();
    const std::vector<double> handles = m_context.host.getChildrenHandles(node.getPath());
    if (handles.empty())
        return model;
    const std::string temp = m_context.tempDirectory();
    QDir().mkpath(QString::fromStdString(temp + "/" + node.getDirectorySpec()));
    m_context.report->log("Generating manifest ( " + temp + "/" + node.getManifestFileSpec() + " )");
    model->beginChangeSet();
    for (double handle : handles) {
        BlockData data;
        m_context.host.getBlockData(handle, data);
        BlockImpl* child = createNodeFromBlockData(*m_context.report, data, node, *model);
        if (auto* subsystem = dynamic_cast<SubSystemImpl*>(child))
            m_context.state.enterSpecs(subsystem->getPath(), subsystem->getDirectorySpec(),
                                       subsystem->getManifestFileSpec());
    }
    model->commitChangeSet();
    return model;
}

BlockImpl* ManifestGenerator::createNodeFromBlockData(RepositoryReport& report, const BlockData& data,
                                                      const SubSystemImpl& parent, Model& model)
{
    // A manifest can't keep such a name: refused here, never stored altered.
    if (holdsControlCharacter(data.name)) {
        report.logError("Invalid block name " + parent.getPath() + "/" + showControlCharacters(data.name)
                        + ": it holds a control character");
        return nullptr;
    }
    model.beginChangeSet();
    BlockImpl* node = nullptr;
    if (data.type == "SubSystem")
        node = model.createSubSystemImpl();
    else if (data.type == "Block")
        node = model.createBlockImpl();
    else if (data.type == "LibraryRef")
        node = model.createLibraryRefImpl();
    if (!node) {
        report.logError("Invalid block type " + data.type);
        model.commitChangeSet();
        return nullptr;
    }
    node->setName(data.name);
    node->setPath(parent.getPath() + "/" + data.name);
    node->setDisplayName(data.displayName);
    node->setDisplayPath(parent.getDisplayPath() + "/" + data.displayName);
    node->setUniquePath(StringId(parent.getUniquePath().str() + "/" + data.name));
    node->setIconFileSpec(parent.getDirectorySpec() + "/" + GeneratedNames::fileName() + "icon.xml");
    node->setPosition(data.position);
    node->setDescription(data.description);
    node->setReposDirectorySpec(parent.getReposDirectorySpec());
    node->setReposManifestsArchiveSpec(parent.getReposManifestsArchiveSpec());
    node->setReposIconsArchiveSpec(parent.getReposIconsArchiveSpec());
    node->setProductName(parent.getProductName());
    // The host gives no icons of its own for children.
    node->setPanelIcon(std::string());
    node->setTreeIcon(std::string());
    if (auto* subsystem = dynamic_cast<SubSystemImpl*>(node)) {
        subsystem->setDirectorySpec(parent.getDirectorySpec() + "/" + GeneratedNames::directoryName());
        subsystem->setManifestFileSpec(subsystem->getDirectorySpec() + "/" + "lb" + GeneratedNames::fileName() +
                                       "manifest.xml");
    }
    if (auto* reference = dynamic_cast<LibraryRefImpl*>(node)) {
        reference->setLibraryRefName(data.libraryRefName);
        reference->setLibraryRefPath(data.libraryRefPath);
        reference->setLibraryRefUniquePath(reference->getProductName() + "-" + data.libraryRefPath);
    }
    model.commitChangeSet();
    return node;
}

void ManifestGenerator::collectLibraryReferences(LibraryImpl& product, LibraryImpl& library, const Model& model,
                                                 LibraryWorklist& worklist, LibrarySet& usedLibraries)
{
    if (model.nodeCount() == 0)
        return;
    Model* topLevel = product.getModel();
    topLevel->beginChangeSet();
    for (TandrilObjectImpl* node : model.getNodes()) {
        auto* reference = dynamic_cast<LibraryRefImpl*>(node);
        if (!reference)
            continue;
        const std::string& name = reference->getLibraryRefName();
        LibraryImpl* target = findByPath(product.getDependencies(), name);
        if (!target) {
            target = topLevel->createLibraryImpl();
            appendDependency(product, target);
        }
        if (&library != &product && !findByPath(library.getDependencies(), name))
            appendDependency(library, target);
        if (usedLibraries.insert(target).second) {
            worklist.push_back(target);
            const std::string encoded = sanitizeName(name);
            target->setName(blankLineFeeds(name));
            target->setPath(blankLineFeeds(name));
            target->setDisplayName(blankLineFeeds(forwardSlashes(name)));
            target->setDisplayPath(blankLineFeeds(forwardSlashes(name)));
            target->setUniquePath(StringId(product.getPath() + "-" + target->getPath()));
            target->setDirectorySpec(product.getDirectorySpec() + "/" + encoded);
            target->setManifestFileSpec(target->getDirectorySpec() + "/" + "lb" + encoded + "manifest.xml");
            target->setIsEmpty(hasNoChildren(target->getPath()));
            target->setIsFlat(childrenHaveNoChildren(target->getPath()));
            target->setIsProduct(false);
            target->setProduct(&product);
            target->setProductName(product.getPath());
            target->setReposDirectorySpec(product.getReposDirectorySpec());
            target->setReposManifestsArchiveSpec(product.getReposManifestsArchiveSpec());
            target->setReposIconsArchiveSpec(product.getReposIconsArchiveSpec());
            m_context.state.enterSpecs(target->getPath(), target->getDirectorySpec(), target->getManifestFileSpec());
        }
        m_context.state.libraryRefs.push_back(reference);
    }
    topLevel->commitChangeSet();
}

void ManifestGenerator::resolveLibraryReferences()
{
    RepositoryReport& report = *m_context.report;
    GenerationState& state = m_context.state;
    report.log("Resolving library references");
    for (LibraryRefImpl* reference : state.libraryRefs) {
        const std::string& target = reference->getLibraryRefPath();
        const auto directory = state.directorySpecs.find(target);
        const auto manifest = state.manifestFileSpecs.find(target);
        if (directory == state.directorySpecs.end() || manifest == state.manifestFileSpecs.end()) {
            report.logWarning("Unable to resolve library reference " + reference->getDisplayPath() + " to " + target);
            continue;
        }
        report.log("Resolved library reference " + reference->getDisplayPath() + " to " + target);
        Model* model = reference->getModel();
        model->beginChangeSet();
        reference->setDirectorySpec(directory->second);
        reference->setManifestFileSpec(manifest->second);
        reference->setIsEmpty(hasNoChildren(target));
        reference->setIsFlat(childrenHaveNoChildren(target));
        model->commitChangeSet();
    }
}

} // namespace LibraryBrowser
