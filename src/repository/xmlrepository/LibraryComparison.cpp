#include "repository/xmlrepository/LibraryComparison.h"

#include "model/PaletteImpl.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/HostOperations.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"

#include <QDate>
#include <QDateTime>

#include <cstdio>
#include <cstring>
#include <limits>
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
                                                             const LibraryImpl& owner, bool ignoreTimestamp,
                                                             const std::string& shownName,
                                                             const std::string& shownPath) const
{
    if (ignoreTimestamp) {
        m_report.log("The timestamp of " + shownPath + " has been ignored");
        return DateVerdict::CheckContent;
    }
    const bool datesEqual = recordedDate == currentDate;
    if (datesEqual && recordedSinceGenerationStart(recordedDate, owner)) {
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
        if (judgeDates(std::int64_t(stored.date), std::int64_t(now.date), owner, ignoreTimestamp,
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

namespace {

// The date of a lastModified text ("Tue Nov 24 11:24:49 2026", local time)
// read as if it were UTC, or false.
bool readAsUtc(const std::string& text, std::int64_t& seconds)
{
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    char weekday[4] = {}, month[4] = {};
    int day = 0, hour = 0, minute = 0, second = 0, year = 0, used = 0;
    if (std::sscanf(text.c_str(), "%3s %3s %d %d:%d:%d %d%n", weekday, month, &day, &hour, &minute, &second, &year,
                    &used) != 7
        || used != int(text.size()))
        return false;
    int number = 0;
    while (number < 12 && std::strcmp(months[number], month) != 0)
        ++number;
    const QDate date(year, number + 1, day);
    if (number == 12 || !date.isValid() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0
        || second > 59)
        return false;
    seconds = QDate(1970, 1, 1).daysTo(date) * 86400 + hour * 3600 + minute * 60 + second;
    return true;
}

// Marks an hour whose offset from UTC changes within it.
constexpr std::int64_t UnevenHour = std::numeric_limits<std::int64_t>::min();

} // namespace

bool LibraryComparison::recordedSinceGenerationStart(std::int64_t recordedDate, const LibraryImpl& owner)
{
    const std::int64_t start = generationStart(owner);
    return start != 0 && recordedDate >= start;
}

std::int64_t LibraryComparison::generationStart(const LibraryImpl& owner)
{
    const std::string& text = owner.getLastModified();
    // Each text is read once: a check of a store reads every product's, and
    // products generated within one second share it.
    static std::unordered_map<std::string, std::int64_t> starts;
    auto found = starts.find(text);
    if (found == starts.end())
        found = starts.emplace(text, startOf(text)).first;
    return found->second;
}

std::int64_t LibraryComparison::startOf(const std::string& text)
{
    // The local time's offset from UTC is looked up once per hour of the
    // text, since each look-up reads the zone's file and a store of a
    // thousand products asks for every product; the rest is arithmetic. An
    // hour in which the offset changes is read whole, as any text that is
    // not of the form the writer gives.
    std::int64_t asUtc = 0;
    if (readAsUtc(text, asUtc) && asUtc >= 0) {
        static std::unordered_map<std::int64_t, std::int64_t> offsets;
        const std::int64_t hour = asUtc - asUtc % 3600;
        auto found = offsets.find(hour);
        if (found == offsets.end()) {
            const auto offsetAt = [](std::int64_t reading) {
                const QDateTime fields = QDateTime::fromSecsSinceEpoch(reading, Qt::UTC);
                return reading - QDateTime(fields.date(), fields.time(), Qt::LocalTime).toSecsSinceEpoch();
            };
            const std::int64_t offset = offsetAt(hour);
            found = offsets.emplace(hour, offset == offsetAt(hour + 3600) ? offset : UnevenHour).first;
        }
        if (found->second != UnevenHour)
            return asUtc - found->second;
    }
    const QDateTime start = QDateTime::fromString(QString::fromStdString(text), Qt::TextDate);
    return start.isValid() ? start.toSecsSinceEpoch() : 0;
}

bool LibraryComparison::modelFileAgrees(const LibraryImpl& owner, const LibraryImpl& library,
                                        bool ignoreTimestamp) const
{
    // The host's answer decides which file counts, not the stored spec.
    const LibraryData now = m_host.getLibraryData(library.getPath());
    const std::string& name = library.getName();
    if (judgeDates(library.getModelFileDate(), now.date, owner, ignoreTimestamp, name,
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
