#include "repository/xmlrepository/ArchiveUpdater.h"

#include "model/Model.h"
#include "model/Serializer.h"
#include "platform/ErrorHolder.h"
#include "platform/FileFaults.h"
#include "repository/xmlrepository/DirectoryReader.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/SearchIndexWriter.h"
#include "repository/xmlrepository/WriterContext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unordered_set>

namespace LibraryBrowser {

namespace {

// The archive is closed and opened again once this many bytes have been
// added since it was opened, which bounds what it keeps pending in memory.
// Counted in bytes and not in files: each reopening reads the archive's whole
// directory again, so reopening after a fixed number of small files made the
// work grow with the square of the files of a product.
constexpr qint64 BytesPerReopen = qint64(8) << 20;

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

std::string ArchiveUpdater::storePath(const std::string& spec) const
{
    return absolutePath(m_context.repositoryDirectory, spec);
}

std::string ArchiveUpdater::temporaryPath(const std::string& spec) const
{
    return absolutePath(m_context.tempDirectory(), spec);
}

void ArchiveUpdater::generateIcons(const SubSystemImpl& node, const Model& model)
{
    if (model.nodeCount() == 0)
        return;
    m_context.report->log("Generating Icons (" + std::to_string(model.nodeCount()) + " icons to do.)");
    const std::string temp = m_context.tempDirectory();
    std::vector<std::string> childPaths;
    std::vector<std::string> files;
    for (TandrilObjectImpl* child : model.getNodes()) {
        const auto* block = dynamic_cast<const BlockImpl*>(child);
        if (!block)
            continue;
        childPaths.push_back(block->getPath());
        files.push_back(absolutePath(temp, block->getIconFileSpec()));
        m_context.state.iconFiles.push_back(files.back());
    }
    m_context.host.createSubSystemIcons(node.getPath(), childPaths, files);
}

bool ArchiveUpdater::saveManifests()
{
    const std::string temp = m_context.tempDirectory();
    bool saved = true;
    for (const auto& [node, model] : m_context.state.subSystemModels()) {
        const std::string path = temp + "/" + node->getManifestFileSpec();
        saved = saveManifest(*m_context.report, model->saveToBytes(Model::Compact), path) && saved;
        m_context.state.manifestFiles.push_back(path);
    }
    return saved;
}

bool ArchiveUpdater::saveManifest(RepositoryReport& report, const QByteArray& bytes, const std::string& path)
{
    const QString directory = QFileInfo(qs(path)).absolutePath();
    if (!QFileInfo::exists(directory)
        && (FileFaults::failNow(FileFaults::Create, directory.toStdString()) || !QDir().mkpath(directory))) {
        report.logError("Unable to create directory " + directory.toStdString());
        return false;
    }
    ErrorHolder errors;
    Serializer::saveBytesToFile(bytes, path, errors);
    if (errors.hasError())
        report.logError("Unable to save manifest file " + path + ": " + errors.message());
    return !errors.hasError();
}

bool ArchiveUpdater::staysInStore(const LibraryImpl& product) const
{
    // A store written before such directories were refused may still name one.
    const std::string problem = storePathProblem(product.getReposDirectorySpec());
    if (problem.empty())
        return true;
    m_context.report->logError("The repository directory '" + product.getReposDirectorySpec() + "' of product "
                               + product.getDisplayName() + " does not stay inside the store (" + problem
                               + "). Nothing is written there.");
    return false;
}

void ArchiveUpdater::openArchives(LibraryImpl& product, bool fresh)
{
    GenerationState& state = m_context.state;
    if (!staysInStore(product)) {
        state.iconsArchive = ZipArchive();
        state.manifestsArchive = ZipArchive();
        return;
    }
    const std::string storeIcons = storePath(product.getReposIconsArchiveSpec());
    const std::string storeManifests = storePath(product.getReposManifestsArchiveSpec());
    const std::string tempIcons = temporaryPath(product.getReposIconsArchiveSpec());
    const std::string tempManifests = temporaryPath(product.getReposManifestsArchiveSpec());
    state.iconsArchive = ZipArchive();
    state.manifestsArchive = ZipArchive();
    if (fresh) {
        // A copy left by an earlier product of this verb must not seed the new archives.
        for (const std::string& temp : {tempIcons, tempManifests})
            if (QFile::exists(qs(temp)) && !QFile::remove(qs(temp))) {
                m_context.report->logError("Unable to remove temporary archive " + temp);
                return;
            }
    } else {
        if (QFile::exists(qs(storeIcons)) && !copyFile(*m_context.report, storeIcons, tempIcons))
            return;
        if (QFile::exists(qs(storeManifests)) && !copyFile(*m_context.report, storeManifests, tempManifests))
            return;
    }
    state.iconsArchive = initArchive(product, tempIcons);
    state.manifestsArchive = initArchive(product, tempManifests);
}

ZipArchive ArchiveUpdater::initArchive(LibraryImpl& product, const std::string& path)
{
    const QString directory = QFileInfo(qs(path)).absolutePath();
    if (!QFileInfo::exists(directory)
        && (FileFaults::failNow(FileFaults::Create, directory.toStdString()) || !QDir().mkpath(directory))) {
        m_context.report->logError("Unable to create archive parent directory " + directory.toStdString());
        return ZipArchive();
    }
    ZipArchive archive;
    archive.open(path, QFile::exists(qs(path)) ? ZipArchive::OpenExisting : ZipArchive::CreateNew);
    if (!archive.isOpened()) {
        m_context.report->logWarning("Unable to initialize archive " + path);
        m_context.report->log("Existing archive or product data might be corrupted. Destroying it and trying to "
                              "regenerate it.");
        destroyProductData(product);
        archive.open(path, ZipArchive::CreateNew);
    }
    return archive;
}

bool ArchiveUpdater::updateArchives()
{
    const bool icons = updateArchive(m_context.state.iconsArchive, m_context.state.iconFiles);
    return updateArchive(m_context.state.manifestsArchive, m_context.state.manifestFiles) && icons;
}

bool ArchiveUpdater::closeArchive(ZipArchive& archive)
{
    const std::string path = archive.getArchiveFilePath();
    if (archive.close())
        return true;
    m_context.report->logError("Unable to write archive " + path + ": " + archive.errorString());
    return false;
}

bool ArchiveUpdater::updateArchive(ZipArchive& archive, const std::vector<std::string>& files)
{
    const std::string path = archive.getArchiveFilePath();
    m_context.report->log("Updating archive " + path);
    const std::string prefix = m_context.tempDirectory() + "/";
    qint64 pending = 0;
    // Each file is read from its directory, held open while files of the
    // same directory follow: a library's icons lie in a few directories, and
    // a path walked again for each one cost more than its reading.
    DirectoryReader directory;
    for (const std::string& file : files) {
        const std::string name = file.compare(0, prefix.size(), prefix) == 0 ? file.substr(prefix.size()) : file;
        // A file the host did not write is passed over: the reader then
        // finds no icon rather than an empty one.
        QByteArray bytes;
        if (!directory.read(file, bytes))
            continue;
        if (!archive.add(name, bytes)) {
            m_context.report->logError("Unable to add " + name + " to archive " + path);
            return false;
        }
        if ((pending += bytes.size()) >= BytesPerReopen) {
            if (!closeArchive(archive))
                return false;
            if (!archive.open(path, ZipArchive::OpenExisting)) {
                m_context.report->logError("Unable to open archive " + path + ": " + archive.errorString());
                return false;
            }
            pending = 0;
        }
    }
    return true;
}

bool ArchiveUpdater::publishArchives(LibraryImpl& product)
{
    GenerationState& state = m_context.state;
    // Both closed before either is put in place: a store never gets half of
    // what was made.
    if (!state.manifestFiles.empty()
        && !SearchIndexWriter(*m_context.report)
                .write(product, state.manifestsArchive, state.subSystemModels()))
        return false;
    const bool iconsClosed = closeArchive(state.iconsArchive);
    if (!closeArchive(state.manifestsArchive) || !iconsClosed)
        return false;
    const std::string& icons = product.getReposIconsArchiveSpec();
    const std::string& manifests = product.getReposManifestsArchiveSpec();
    const bool iconsPut = !state.iconFiles.empty()
                              ? copyFile(*m_context.report, temporaryPath(icons), storePath(icons))
                              : removeArchive(storePath(icons));
    const bool manifestsPut = !state.manifestFiles.empty()
                                  ? copyFile(*m_context.report, temporaryPath(manifests), storePath(manifests))
                                  : removeArchive(storePath(manifests));
    return iconsPut && manifestsPut;
}

bool ArchiveUpdater::removeArchive(const std::string& path)
{
    QFile file(qs(path));
    if (!file.exists())
        return true;
    if (FileFaults::failNow(FileFaults::Remove, path)) {
        m_context.report->logError("Unable to remove archive " + path + ": " + FileFaults::message());
        return false;
    }
    if (!file.remove()) {
        m_context.report->logError("Unable to remove archive " + path + ": " + file.errorString().toStdString());
        return false;
    }
    return true;
}

void ArchiveUpdater::destroyProductData(LibraryImpl& product)
{
    if (staysInStore(product)) {
        removeArchive(storePath(product.getReposIconsArchiveSpec()));
        removeArchive(storePath(product.getReposManifestsArchiveSpec()));
    }
    forgetFileRecords(product);
}

void ArchiveUpdater::forgetFileRecords(LibraryImpl& product)
{
    Model* model = product.getModel();
    model->beginChangeSet();
    product.setModelFileSpec(std::string());
    product.setModelFileSize(0);
    product.setModelFileDate(0);
    product.setModelFileCheckSum(std::string());
    product.setShadowedLastModified(std::string());
    product.setLastModified(std::string());
    for (LibraryImpl* dependency : product.getDependencies()) {
        if (!dependency)
            continue;
        dependency->setModelFileSpec(std::string());
        dependency->setModelFileSize(0);
        dependency->setModelFileDate(0);
        dependency->setModelFileCheckSum(std::string());
    }
    model->commitChangeSet();
}

void ArchiveUpdater::removeLibraryFromArchive(SubSystemImpl& library)
{
    RepositoryReport& report = *m_context.report;
    ZipArchive& manifests = m_context.state.manifestsArchive;
    ZipArchive& icons = m_context.state.iconsArchive;
    const std::string spec = library.getManifestFileSpec();
    if (!manifests.exists(spec))
        return;
    report.log("Removing all data from existing archive for " + library.getDisplayName());
    const ZipArchive::Entry entry = manifests.find(spec);
    if (!entry.isValid()) {
        report.logError("Unable to locate subsystem manifests " + spec);
        return;
    }
    QByteArray bytes;
    const ModelPtr model = Model::createModel();
    ErrorHolder errors;
    if (manifests.read(entry, bytes)) {
        model->beginChangeSet();
        model->loadFromBytes(bytes, errors);
        model->commitChangeSet();
    }
    if (bytes.isEmpty() || errors.hasError()) {
        // A damaged entry that is being removed anyway does not fail the
        // generation: it goes, and entries only it named stay unused.
        report.logWarning("Unable to read subsystem manifest file " + spec
                          + " from archive; the damaged entry is removed");
        manifests.remove(entry);
        return;
    }

    std::unordered_set<std::string> iconNames;
    for (TandrilObjectImpl* node : model->getNodes()) {
        const StringId& type = node->getTypeName();
        if (type == SubSystemImpl::staticGetTypeName())
            removeLibraryFromArchive(*static_cast<SubSystemImpl*>(node));
        else if (type == LibraryRefImpl::staticGetTypeName() || type == BlockImpl::staticGetTypeName())
            iconNames.insert(static_cast<BlockImpl*>(node)->getIconFileSpec());
    }
    for (const std::string& name : icons.entryNames())
        if (iconNames.count(name) || name == library.getIconFileSpec())
            icons.remove(icons.find(name));
    if (!spec.empty()) {
        const ZipArchive::Entry manifest = manifests.find(spec);
        if (manifest.isValid())
            manifests.remove(manifest);
    }
}

} // namespace LibraryBrowser
