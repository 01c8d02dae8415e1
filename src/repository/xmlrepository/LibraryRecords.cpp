#include "repository/xmlrepository/LibraryRecords.h"

#include "model/Model.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/WriterContext.h"

#include <QFileInfo>

namespace LibraryBrowser {

void LibraryRecords::updateLibraryData(LibraryImpl& library)
{
    const LibraryData data = m_context.host.getLibraryData(library.getPath());
    Model* model = library.getModel();
    model->beginChangeSet();
    library.setModelFileSpec(forwardSlashes(data.fileSpec));
    library.setModelFileSize(data.size);
    library.setModelFileDate(data.date);
    model->commitChangeSet();
}

void LibraryRecords::updateCheckSums(LibraryImpl& library)
{
    const LibraryData data = m_context.host.getLibraryData(library.getPath());
    KnownCheckSum modelFile;
    modelFile.path = absolutePath(Platform::environment().root(), forwardSlashes(data.fileSpec));
    modelFile.checkSum = computeCheckSum(*m_context.report, modelFile.path);
    Model* model = library.getModel();
    model->beginChangeSet();
    library.setModelFileCheckSum(modelFile.checkSum);
    model->commitChangeSet();
    updateFileDependencies(library, true, &modelFile);
}

void LibraryRecords::updateFileDependencyDates(LibraryImpl& library)
{
    updateFileDependencies(library, false);
}

void LibraryRecords::updateFileDependencyCheckSums(LibraryImpl& library)
{
    updateFileDependencies(library, true);
}

void LibraryRecords::updateFileDependencies(LibraryImpl& library, bool withCheckSums, const KnownCheckSum* known)
{
    const std::string root = Platform::environment().root();
    FileInfoVector updated;
    for (const FileInfo& old : library.getFileDependencies()) {
        const std::string path = absolutePath(root, old.fileSpec);
        const QFileInfo file(QString::fromStdString(path));
        if (!file.exists())
            continue;
        FileInfo info;
        info.fileSpec = old.fileSpec;
        if (!withCheckSums)
            info.checkSum = old.checkSum;
        else if (known && known->path == path)
            info.checkSum = known->checkSum;
        else
            info.checkSum = computeCheckSum(*m_context.report, path);
        info.date = std::uint64_t(file.lastModified().toSecsSinceEpoch());
        info.size = std::uint64_t(file.size());
        updated.push_back(info);
    }
    Model* model = library.getModel();
    model->beginChangeSet();
    library.setFileDependencies(updated);
    model->commitChangeSet();
}

} // namespace LibraryBrowser
