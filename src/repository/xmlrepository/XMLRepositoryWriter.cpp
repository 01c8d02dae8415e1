#include "repository/xmlrepository/XMLRepositoryWriter.h"

#include "platform/ErrorHolder.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/TempDirectories.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <QFile>

namespace LibraryBrowser {

XMLRepositoryWriter::XMLRepositoryWriter(std::string directory, RepositoryReportPtr report,
                                         std::vector<std::string> hostPathList)
    : m_directory(std::move(directory)),
      m_report(std::move(report)),
      m_hostPathList(std::move(hostPathList)),
      m_reader(m_directory, m_report)
{
}

void XMLRepositoryWriter::generateRepository(GenerationMode)
{
    m_report->logError("Tandril:Repository:GenerationNotAvailable",
                       "Generating the repository in " + m_directory +
                           " is not available yet; nothing was generated");
}

void XMLRepositoryWriter::generateProduct(const Library& product, GenerationMode)
{
    m_report->logError("Tandril:Repository:GenerationNotAvailable",
                       "Generating product " + product.getDisplayName() + " in " + m_directory +
                           " is not available yet; nothing was generated");
}

void XMLRepositoryWriter::updateProducts()
{
    m_report->logWarning("Tandril:Repository:ProductDiscoveryNotAvailable",
                         "Comparing the products on the host's path with the repository in " + m_directory +
                             " is not available yet; the stored product list is used as it is");
}

void XMLRepositoryWriter::destroyRepository()
{
    forgetTopLevelManifest();
    const ModelPtr manifest = m_reader.topLevelManifest();
    if (!manifest)
        return;
    manifest->beginChangeSet();
    for (TandrilObjectImpl* node : manifest->getNodes()) {
        auto* library = dynamic_cast<LibraryImpl*>(node);
        if (library && library->getIsProduct())
            destroyProductData(*library);
    }
    manifest->commitChangeSet();
    const std::string path = XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false);
    if (QFile::exists(QString::fromStdString(path)) && !QFile::remove(QString::fromStdString(path)))
        m_report->logWarning("Unable to remove top level manifest file " + path);
    forgetTopLevelManifest();
}

void XMLRepositoryWriter::destroyProduct(const Library& product)
{
    forgetTopLevelManifest();
    const ModelPtr manifest = m_reader.topLevelManifest();
    LibraryImpl* stored = nullptr;
    if (manifest) {
        for (TandrilObjectImpl* node : manifest->getNodes()) {
            auto* library = dynamic_cast<LibraryImpl*>(node);
            if (library && library->getIsProduct() && library->getUniquePath() == product.id()) {
                stored = library;
                break;
            }
        }
    }
    if (!stored) {
        m_report->logError("Unable to find product '" + product.id().str() + "'");
        return;
    }
    manifest->beginChangeSet();
    destroyProductData(*stored);
    manifest->commitChangeSet();
    saveTopLevelManifest(*manifest);
    forgetTopLevelManifest();
}

void XMLRepositoryWriter::forgetTopLevelManifest()
{
    ReaderCacheRegistry::unloadTopLevelCaches(m_directory);
}

void XMLRepositoryWriter::destroyProductData(LibraryImpl& product)
{
    removeArchive(m_directory + "/" + product.getReposIconsArchiveSpec());
    removeArchive(m_directory + "/" + product.getReposManifestsArchiveSpec());
    product.setModelFileSpec(std::string());
    product.setModelFileSize(0);
    product.setModelFileDate(0);
    product.setModelFileCheckSum(std::string());
    product.setShadowedLastModified(std::string());
    product.setLastModified(std::string());
    for (LibraryImpl* dependency : product.getDependencies()) {
        dependency->setModelFileSpec(std::string());
        dependency->setModelFileSize(0);
        dependency->setModelFileDate(0);
        dependency->setModelFileCheckSum(std::string());
    }
}

void XMLRepositoryWriter::removeArchive(const std::string& path)
{
    const QString file = QString::fromStdString(path);
    if (QFile::exists(file) && !QFile::remove(file))
        m_report->logError("Unable to remove archive " + path);
}

void XMLRepositoryWriter::saveTopLevelManifest(const Model& manifest)
{
    static int writes = 0;
    const int number = writes++;
    const std::string temp = tempDirectory(*m_report, number);
    if (temp.empty())
        return;
    const std::string copy = temp + "/" + "lbtoplevelmanifest.xml";
    ErrorHolder errors;
    if (manifest.save(copy, errors, Model::Indented))
        copyFile(*m_report, copy, XMLRepository::getTopLevelManifestFile(*m_report, m_directory, true));
    else
        m_report->logError("Unable to save the top level manifest: " + errors.message());
    removeTempDirectory(*m_report, number);
}

} // namespace LibraryBrowser
