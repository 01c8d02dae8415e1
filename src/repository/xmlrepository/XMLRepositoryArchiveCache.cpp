#include "repository/xmlrepository/XMLRepositoryArchiveCache.h"

#include "repository/xmlrepository/StoreLock.h"
#include "repository/xmlrepository/TempDirectories.h"

#include <QFileInfo>

namespace LibraryBrowser {

namespace {

std::uint32_t nextNumber = 0;
std::uint64_t copies = 0;
std::uint64_t reads = 0;
std::uint64_t changes = 0;

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

XMLRepositoryArchiveCache::XMLRepositoryArchiveCache(std::string archivePath, RepositoryReportPtr report,
                                                     Origin origin)
    : m_number(nextNumber++),
      m_archivePath(std::move(archivePath)),
      m_report(std::move(report)),
      m_origin(std::move(origin))
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

std::uint64_t XMLRepositoryArchiveCache::changeCount()
{
    return changes;
}

void XMLRepositoryArchiveCache::markChanged()
{
    if (!m_changed)
        ++changes;
    m_changed = true;
}

std::string XMLRepositoryArchiveCache::directoryName() const
{
    return "LBCache" + std::to_string(m_number);
}

std::string XMLRepositoryArchiveCache::indexedLocalCopy()
{
    if (m_changed)
        return std::string();
    if (!QFileInfo::exists(qs(m_archivePath))) {
        // Gone with a new top level: another process has changed the
        // product. A writer removes archives before it writes the top level,
        // both under the lock: once the lock is had, the top level tells.
        const StoreLock lock(*m_report, m_origin.storeDirectory, StoreLock::Read);
        if (topLevelMoved())
            markChanged();
        return std::string();
    }
    // A cold walk reads every manifest of an archive in turn: once the copy
    // is made and indexed only its presence is checked, not the private
    // directory's and the temporary base's every time.
    if (!m_localCopy.empty() && m_index.isLoaded() && QFileInfo::exists(qs(m_localCopy)))
        return m_localCopy;
    m_localCopy.clear();
    m_directoryMade = true;
    const std::string directory = namedTempDirectory(*m_report, directoryName(), true);
    if (directory.empty())
        return std::string();
    const std::string localCopy = directory + "/cachedArchive.rps";
    if (!QFileInfo::exists(qs(localCopy))) {
        m_index.clear();
        // Writers publish archives before the top level, both under the
        // lock: an archive copied under the lock while the top level is
        // unchanged is the one the record describes.
        const StoreLock lock(*m_report, m_origin.storeDirectory, StoreLock::Read);
        if (topLevelMoved()) {
            markChanged();
            return std::string();
        }
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

bool XMLRepositoryArchiveCache::topLevelMoved() const
{
    return !m_origin.topLevelPath.empty() && fileStamp(m_origin.topLevelPath) != m_origin.topLevelStamp;
}

void XMLRepositoryArchiveCache::close()
{
    m_damage.clear();
    m_index.clear();
    m_localCopy.clear();
    // Most caches of a search never read their icons archive: no directory
    // to look for then.
    if (m_directoryMade)
        removeNamedTempDirectory(*m_report, directoryName());
    m_directoryMade = false;
}

} // namespace LibraryBrowser
