#include "repository/xmlrepository/LibraryComparison.h"

#include "model/PaletteImpl.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/HostOperations.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"

#include <QDateTime>

#include <unordered_map>

namespace LibraryBrowser {

bool LibraryComparison::compareLibrary(const LibraryImpl& library, bool ignoreTimestamp) const
{
    const LibraryImpl& owner = library.getProduct() ? *library.getProduct() : library;
    if (!fileDependenciesAgree(owner, ignoreTimestamp))
        return false;
    // A palette has no archives and no model file of its own.
    if (dynamic_cast<const PaletteImpl*>(&owner))
        return true;
    if (!storedDataExists(owner, library))
        return false;
    return modelFileAgrees(owner, library, ignoreTimestamp);
}

LibraryComparison::DateVerdict LibraryComparison::judgeDates(std::int64_t recordedDate, std::int64_t currentDate,
                                                             std::int64_t generationStart, bool ignoreTimestamp,
                                                             const std::string& shownName,
                                                             const std::string& shownPath) const
{
    if (ignoreTimestamp) {
        m_report.log("The timestamp of " + shownPath + " has been ignored");
        return DateVerdict::CheckContent;
    }
    const bool datesEqual = recordedDate == currentDate;
    if (datesEqual && generationStart != 0 && recordedDate >= generationStart) {
        m_report.log("The timestamps matched but are too recent to trust (" + shownName + ")");
        return DateVerdict::CheckContent;
    }
    if (datesEqual) {
        m_report.log("The timestamps matched! (" + shownName + ")");
        return DateVerdict::Trusted;
    }
    m_report.log("The timestamps did not match (" + shownName + ")");
    return DateVerdict::CheckContent;
}

bool LibraryComparison::fileDependenciesAgree(const LibraryImpl& owner, bool ignoreTimestamp) const
{
    const std::string root = Platform::environment().root();
    for (const FileInfo& stored : owner.getFileDependencies()) {
        const std::string& text = stored.fileSpec;
        const std::string path = absolutePath(root, text);
        // By its name below the root, not the joined path: a root given
        // relative would be joined twice, and every file would look gone.
        // One stat where the file is there, as it mostly is.
        FileInfo now;
        if (!regularFileInfo(text, now)) {
            if (!fileExists(path))
                return false;
            now = fileInfoOf(m_report, text);
        }
        if (judgeDates(std::int64_t(stored.date), std::int64_t(now.date), generationStart(owner), ignoreTimestamp,
                       text, text)
            == DateVerdict::Trusted)
            continue;
        if (now.size != stored.size) {
            m_report.log("The files have different sizes (" + text + ")");
            return false;
        }
        if (computeCheckSum(m_report, path) != stored.checkSum) {
            m_report.log("The checksums did not match. (" + text + ")");
            return false;
        }
        m_report.log("The checksums matched! (" + text + ")");
    }
    return true;
}

bool LibraryComparison::storedDataExists(const LibraryImpl& owner, const LibraryImpl& library) const
{
    // A library never generated has no model file recorded.
    return !library.getModelFileSpec().empty()
        && fileExists(m_storeDirectory + "/" + owner.getReposIconsArchiveSpec())
        && fileExists(m_storeDirectory + "/" + owner.getReposManifestsArchiveSpec())
        && fileExists(absolutePath(Platform::environment().root(), library.getModelFileSpec()));
}

std::int64_t LibraryComparison::generationStart(const LibraryImpl& owner)
{
    // Read in local time, which costs a look at the time zone each time; the
    // products of one store share a few dates, asked for once per file.
    static std::unordered_map<std::string, std::int64_t> known;
    const std::string& text = owner.getLastModified();
    if (const auto found = known.find(text); found != known.end())
        return found->second;
    const QDateTime start = QDateTime::fromString(QString::fromStdString(text), Qt::TextDate);
    const std::int64_t seconds = start.isValid() ? start.toSecsSinceEpoch() : 0;
    if (known.size() > 4096)
        known.clear();
    known.emplace(text, seconds);
    return seconds;
}

bool LibraryComparison::modelFileAgrees(const LibraryImpl& owner, const LibraryImpl& library,
                                        bool ignoreTimestamp) const
{
    // The host's answer decides which file counts, not the stored spec.
    const LibraryData now = m_host.getLibraryData(library.getPath());
    const std::string& name = library.getName();
    if (judgeDates(library.getModelFileDate(), now.date, generationStart(owner), ignoreTimestamp, name,
                   now.fileSpec)
        == DateVerdict::Trusted)
        return true;
    if (now.size != library.getModelFileSize()) {
        m_report.log("The files have different sizes (" + name + ")");
        return false;
    }
    if (computeCheckSum(m_report, absolutePath(Platform::environment().root(), now.fileSpec))
        != library.getModelFileCheckSum()) {
        m_report.log("The checksums did not match. (" + name + ")");
        return false;
    }
    m_report.log("The checksums matched! (" + name + ")");
    return true;
}

} // namespace LibraryBrowser
