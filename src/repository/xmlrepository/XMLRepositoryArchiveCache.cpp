#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include "platform/ZipArchive.h"
#include "repository/xmlrepository/TempDirectories.h"

#include <QFile>
#include <QFileInfo>


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

bool XMLRepositoryArchiveCache::openLocalCopy()
{
    if (m_archive.isOpened())
        return true;
    if (!QFileInfo::exists(qs(m_archivePath)))
        return false;
    const std::string directory = namedTempDirectory(*m_report, directoryName(), true);
    if (directory.empty())
        return false;
    const std::string localCopy = directory + "/cachedArchive.rps";
    if (!QFileInfo::exists(qs(localCopy))) {
        if (!QFile::copy(qs(m_archivePath), qs(localCopy))) {
            m_report->logError("Unable to cache archive to " + localCopy);
            return false;
        }
        ++copies;
    }
    if (!m_archive.open(localCopy, ZipArchive::ReadOnly)) {
        m_report->logError("Unable to open archive " + localCopy);
        m_report->logError("Error returned from zip archiver: " + m_archive.errorString());
        return false;
    }
    return true;
}

QByteArray XMLRepositoryArchiveCache::readEntry(const std::string& entryName)
{
    if (!openLocalCopy())
        return QByteArray();
    ++reads;
    const std::string& localCopy = m_archive.getArchiveFilePath();
    const ZipArchive::Entry entry = m_archive.find(entryName);
    if (!entry.isValid()) {
        m_report->logWarning("Unable to locate file " + entryName + " in archive " + localCopy);
        return QByteArray();
    }
    QByteArray bytes;
    if (!m_archive.read(entry, bytes)) {
        m_report->logError("Unable to read file " + entryName + " in archive " + localCopy);
        m_report->logError("Error returned from zip archiver: " + m_archive.errorString());
    }
    return bytes;
}

void XMLRepositoryArchiveCache::close()
{
    m_archive.close();
    removeNamedTempDirectory(*m_report, directoryName());
}

} // namespace LibraryBrowser
