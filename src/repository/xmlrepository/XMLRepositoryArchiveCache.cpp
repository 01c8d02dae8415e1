#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include "repository/xmlrepository/TempDirectories.h"

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

std::string XMLRepositoryArchiveCache::indexedLocalCopy()
{
    if (!QFileInfo::exists(qs(m_archivePath)))
        return std::string();
    // A cold walk reads every manifest of an archive in turn: once the copy
    // is made and indexed only its presence is checked, not the private
    // directory's and the temporary base's every time.
    if (!m_localCopy.empty() && m_index.isLoaded() && QFileInfo::exists(qs(m_localCopy)))
        return m_localCopy;
    m_localCopy.clear();
    const std::string directory = namedTempDirectory(*m_report, directoryName(), true);
    if (directory.empty())
        return std::string();
    const std::string localCopy = directory + "/cachedArchive.rps";
    if (!QFileInfo::exists(qs(localCopy))) {
        m_index.clear();
        if (!copyToPrivateFile(m_archivePath, localCopy)) {
            m_report->logError("Unable to cache archive to " + localCopy);
            return std::string();
        }
        ++copies;
    }
    std::string error;
    if (!m_index.isLoaded() && !m_index.load(localCopy, error)) {
        m_report->logError("Unable to open archive " + localCopy);
        m_report->logError("Error returned from zip archiver: " + error);
        noteDamage("the archive " + m_archivePath + " can't be opened: " + error);
        return std::string();
    }
    m_localCopy = localCopy;
    return localCopy;
}

QByteArray XMLRepositoryArchiveCache::readEntry(const std::string& entryName)
{
    const std::string localCopy = indexedLocalCopy();
    if (localCopy.empty())
        return QByteArray();
    ++reads;
    if (!m_index.contains(entryName)) {
        m_report->logWarning("Unable to locate file " + entryName + " in archive " + localCopy);
        return QByteArray();
    }
    QByteArray bytes;
    std::string error;
    if (!m_index.read(localCopy, entryName, bytes, error)) {
        m_report->logError("Unable to read file " + entryName + " in archive " + localCopy);
        m_report->logError("Error returned from zip archiver: " + error);
        noteDamage("the entry " + entryName + " of " + m_archivePath + " can't be read: " + error);
    }
    return bytes;
}

bool XMLRepositoryArchiveCache::lacks(const std::string& entryName)
{
    return m_index.isLoaded() && !m_index.contains(entryName);
}

void XMLRepositoryArchiveCache::noteDamage(const std::string& reason)
{
    if (m_damage.empty())
        m_damage = reason;
}

void XMLRepositoryArchiveCache::close()
{
    m_damage.clear();
    m_index.clear();
    m_localCopy.clear();
    removeNamedTempDirectory(*m_report, directoryName());
}

} // namespace LibraryBrowser
