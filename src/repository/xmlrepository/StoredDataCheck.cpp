#include "repository/xmlrepository/StoredDataCheck.h"

#include "model/LibraryImpl.h"
#include "model/Model.h"
#include "model/Serializer.h"
#include "model/Signature.h"
#include "platform/ErrorHolder.h"
#include "platform/ZipEntryIndex.h"

#include <QFile>
#include <QFileInfo>

namespace LibraryBrowser {

std::string StoredDataCheck::manifestProblem(const std::string& name, const QByteArray& bytes, ReadManifest* read)
{
    ErrorHolder errors;
    if (Serializer::getModelSignatureFromByteArray(bytes, errors) != Signature::manifestSchema())
        return name + " is not a manifest of this version";
    const ModelPtr model = Model::createModel();
    if (!model->loadFromBytes(bytes, errors) || errors.hasError())
        return name + " can't be read: " + errors.message();
    if (read)
        *read = ReadManifest{model, bytes, errors};
    return std::string();
}

std::string StoredDataCheck::manifestFileProblem(const std::string& path, ReadManifest* read)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        return "it can't be opened: " + file.errorString().toStdString();
    return manifestProblem("it", file.readAll(), read);
}

std::string StoredDataCheck::productProblem(const std::string& storeDirectory, const LibraryImpl& product)
{
    const struct {
        const char* kind;
        std::string spec;
    } archives[] = {{"icons", product.getReposIconsArchiveSpec()},
                    {"manifests", product.getReposManifestsArchiveSpec()}};
    for (const auto& archive : archives) {
        const std::string path = storeDirectory + "/" + archive.spec;
        if (archive.spec.empty() || !QFileInfo::exists(QString::fromStdString(path)))
            continue;
        const std::string& entry = product.getManifestFileSpec();
        std::string error;
        if (std::string(archive.kind) != "manifests" || entry.empty()) {
            // Nothing is read from it here: its directory need only be sound.
            if (!ZipEntryIndex::check(path, error))
                return std::string("the ") + archive.kind + " archive can't be opened: " + error;
            continue;
        }
        ZipEntryIndex index;
        if (!index.load(path, error))
            return std::string("the ") + archive.kind + " archive can't be opened: " + error;
        QByteArray bytes;
        if (!index.read(path, entry, bytes, error))
            return "the manifest " + entry + " can't be read from its archive: " + error;
        if (std::string problem = manifestProblem("the manifest " + entry, bytes); !problem.empty())
            return problem;
    }
    return std::string();
}

bool StoredDataCheck::holdsReadableArchives(const std::string& storeDirectory, const LibraryImpl& product)
{
    const std::string& manifests = product.getReposManifestsArchiveSpec();
    return !manifests.empty() && QFileInfo::exists(QString::fromStdString(storeDirectory + "/" + manifests))
           && productProblem(storeDirectory, product).empty();
}

} // namespace LibraryBrowser
