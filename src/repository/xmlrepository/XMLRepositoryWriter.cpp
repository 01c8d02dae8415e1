#include "repository/xmlrepository/XMLRepositoryWriter.h"

#include "frame/MessageCatalogue.h"
#include "frame/Messages.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/PaletteChildren.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/StoreDamage.h"
#include "repository/xmlrepository/StoreLock.h"
#include "repository/xmlrepository/StoredDataCheck.h"
#include "repository/xmlrepository/XMLRepository.h"
#include "repository/xmlrepository/XMLRepositoryReaderCache.h"

#include <QDateTime>
#include <QFile>

#include <algorithm>

namespace LibraryBrowser {

namespace {

// Names each writer's temporary directory; plain data, main thread only.
int writerCount = 0;

// A writer's work on its reader's top-level model, which no other cache
// shares meanwhile.
class TopLevelChange {
public:
    explicit TopLevelChange(XMLRepositoryReader& reader) : m_cache(reader.readerCache())
    {
        m_cache.beginTopLevelChange();
    }
    ~TopLevelChange() { m_cache.endTopLevelChange(); }
    TopLevelChange(const TopLevelChange&) = delete;
    TopLevelChange& operator=(const TopLevelChange&) = delete;

private:
    XMLRepositoryReaderCache& m_cache;
};

bool isUsable(const Library& product)
{
    const TandrilObjectImpl* node = product.getImpl();
    return !product.isNull() && node && !node->getIsInvalid();
}

void discardErrors(RepositoryReport& report)
{
    report.clearError();
    report.takeErrors();
}

} // namespace

XMLRepositoryWriter::XMLRepositoryWriter(std::string directory, RepositoryReportPtr report,
                                         std::vector<std::string> hostPathList)
    : XMLRepositoryWriter(std::move(directory), std::move(report), std::string(), nullptr, std::move(hostPathList))
{
}

XMLRepositoryWriter::XMLRepositoryWriter(std::string directory, RepositoryReportPtr report,
                                         std::string shippedDirectory, RepositoryReader* activeReader,
                                         std::vector<std::string> hostPathList)
    : m_directory(forwardSlashes(directory)),
      m_shippedDirectory(forwardSlashes(shippedDirectory)),
      m_hostPathList(std::move(hostPathList)),
      m_report(report ? std::move(report) : RepositoryReport::create()),
      m_reader(std::make_shared<XMLRepositoryReader>(m_directory, m_report)),
      m_shippedReader(m_shippedDirectory.empty()
                          ? nullptr
                          : std::make_shared<XMLRepositoryReader>(m_shippedDirectory, m_report)),
      m_activeReader(activeReader ? activeReader : m_reader.get()),
      m_context(m_report, m_directory, writerCount++),
      m_archives(m_context),
      m_records(m_context),
      m_manifests(m_context, m_archives),
      m_discovery(*this, m_context, m_archives)
{
}

XMLRepositoryWriter::~XMLRepositoryWriter() = default;

void XMLRepositoryWriter::readShippedTopLevelFrom(XMLRepositoryReader& shipped)
{
    if (m_shippedReader)
        m_shippedReader->readerCache().shareTopLevelOf(&shipped.readerCache());
}

void XMLRepositoryWriter::generateRepository(GenerationMode mode)
{
    const StoreLock lock(*m_report, m_directory);
    const TopLevelChange change(*m_reader);
    XMLRepositoryReaderCache::forgetReplacedTopLevels(m_directory);
    m_discovery.syncTopLevelManifest(int(mode), std::string());
    if (!m_reader->topLevelManifest()) {
        m_report->logError("Unable to load top level manifest");
        return;
    }
    // By path: every product's generation reloads the top level.
    std::vector<std::string> paths;
    for (TandrilObjectIterator it = m_reader->getProductsIterator(); it.isValidIterator(); it.next())
        paths.push_back(it.current().getPath());
    for (const std::string& path : paths) {
        ModelPtr topLevel;
        if (LibraryImpl* product = storedProduct(path, topLevel))
            generateProductInternal(topLevel, *product, mode);
    }
    m_context.removeTempDirectory();
}

void XMLRepositoryWriter::generateProduct(const Library& product, GenerationMode mode)
{
    if (!isUsable(product)) {
        m_report->logError("Unable to start generation: the product is invalid");
        return;
    }
    const auto* block = dynamic_cast<const BlockImpl*>(product.getImpl());
    const std::string path = block ? block->getPath() : std::string();
    const StoreLock lock(*m_report, m_directory);
    const TopLevelChange change(*m_reader);
    XMLRepositoryReaderCache::forgetReplacedTopLevels(m_directory);
    m_discovery.syncTopLevelManifest(int(mode), path);
    ModelPtr topLevel;
    LibraryImpl* stored = storedProduct(path, topLevel);
    if (!stored) {
        m_report->logError("Unable to start generation: the product is invalid");
        return;
    }
    generateProductInternal(topLevel, *stored, mode);
    m_context.removeTempDirectory();
}

void XMLRepositoryWriter::updateProducts()
{
    const StoreLock lock(*m_report, m_directory);
    const TopLevelChange change(*m_reader);
    XMLRepositoryReaderCache::forgetReplacedTopLevels(m_directory);
    m_discovery.syncTopLevelManifest(0, std::string());
    m_context.removeTempDirectory();
}

void XMLRepositoryWriter::destroyRepository()
{
    const StoreLock lock(*m_report, m_directory);
    const TopLevelChange change(*m_reader);
    XMLRepositoryReaderCache::forgetReplacedTopLevels(m_directory);
    m_discovery.syncTopLevelManifest(0, std::string());
    if (const ModelPtr topLevel = m_reader->topLevelManifest()) {
        for (TandrilObjectImpl* node : topLevel->getNodes()) {
            auto* library = dynamic_cast<LibraryImpl*>(node);
            if (library && library->getIsProduct())
                m_archives.destroyProductData(*library);
        }
        const std::string path = XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false);
        if (QFile::exists(QString::fromStdString(path)) && !QFile::remove(QString::fromStdString(path)))
            m_report->logWarning("Unable to remove top level manifest file " + path);
        m_context.removeTempDirectory();
        ReaderCacheRegistry::refreshCaches(m_directory);
    }
}

void XMLRepositoryWriter::destroyProduct(const Library& product)
{
    const auto* block = dynamic_cast<const BlockImpl*>(product.getImpl());
    destroyProduct(block ? block->getPath() : std::string());
}

void XMLRepositoryWriter::destroyProduct(const std::string& name)
{
    const StoreLock lock(*m_report, m_directory);
    const TopLevelChange change(*m_reader);
    XMLRepositoryReaderCache::forgetReplacedTopLevels(m_directory);
    const ModelPtr topLevel = m_reader->topLevelManifest();
    const TandrilObject object = m_reader->getTandrilObject(name);
    auto* product = dynamic_cast<LibraryImpl*>(object.getImpl());
    if (!topLevel || !product || product->getIsInvalid() || product->getModel() != topLevel.get()) {
        m_report->logError("Unable to find product '" + name + "'");
        return;
    }
    m_archives.destroyProductData(*product);
    updateTopLevelManifest(*topLevel);
    ReaderCacheRegistry::unloadProductCaches(m_directory, object.toLibrary());
}

LibraryImpl* XMLRepositoryWriter::storedProduct(const std::string& path, ModelPtr& topLevel)
{
    topLevel = m_reader->topLevelManifest();
    if (!topLevel)
        return nullptr;
    auto* product = dynamic_cast<LibraryImpl*>(m_reader->getTandrilObject(path).getImpl());
    if (!product || product->getIsInvalid() || product->getModel() != topLevel.get())
        return nullptr;
    return product;
}

void XMLRepositoryWriter::generateProductInternal(const ModelPtr& topLevel, LibraryImpl& product,
                                                  GenerationMode mode)
{
    RepositoryReport& report = *m_report;
    // File dates recorded from here on that are not older than this second
    // are compared by content as well the next time (updateLastModified).
    m_context.generationStarted = QDateTime::currentSecsSinceEpoch();
    report.log("Processing product " + product.getDisplayName());
    ++report.indentation;
    if (report.hasError()) {
        report.logWarning("An error occurred before generating this product. Clearing the error flag to ensure "
                          "the product is properly generated.");
        discardErrors(report);
    }
    if (auto* palette = dynamic_cast<PaletteImpl*>(&product)) {
        // Returns without the closing line and leaves the indentation one
        // level deeper, as palettes always have.
        generatePalette(topLevel, *palette);
        return;
    }
    // Regenerating starts from nothing, but the store's archives stay until
    // new ones replace them: a run that fails must not cost the last good ones.
    const bool regenerate = mode == GenerationMode::Regenerate;
    if (regenerate)
        ArchiveUpdater::forgetFileRecords(product);
    const bool ignoreTimestamp = mode == GenerationMode::IgnoreTimestamp;
    // Taken while the node is the cache's: it keeps the product's id for the
    // notification at the end, when the cache has let go of the node.
    const TandrilObject handle(&product, m_reader->getCache());

    if (m_reader->isProductUpToDate(handle, ignoreTimestamp)) {
        generateUpToDateProduct(topLevel, product);
    } else {
        // Damage that a read noted is repaired by generating the product
        // from nothing: entries the records call up to date may be the
        // damaged ones. (An archive that can't be opened at all takes the
        // way of initArchive, which starts the product from nothing too.)
        const std::string uniquePath = product.getUniquePath().str();
        std::string damagedStore = m_directory;
        std::string damage = StoreDamage::noted(m_directory, uniquePath);
        // Damage of the shipped store is repaired here, in the writable one,
        // when this store has nothing of the product to work on.
        if (damage.empty() && !m_shippedDirectory.empty()
            && !StoredDataCheck::holdsReadableArchives(m_directory, product)) {
            damage = StoreDamage::noted(m_shippedDirectory, uniquePath);
            damagedStore = m_shippedDirectory;
        }
        const bool repair = !damage.empty();
        if (repair)
            ArchiveUpdater::forgetFileRecords(product);
        const bool hadReadableArchives = !repair && StoredDataCheck::holdsReadableArchives(m_directory, product);
        m_archives.openArchives(product, regenerate || repair);
        const bool opened = m_context.state.iconsArchive.isOpened() && m_context.state.manifestsArchive.isOpened();
        if (!opened) {
            // Not a skip in spite of its words: the phases below run on the
            // closed archives, which do nothing.
            report.logError("Unable to access one or more archives. Skipping product");
            clearGenerationState();
        }
        LibrarySet usedLibraries;
        const std::string failure = generateLibraries(product, handle, ignoreTimestamp, usedLibraries);
        if (!failure.empty() && hadReadableArchives) {
            keepLastArchives(product, failure);
            ReaderCacheRegistry::unloadProductCaches(m_directory, handle.toLibrary());
            --report.indentation;
            report.log("Finished product");
            return;
        }
        updateProductDependencies(product, usedLibraries);
        m_manifests.resolveLibraryReferences();
        // A file that could not be written leaves the store's archives as
        // they were, the last readable ones, and the product out of date
        // with every record of its libraries, since the store does not hold
        // what this run made of them.
        const bool published = opened && m_archives.saveManifests() && m_archives.updateArchives()
                               && m_archives.publishArchives(product);
        if (!published) {
            report.logWarning("The archives of product " + product.getDisplayName()
                              + " could not be written. It stays out of date and is generated again at the "
                                "next update.");
            ArchiveUpdater::forgetFileRecords(product);
        } else {
            // What was just written needs no reading whole to be trusted.
            for (const std::string& spec : {product.getReposIconsArchiveSpec().str(),
                                            product.getReposManifestsArchiveSpec().str()})
                StoreDamage::archiveWritten(m_directory, m_directory + "/" + spec);
        }
        if (published && repair) {
            StoreDamage::forget(m_directory, uniquePath);
            report.logWarning(RepairedId, "Repaired product " + product.getDisplayName() + " in " + damagedStore
                                              + ": " + damage + ". It was generated again.");
        }
        updateLastModified(product);
        updateTopLevelManifest(*topLevel);
        clearGenerationState();
        ReaderCacheRegistry::unloadProductCaches(m_directory, handle.toLibrary());
    }
    --report.indentation;
    report.log("Finished product");
}

void XMLRepositoryWriter::keepLastArchives(const LibraryImpl& product, const std::string& reason)
{
    RepositoryReport& report = *m_report;
    report.logWarning("Product " + product.getDisplayName() + " was not generated again (" + reason
                      + "). Its last readable archives are kept, and it is generated again at the next update.");
    const std::string path = product.getPath();
    clearGenerationState();
    // What this run changed of the top level belongs to archives that are not
    // published: the stored top level is taken up again, with the product's
    // file records cleared so that it stays out of date.
    ReaderCacheRegistry::unloadTopLevelCaches(m_directory);
    ModelPtr topLevel;
    if (LibraryImpl* stored = storedProduct(path, topLevel)) {
        ArchiveUpdater::forgetFileRecords(*stored);
        updateTopLevelManifest(*topLevel);
    }
}

void XMLRepositoryWriter::generateUpToDateProduct(const ModelPtr& topLevel, LibraryImpl& product)
{
    m_report->log("Product is up-to-date!");
    m_records.updateLibraryData(product);
    m_records.updateFileDependencyDates(product);
    for (LibraryImpl* dependency : product.getDependencies()) {
        if (!dependency)
            continue;
        m_records.updateLibraryData(*dependency);
        m_records.updateFileDependencyDates(*dependency);
    }
    updateTopLevelManifest(*topLevel);
    clearGenerationState();
}

std::string XMLRepositoryWriter::generateLibraries(LibraryImpl& product, const TandrilObject& handle,
                                                   bool ignoreTimestamp, LibrarySet& usedLibraries)
{
    RepositoryReport& report = *m_report;
    std::string failure;
    LibraryWorklist worklist{&product};
    while (!worklist.empty()) {
        LibraryImpl* library = worklist.front();
        worklist.pop_front();
        usedLibraries.insert(library);
        const bool regenerate = library->getIsProduct() ||
                                !m_context.state.manifestsArchive.exists(library->getManifestFileSpec()) ||
                                !m_reader->isLibraryUpToDate(handle, library->getPath(), ignoreTimestamp);
        if (!regenerate) {
            report.log("Library " + library->getDisplayName() + " is up-to-date!");
            m_records.updateLibraryData(*library);
            m_records.updateFileDependencyDates(*library);
            for (LibraryImpl* dependency : library->getDependencies())
                if (dependency && !usedLibraries.count(dependency))
                    worklist.push_back(dependency);
            continue;
        }
        m_archives.removeLibraryFromArchive(*library);
        // Only what the walk itself logs makes the generation a failure: a
        // record that can't be refreshed (a model file without a checksum)
        // leaves the archives whole.
        const std::size_t errorsBefore = report.getErrors().size();
        m_manifests.generateLibrary(product, *library, *library, worklist, usedLibraries);
        if (failure.empty() && report.getErrors().size() > errorsBefore)
            failure = report.getErrors()[errorsBefore].message;
        if (report.hasError()) {
            // The flag stays: every later library of this product takes this way too.
            report.logWarning("The check sum of library '" + library->getDisplayName() +
                              "' was not updated. At least one error occurred in the generation process.");
            continue;
        }
        m_records.updateLibraryData(*library);
        m_records.updateCheckSums(*library);
    }
    return failure;
}

void XMLRepositoryWriter::generatePalette(const ModelPtr& topLevel, PaletteImpl& palette)
{
    const std::string path = palette.getPath();
    // Copied: a member's generation reloads the top level and this node with it.
    const std::string displayName = palette.getDisplayName();
    const Library handle = TandrilObject(&palette, m_reader->getCache()).toLibrary();
    const std::vector<TandrilObject> children = paletteChildren(*m_report, handle, *m_activeReader);
    m_palettesGenerating.push_back(path);
    for (const TandrilObject& child : children) {
        if (!child.getIsProduct())
            continue;
        if (std::find(m_palettesGenerating.begin(), m_palettesGenerating.end(), child.getPath())
            != m_palettesGenerating.end()) {
            m_report->logWarning("Tandril:LibraryBrowser:CycleInPalette",
                                 Messages::xlatedMessageFromIdAndCharStar(MessageId::TDLB_CycleInPalette,
                                                                          displayName));
            continue;
        }
        if (!m_activeReader->isProductUpToDate(child))
            generateProduct(child.toLibrary());
    }
    m_palettesGenerating.pop_back();

    // A member's generation writes the top level anew: the palette's node
    // must be taken from the model now current.
    ModelPtr current = topLevel;
    auto* node = dynamic_cast<PaletteImpl*>(storedProduct(path, current));
    if (!node) {
        current = topLevel;
        node = &palette;
    }
    current->beginChangeSet();
    node->setIsEmpty(children.empty());
    node->setIsFlat(true);
    for (const TandrilObject& child : children)
        if (m_activeReader->getChildrenIterator(child).isValidIterator())
            node->setIsFlat(false);
    updateLastModified(*node);
    m_records.updateFileDependencyCheckSums(*node);
    current->commitChangeSet();
    updateTopLevelManifest(*current);
    ReaderCacheRegistry::unloadProductCaches(m_directory, handle);
}

void XMLRepositoryWriter::updateProductDependencies(LibraryImpl& product, const LibrarySet& usedLibraries)
{
    RepositoryReport& report = *m_report;
    report.log("Updating product dependencies");
    ++report.indentation;
    std::vector<LibraryImpl*> stale;
    for (LibraryImpl* dependency : product.getDependencies())
        if (dependency && !usedLibraries.count(dependency))
            stale.push_back(dependency);

    Model* model = product.getModel();
    model->beginChangeSet();
    LibrarySet visited;
    std::vector<LibraryImpl*> pending{&product};
    while (!pending.empty()) {
        LibraryImpl* library = pending.back();
        pending.pop_back();
        if (!visited.insert(library).second)
            continue;
        LibraryImplList dependencies = library->getDependencies();
        for (LibraryImpl* gone : stale)
            dependencies.removeOnce(gone);
        library->setDependencies(dependencies);
        for (LibraryImpl* dependency : dependencies)
            if (dependency)
                pending.push_back(dependency);
    }
    model->commitChangeSet();

    for (LibraryImpl* gone : stale) {
        report.log("Library " + gone->getDisplayName() + " is no longer used. Removing it from the archive");
        m_archives.removeLibraryFromArchive(*gone);
    }
    model->beginChangeSet();
    for (LibraryImpl* gone : stale)
        model->removeNode(gone);
    model->commitChangeSet();
    --report.indentation;
}

void XMLRepositoryWriter::updateLastModified(LibraryImpl& library)
{
    // The generation's start rather than its end: the date then also tells
    // from when on a recorded file date is too recent to be trusted alone.
    const QDateTime started = m_context.generationStarted
                                  ? QDateTime::fromSecsSinceEpoch(m_context.generationStarted)
                                  : QDateTime::currentDateTime();
    const std::string now = started.toString(Qt::TextDate).toStdString();
    Model* model = library.getModel();
    model->beginChangeSet();
    library.setLastModified(now);
    if (m_shippedReader && m_shippedReader->exists()) {
        const TandrilObject shipped = m_shippedReader->getTandrilObject(library.getPath());
        const auto* node = dynamic_cast<const LibraryImpl*>(shipped.getImpl());
        if (node && !node->getIsInvalid())
            library.setShadowedLastModified(node->getLastModified());
    }
    model->commitChangeSet();
}

void XMLRepositoryWriter::updateTopLevelManifest(const Model& model, bool unchanged)
{
    const std::string path = XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false);
    m_report->log("Updating top level manifest (writing: " + path + ")");
    if (unchanged)
        return;
    // Most calls write back what the store holds (a product found up to date,
    // a discovery that changed nothing): then putting a new file in place
    // would only cost a file created and synced on the disk.
    // The read caches then hold what the file holds, and need not read it
    // again: at a thousand products that read costs more than the rest of
    // a generation of one.
    // Serialized once: at a thousand products each writing costs more than
    // the product it follows.
    const QByteArray bytes = model.saveToBytes(Model::Compact);
    if (holdsBytes(path, bytes)) {
        m_reader->readerCache().topLevelMatchesFile(model);
        return;
    }
    const std::string copy = XMLRepository::getTopLevelManifestFile(*m_report, m_context.tempDirectory(), false);
    // An older copy left in the temporary directory must not take its place.
    const bool written = ArchiveUpdater::saveManifest(*m_report, bytes, copy) && copyFile(*m_report, copy, path);
    // The writer's own reader holds the model just written; reading it back
    // after each product of a thousand cost more than the product.
    XMLRepositoryReaderCache& own = m_reader->readerCache();
    ReaderCacheRegistry::unloadTopLevelCaches(m_directory, written && own.keepsWrittenTopLevel(model) ? &own : nullptr);
}

void XMLRepositoryWriter::clearGenerationState()
{
    m_context.state.clear();
    discardErrors(*m_report);
}

} // namespace LibraryBrowser
