#include "repository/xmlrepository/XMLRepository.h"

#include "model/Model.h"
#include "repository/HandleData.h"
#include "repository/ReaderCacheRegistry.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/StoreDamage.h"
#include "repository/xmlrepository/StoreLock.h"
#include "repository/xmlrepository/StoredDataCheck.h"
#include "repository/xmlrepository/TempDirectoryOwners.h"
#include "repository/xmlrepository/XMLRepositoryReaderCache.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <cstdio>
#include <set>
#include <unordered_map>

namespace LibraryBrowser {

namespace {

const char* const BlocksDirectory = "toolbox/tandril/blocks";

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

QString shippedManifestDate(const std::string& shippedTop)
{
    return QFileInfo(qs(shippedTop)).lastModified().toString(Qt::TextDate);
}

std::string blocksDirectory(RepositoryReport& report, const std::string& store, bool create)
{
    const std::string directory = store + "/" + BlocksDirectory;
    if (create && !QDir().mkpath(qs(directory)))
        report.logError("Unable to create top level manifest directory " + directory);
    return directory;
}

// Whether the writable store can take what the writer makes.
bool isWritableDirectory(const std::string& directory)
{
    const QFileInfo info(qs(directory));
    return info.isDir() && info.isWritable();
}

} // namespace

XMLRepository::XMLRepository()
    : m_report(RepositoryReport::create()),
      m_writableDirectory(writableRepositoryDirectory(*m_report)),
      m_shippedDirectory(shippedRepositoryDirectory())
{
    buildParts();
}

XMLRepository::XMLRepository(const std::string& writableDirectory, const std::string& shippedDirectory,
                             const std::vector<std::string>& hostPathList)
    : m_report(RepositoryReport::create()),
      m_writableDirectory(writableDirectory),
      m_shippedDirectory(shippedDirectory),
      m_hostPathList(hostPathList)
{
    const QString writable = qs(m_writableDirectory);
    if (!QFileInfo::exists(writable) && !QDir().mkpath(writable))
        m_report->logWarning("Unable to create preference directory");
    buildParts();
}

void XMLRepository::buildParts()
{
    m_report->logToConsoleInteractively(false);
    m_readOnly = !isWritableDirectory(m_writableDirectory);
    if (m_readOnly) {
        const std::string message = "The preferences directory " + m_writableDirectory
                                    + " can't be written: the repository is read as shipped, and nothing can be "
                                      "written or updated.";
        m_report->logWarning(ReadOnlyWarningId, message);
        // Once per process and store, however many repositories are opened on it.
        static std::set<std::string> told;
        if (told.insert(m_writableDirectory).second) {
            std::fprintf(stderr, "%s\n", message.c_str());
            std::fflush(stderr);
        }
    }
    // What killed processes left in the temporary directory goes at the
    // first opening of a repository in this process.
    TempDirectoryOwners::removeLeftOversOnce(*m_report);
    StoreDamage::registerStores(m_shippedDirectory, m_writableDirectory);
    m_shippedReader = std::make_shared<XMLRepositoryReader>(m_shippedDirectory, m_report, this);
    m_writableReader = std::make_shared<XMLRepositoryReader>(m_writableDirectory, m_report, this);
    m_cache = std::make_shared<XMLRepositoryCache>(m_shippedDirectory, m_writableDirectory, m_report, this);
    m_writer = std::make_shared<XMLRepositoryWriter>(m_writableDirectory, m_report, m_shippedDirectory, this,
                                                     m_hostPathList);
    // The shipped store is read once per process, not once more by the
    // writer for the dates its copies shadow.
    m_writer->readShippedTopLevelFrom(*m_shippedReader);
    // Nor the writable one again by the repository, which the writer has
    // read or just written.
    m_writableReader->readerCache().shareTopLevelOf(&m_writer->reader().readerCache());
}

XMLRepository::~XMLRepository()
{
    StoreDamage::saveRecords();
    m_cache->detachRepository();
    m_cache.reset();
    m_writer.reset();
    m_writableReader.reset();
    m_shippedReader.reset();
}

std::string XMLRepository::getTopLevelManifestFile(RepositoryReport& report, const std::string& store, bool create)
{
    return blocksDirectory(report, store, create) + "/" + "lb" + "toplevel" + "manifest.xml";
}

std::string XMLRepository::getTopLevelTokenFile(RepositoryReport& report, const std::string& store, bool create)
{
    return blocksDirectory(report, store, create) + "/.topLevelManifestToken";
}

bool XMLRepository::waitForFile(const std::string& path)
{
    return fileExists(path);
}

bool XMLRepository::exists()
{
    return m_shippedReader->exists();
}

bool XMLRepository::isProductUpToDate(const TandrilObject& product, bool ignoreTimestamp)
{
    return m_writableReader->isProductUpToDate(product, ignoreTimestamp) ||
           m_shippedReader->isProductUpToDate(product, ignoreTimestamp);
}

TandrilObjectIterator XMLRepository::getAllProductsIterator()
{
    return m_cache->getAllProductsIterator();
}

TandrilObjectIterator XMLRepository::getProductsIterator()
{
    return m_cache->getProductsIterator();
}

TandrilObjectIterator XMLRepository::getChildrenIterator(const TandrilObject& object)
{
    return m_cache->getChildrenIterator(object);
}

BlockIconPtr XMLRepository::getIcon(const TandrilObject& object)
{
    return m_cache->getIcon(object);
}

std::shared_ptr<const SearchIndex> XMLRepository::getSearchIndex(const TandrilObject& product)
{
    const Library library = product.toLibrary();
    // The store that serves the product is chosen, and the product made up
    // to date, as for a read of its manifests.
    const auto reader = library.isValid() ? m_cache->getReader(library) : nullptr;
    return reader ? reader->getSearchIndex(product) : nullptr;
}

bool XMLRepository::refuseWriting()
{
    if (m_readOnly)
        m_report->logError("Nothing can be written: the preferences directory " + m_writableDirectory
                           + " can't be written");
    return m_readOnly;
}

void XMLRepository::generateRepository(GenerationMode mode)
{
    if (refuseWriting())
        return;
    const StoreLock lock(*m_report, m_writableDirectory);
    XMLRepositoryReaderCache::forgetReplacedTopLevels(m_writableDirectory);
    if (mode == GenerationMode::Regenerate) {
        m_writer->generateRepository(mode);
    } else {
        for (TandrilObjectIterator it = getProductsIterator(); it.isValidIterator(); it.next())
            generateProduct(it.current().toLibrary(), mode);
    }
    forgetTopLevelManifests();
}

void XMLRepository::generateProduct(const Library& product, GenerationMode mode)
{
    if (m_shippedReader->isProductUpToDate(product, mode == GenerationMode::IgnoreTimestamp) || refuseWriting())
        return;
    const StoreLock lock(*m_report, m_writableDirectory);
    m_writer->generateProduct(product, mode);
    forgetTopLevelManifests();
}

void XMLRepository::updateProducts()
{
    bringProductsInStep();
    // Also where nothing changed: a refresh must read every product again.
    if (!m_readOnly)
        forgetTopLevelManifests();
}

void XMLRepository::updateProductsOnOpen()
{
    // Nothing was read before that the update could leave behind, and what
    // it read itself is what the store holds; a manifest another process
    // replaced is dropped, as by every update.
    bringProductsInStep();
}

void XMLRepository::bringProductsInStep()
{
    // Nothing to bring in step where nothing can be written: the stores are
    // read as they are.
    if (m_readOnly)
        return;
    const StoreLock lock(*m_report, m_writableDirectory);
    XMLRepositoryReaderCache::forgetReplacedTopLevels(m_writableDirectory);
    syncTopLevelManifest();
    m_writer->updateProducts();
}

void XMLRepository::destroyRepository()
{
    if (refuseWriting())
        return;
    const StoreLock lock(*m_report, m_writableDirectory);
    const std::string token = getTopLevelTokenFile(*m_report, m_writableDirectory, false);
    if (QFile::exists(qs(token)))
        QFile::remove(qs(token));
    m_writer->destroyRepository();
    forgetTopLevelManifests();
}

void XMLRepository::destroyProduct(const Library& product)
{
    if (refuseWriting())
        return;
    m_writer->destroyProduct(product);
    forgetTopLevelManifests();
}

void XMLRepository::forgetTopLevelManifests()
{
    // The writer's reader keeps a model that is, unchanged, what the file
    // holds: the repository's reader takes it from there, where reading
    // the file again after each product of a thousand cost more than the
    // product.
    XMLRepositoryReaderCache& written = m_writer->reader().readerCache();
    ReaderCacheRegistry::unloadTopLevelCaches(m_writableDirectory,
                                              written.holdsTopLevelAsOnDisk() ? &written : nullptr);
}

bool XMLRepository::regenerateShippedStore()
{
    const bool echo = m_report->isLoggingToConsole();
    m_report->logToConsoleInteractively(true);
    m_report->log("The Numora shipped repository is out of date or doesn't exists.");
    m_report->log("This should only happen in Ostrel sandboxes. Trying to regenerate it.");
    {
        XMLRepositoryWriter shippedWriter(m_shippedDirectory, m_report);
        shippedWriter.destroyRepository();
        shippedWriter.generateRepository();
    }
    ReaderCacheRegistry::unloadTopLevelCaches(m_shippedDirectory);
    const bool regenerated = !m_report->hasError();
    if (!regenerated)
        m_report->logError("Unable to generate the numora repository.");
    m_report->logToConsoleInteractively(echo);
    return regenerated;
}

void XMLRepository::syncTopLevelManifest()
{
    m_report->log("Syncing the top level manifest to the writable disk aera, if necessary");

    const std::string current = Model::createModel()->signature().toString();
    const std::string rootVersion = m_shippedReader->getVersion();
    const bool rootExists = m_shippedReader->exists();
    // A shipped manifest that is there but can't be read is damage, not a
    // sandbox without a store: the root is never written for it, and the
    // products are generated into the writable store.
    const std::string shippedFile = getTopLevelManifestFile(*m_report, m_shippedDirectory, false);
    const bool shippedDamaged = (current != rootVersion || !rootExists) && QFile::exists(qs(shippedFile))
                                && (rootVersion.empty() || rootVersion == current);
    if (shippedDamaged) {
        m_report->logWarning("The shipped top level manifest " + shippedFile + " is damaged ("
                             + StoredDataCheck::manifestFileProblem(shippedFile)
                             + "). Its products are generated into the writable store.");
    } else if (current != rootVersion || !rootExists) {
        if (isAutomatedBuildUser()) {
            // A build machine must never ship without the store: stop the build.
            m_report->log(std::string("Numora root exists: ") + (rootExists ? "true" : "false"));
            m_report->log("Numora root model version: " + rootVersion);
            Platform::environment().assertionFailed("repository/xmlrepository/XMLRepository", 137,
                                                    "The repository should always exists in Kiln");
        }
        if (!regenerateShippedStore())
            return;
    }

    const std::string shippedTop = getTopLevelManifestFile(*m_report, m_shippedDirectory, true);
    const std::string writableTop = getTopLevelManifestFile(*m_report, m_writableDirectory, true);
    const std::string token = getTopLevelTokenFile(*m_report, m_writableDirectory, true);
    QFile tokenFile(qs(token));

    // A token without a manifest means nothing.
    if (!QFile::exists(qs(writableTop)) && tokenFile.exists())
        tokenFile.remove();
    // Nor does one beside a manifest that can't be read: the store would list
    // no product on every run after. The manifest goes, since nothing can be
    // read from it, and the store is seeded anew from the shipped one.
    if (tokenFile.exists()) {
        const std::string problem = m_writer->reader().readerCache().topLevelFileProblem();
        if (!problem.empty()) {
            m_report->logWarning("The top level manifest " + writableTop
                                 + " is damaged and will be made anew: " + problem);
            QFile::remove(qs(writableTop));
            tokenFile.remove();
        }
    }

    if (tokenFile.exists()) {
        QString line;
        if (tokenFile.open(QIODevice::ReadOnly | QIODevice::Text)) {
            line = QTextStream(&tokenFile).readLine();
            tokenFile.close();
        }
        if (line != shippedManifestDate(shippedTop))
            tokenFile.remove();
    }

    if (!tokenFile.exists()) {
        destroyRepository();
        // Notes of damage belong to the stores just left behind.
        StoreDamage::forgetAll(m_writableDirectory);
        if (!shippedDamaged && copyFile(*m_report, shippedTop, writableTop)) {
            // A copy of a read-only file is read-only.
            QFile::setPermissions(qs(writableTop), QFile::permissions(qs(writableTop)) | QFileDevice::WriteOwner |
                                                       QFileDevice::WriteUser);
        }
        if (!tokenFile.open(QIODevice::ReadWrite | QIODevice::Text | QIODevice::Truncate)) {
            m_report->logError("Unable to open token file " + token);
        } else {
            QTextStream(&tokenFile) << shippedManifestDate(shippedTop);
            tokenFile.close();
        }
        forgetTopLevelManifests();
        // Nothing was seeded: every product, palettes too, is made here, as
        // the shipped store would have been.
        if (shippedDamaged) {
            m_writer->generateRepository(GenerationMode::Minimal);
            forgetTopLevelManifests();
        }
    }
}

XMLRepositoryReaderPtr XMLRepository::getReaderForProduct(const Library& product)
{
    if (m_writableReader->isProductUpToDate(product))
        return m_writableReader;
    if (m_readOnly)
        return m_writableReader->isProductUpToDate(product) ? m_writableReader : m_shippedReader;
    noteMissingArchives(product);
    // Damage of the writable store is repaired even where the shipped store
    // could serve the product meanwhile.
    const bool writableDamaged = !StoreDamage::noted(m_writableDirectory, product.id().str()).empty();
    if (writableDamaged || !m_shippedReader->isProductUpToDate(product)) {
        // Another process may be generating the product this moment: once
        // its lock is had, the store is asked again.
        const StoreLock lock(*m_report, m_writableDirectory);
        XMLRepositoryReaderCache::forgetReplacedTopLevels(m_writableDirectory);
        if (m_writableReader->isProductUpToDate(product))
            return m_writableReader;
        copyProductArchives(*m_report, *m_writableReader, *m_shippedReader, product);
        const std::string displayName = product.getDisplayName();
        const auto* node = dynamic_cast<const BlockImpl*>(product.getImpl());
        const std::string displayPath = node ? node->getDisplayPath() : std::string();
        emit preGenerateProduct(displayName);
        m_writer->generateProduct(product, GenerationMode::Minimal);
        forgetTopLevelManifests();
        emit postGenerateProduct(displayPath);
        if (m_writableReader->isProductUpToDate(product))
            return m_writableReader;
        // A failed generation leaves the writable store's last readable
        // archives, which are at least as recent as the shipped ones.
        const auto* library = dynamic_cast<const LibraryImpl*>(product.getImpl());
        if (library && StoredDataCheck::holdsReadableArchives(m_writableReader->directory(), *library))
            return m_writableReader;
    }
    return m_writableReader->isProductUpToDate(product) ? m_writableReader : m_shippedReader;
}

void XMLRepository::noteMissingArchives(const Library& product)
{
    const LibraryImpl* own = m_writableReader->storedProduct(product);
    // Only a record the writable store made itself promises archives there:
    // one seeded from the shipped store is that store's, with the same date.
    // A palette and a product without blocks have none.
    if (!own || own->getModelFileCheckSum().empty() || own->getIsEmpty() || dynamic_cast<const PaletteImpl*>(own))
        return;
    const LibraryImpl* shipped = m_shippedReader->storedProduct(product);
    if (shipped && shipped->getLastModified() == own->getLastModified())
        return;
    for (const std::string& spec : {own->getReposIconsArchiveSpec().str(), own->getReposManifestsArchiveSpec().str()}) {
        const std::string path = m_writableDirectory + "/" + spec;
        // Noted, since the shipped archives copied in its place would hide it.
        if (!QFileInfo::exists(qs(path))) {
            StoreDamage::note(m_writableDirectory, own->getUniquePath().str(), "the archive " + path + " is missing");
            return;
        }
    }
}

void XMLRepository::copyProductArchives(RepositoryReport& report, XMLRepositoryReader& writableReader,
                                        XMLRepositoryReader& shippedReader, const Library& product)
{
    if (shippedReader.getVersion() != Model::createModel()->signature().toString()) {
        report.logWarning("Unable to use the numoraroot repository. It was generated with an older version of "
                          "the data model.");
        return;
    }
    const auto* library = dynamic_cast<const LibraryImpl*>(product.getImpl());
    if (!library)
        return;
    const std::string& icons = library->getReposIconsArchiveSpec();
    const std::string& manifests = library->getReposManifestsArchiveSpec();
    const std::string shippedIcons = shippedReader.directory() + "/" + icons;
    const std::string writableIcons = writableReader.directory() + "/" + icons;
    const std::string shippedManifests = shippedReader.directory() + "/" + manifests;
    const std::string writableManifests = writableReader.directory() + "/" + manifests;
    if (QFile::exists(qs(writableIcons)) && QFile::exists(qs(writableManifests)))
        return;
    // Damaged shipped data would only be carried over: the product is then
    // generated from nothing.
    if (!StoreDamage::noted(shippedReader.directory(), library->getUniquePath().str()).empty())
        return;
    if (QFile::exists(qs(shippedIcons)) && QFile::exists(qs(shippedManifests))) {
        copyFile(report, shippedIcons, writableIcons);
        copyFile(report, shippedManifests, writableManifests);
    }
}

TandrilObject XMLRepository::boundHandle(TandrilObjectImpl* node)
{
    TandrilObject handle(node, m_cache.get());
    if (handle.getData() && handle.getData()->node() != node)
        handle.getData()->setNode(node);
    return handle;
}

namespace {

std::vector<LibraryImpl*> productNodes(XMLRepositoryReader& reader)
{
    std::vector<LibraryImpl*> libraries;
    if (const ModelPtr manifest = reader.topLevelManifest())
        for (TandrilObjectImpl* node : manifest->getNodes())
            if (auto* library = dynamic_cast<LibraryImpl*>(node))
                libraries.push_back(library);
    return libraries;
}

} // namespace

std::vector<TandrilObject> XMLRepository::getMergedProducts()
{
    // Read from each store's own nodes: the handles of both stores share
    // one HandleData per product, which holds only one of the two nodes.
    // By unique path: a product and a library another product references
    // share a path, and only the former shadows the shipped product.
    std::unordered_map<std::string, LibraryImpl*> shipped;
    for (LibraryImpl* library : productNodes(*m_shippedReader))
        shipped[library->getUniquePath().str()] = library;

    std::vector<TandrilObject> merged;
    // A writable store without a product list (read-only preferences, or
    // another process destroying it this moment) has nothing to add: the
    // shipped products are what there is.
    if (!m_writableReader->topLevelManifest()) {
        for (LibraryImpl* library : productNodes(*m_shippedReader))
            merged.push_back(boundHandle(library));
        return merged;
    }
    for (LibraryImpl* writable : productNodes(*m_writableReader)) {
        const auto found = shipped.find(writable->getUniquePath().str());
        // A difference means the shipped product changed after the writable
        // copy took it over: the shipped one is the newer.
        if (found == shipped.end() || found->second->getLastModified() == writable->getShadowedLastModified())
            merged.push_back(boundHandle(writable));
        else
            merged.push_back(boundHandle(found->second));
    }
    return merged;
}

std::vector<TandrilObject> XMLRepository::getMergedProductsAndDependencies()
{
    const std::vector<TandrilObject> products = getMergedProducts();
    std::vector<TandrilObject> result = products;
    std::set<std::string> listed;
    for (const TandrilObject& product : products)
        listed.insert(product.id().str());
    // One level only: a dependency's own dependencies are not followed.
    for (const TandrilObject& product : products) {
        const auto* library = dynamic_cast<const LibraryImpl*>(product.getImpl());
        if (!library)
            continue;
        for (LibraryImpl* dependency : library->getDependencies())
            if (dependency && listed.insert(dependency->getUniquePath().str()).second)
                result.push_back(boundHandle(dependency));
    }
    return result;
}

} // namespace LibraryBrowser
