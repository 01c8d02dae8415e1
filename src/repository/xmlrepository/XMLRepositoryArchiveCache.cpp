#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include "repository/xmlrepository/TempDirectories.h"

#include <QFile>
#include <QFileInfo>

#include <zip.h>

namespace LibraryBrowser {

namespace {

std::uint32_t nextNumber = 0;
std::uint64_t copies = 0;
std::uint64_t reads = 0;

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

XMLRepositoryArchiveCache::XMLRepositoryArchiveCache(std::string archivePath, RepositoryReportPtr report)
    : m_number(nextNumber++), m_archivePath(std::move(archivePath)), m_report(std::move(report))
{
}

XMLRepositoryArchiveCache::~XMLRepositoryArchiveCache()
{
    close();
}

std::uint64_t XMLRepositoryArchiveCache::copyCount()
{
    return copies;
}

std::uint64_t XMLRepositoryArchiveCache::readCount()
{
    return reads;
}

std::string XMLRepositoryArchiveCache::directoryName() const
{
    return "LBCache" + std::to_string(m_number);
}

QByteArray XMLRepositoryArchiveCache::readEntry(const std::string& entryName)
{
    if (!QFileInfo::exists(qs(m_archivePath)))
        return QByteArray();
    const std::string directory = namedTempDirectory(*m_report, directoryName(), true);
    if (directory.empty())
        return QByteArray();
    const std::string localCopy = directory + "/cachedArchive.rps";
    if (!QFileInfo::exists(qs(localCopy))) {
        if (!QFile::copy(qs(m_archivePath), qs(localCopy))) {
            m_report->logError("Unable to cache archive to " + localCopy);
            return QByteArray();
        }
        ++copies;
    }
    ++reads;

    int errorCode = 0;
    zip_t* archive = zip_open(localCopy.c_str(), ZIP_RDONLY, &errorCode);
    if (!archive) {
        zip_error_t error;
        zip_error_init_with_code(&error, errorCode);
        m_report->logError("Unable to open archive " + localCopy);
        m_report->logError(std::string("Error returned from zip archiver: ") + zip_error_strerror(&error));
        zip_error_fini(&error);
        return QByteArray();
    }
    QByteArray bytes;
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat(archive, entryName.c_str(), 0, &stat) != 0 || !(stat.valid & ZIP_STAT_SIZE)) {
        m_report->logWarning("Unable to locate file " + entryName + " in archive " + localCopy);
        zip_discard(archive);
        return QByteArray();
    }
    zip_file_t* entry = zip_fopen_index(archive, stat.index, 0);
    bool complete = false;
    if (entry) {
        bytes.resize(qsizetype(stat.size));
        complete = zip_fread(entry, bytes.data(), stat.size) == zip_int64_t(stat.size);
        zip_fclose(entry);
    }
    if (!complete) {
        m_report->logError("Unable to open archive " + localCopy);
        m_report->logError(std::string("Error returned from zip archiver: ") + zip_strerror(archive));
        bytes.clear();
    }
    zip_discard(archive);
    return bytes;
}

void XMLRepositoryArchiveCache::close()
{
    removeNamedTempDirectory(*m_report, directoryName());
}

} // namespace LibraryBrowser
