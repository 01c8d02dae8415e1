#include "repository/xmlrepository/XMLRepositoryReader.h"

#include "model/Serializer.h"
#include "platform/ErrorHolder.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/TempDirectories.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <QFile>

namespace LibraryBrowser {

XMLRepositoryReader::XMLRepositoryReader(std::string directory, RepositoryReportPtr report)
    : m_directory(std::move(directory)), m_report(std::move(report))
{
}

bool XMLRepositoryReader::exists()
{
    return topLevelManifest() != nullptr;
}

bool XMLRepositoryReader::isProductUpToDate(const LibraryImpl& product, bool)
{
    // The comparison of model files with what the manifest recorded is
    // issue 6; until then no stored product is trusted.
    m_report->log("The up-to-date check of product " + product.getDisplayName() + " in " + m_directory +
                  " is not available yet; the product counts as out of date");
    return false;
}

ProductRecordList XMLRepositoryReader::getAllProducts()
{
    ProductRecordList products;
    const ModelPtr manifest = topLevelManifest();
    if (!manifest)
        return products;
    for (TandrilObjectImpl* node : manifest->getNodes())
        if (auto* library = dynamic_cast<LibraryImpl*>(node))
            products.push_back({manifest, library});
    return products;
}

QByteArray XMLRepositoryReader::readTopLevelBytes()
{
    static int topLevelReads = 0;
    if (m_directory.empty()) {
        m_report->log("The repository path is empty");
        return QByteArray();
    }
    const std::string path = XMLRepository::getTopLevelManifestFile(*m_report, m_directory, false);
    if (!XMLRepository::waitForFile(path)) {
        m_report->log("The top level manifest does not exist");
        return QByteArray();
    }
    const int number = topLevelReads++;
    const std::string temp = topLevelTempDirectory(*m_report, number);
    if (temp.empty())
        return QByteArray();
    const std::string copy = temp + "/cachedTopLevel.xml";
    QByteArray bytes;
    QFile file(QString::fromStdString(copy));
    if (copyFile(*m_report, path, copy) && file.open(QIODevice::ReadOnly)) {
        bytes = file.readAll();
        file.close();
    } else {
        m_report->logError("Unable to read top level manifest file " + path);
    }
    removeNamedTempDirectory(*m_report, "LBTop" + std::to_string(number));
    return bytes;
}

ModelPtr XMLRepositoryReader::topLevelManifest()
{
    if (m_topLevelManifest)
        return m_topLevelManifest;
    const QByteArray bytes = readTopLevelBytes();
    if (bytes.isEmpty())
        return nullptr;
    ModelPtr model = Model::createModel();
    ErrorHolder errors;
    model->beginChangeSet();
    const bool loaded = Serializer::loadFromByteArray(*model, bytes, errors);
    model->commitChangeSet();
    if (!loaded || errors.hasError()) {
        // The file stays as it is: the writer decides what to do with it.
        m_report->logError("The top level manifest file looks corrupted. Returning an empty manifest.");
        return nullptr;
    }
    m_topLevelManifest = model;
    return m_topLevelManifest;
}

std::string XMLRepositoryReader::version()
{
    const QByteArray bytes = readTopLevelBytes();
    if (bytes.isEmpty()) {
        m_report->log("Loaded an empty manifest while trying to read its version");
        return std::string();
    }
    ErrorHolder errors;
    const Signature signature = Serializer::getModelSignatureFromByteArray(bytes, errors);
    if (signature.isNull()) {
        m_report->logError("Unable to read the version of the top level manifest in " + m_directory + ": " +
                           errors.message());
        return std::string();
    }
    return signature.toString();
}

} // namespace LibraryBrowser
