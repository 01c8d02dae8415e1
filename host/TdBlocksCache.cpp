#include "TdBlocksCache.h"

#include "TdBlocksParser.h"

#include <QFile>

#include <sys/stat.h>

namespace LibraryBrowser::Host {

bool TdBlocksCache::Stamp::operator==(const Stamp& other) const
{
    return device == other.device && inode == other.inode && size == other.size && modified == other.modified
        && changed == other.changed;
}

bool TdBlocksCache::read(const QString& file, const QString& root, std::vector<TdBlocksEntry>& entries,
                         bool& parsed, FileIssue& issue, std::vector<FileIssue>& refused)
{
    const QByteArray name = QFile::encodeName(file);
    struct stat status;
    if (::stat(name.constData(), &status) != 0) {
        m_files.erase(name.toStdString());
        return false;
    }
    Stamp stamp;
    stamp.device = std::uint64_t(status.st_dev);
    stamp.inode = std::uint64_t(status.st_ino);
    stamp.size = std::int64_t(status.st_size);
    stamp.modified = std::int64_t(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec;
    stamp.changed = std::int64_t(status.st_ctim.tv_sec) * 1000000000 + status.st_ctim.tv_nsec;

    Parsed& known = m_files[name.toStdString()];
    if (!(known.stamp == stamp) || known.root != root) {
        known = Parsed();
        known.ok = TdBlocksParser::parse(file, root, known.entries, known.issue, known.refused);
        // A file changed while it was read is read again next time.
        struct stat after;
        if (::stat(name.constData(), &after) == 0 && after.st_mtim.tv_sec == status.st_mtim.tv_sec
            && after.st_mtim.tv_nsec == status.st_mtim.tv_nsec && after.st_size == status.st_size
            && after.st_ino == status.st_ino)
            known.stamp = stamp;
        known.root = root;
    }
    entries.insert(entries.end(), known.entries.begin(), known.entries.end());
    parsed = known.ok;
    issue = known.issue;
    refused = known.refused;
    return true;
}

} // namespace LibraryBrowser::Host
