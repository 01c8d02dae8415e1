#include "FileStamp.h"

#include "ByteReader.h"
#include "ByteWriter.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace LibraryBrowser::Host {

bool FileStamp::read(const char* path, bool followLinks, int from)
{
    struct stat status;
    if (::fstatat(from < 0 ? AT_FDCWD : from, path, &status, followLinks ? 0 : AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    device = std::uint64_t(status.st_dev);
    inode = std::uint64_t(status.st_ino);
    size = std::int64_t(status.st_size);
    modified = std::int64_t(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec;
    changed = std::int64_t(status.st_ctim.tv_sec) * 1000000000 + status.st_ctim.tv_nsec;
    directory = S_ISDIR(status.st_mode);
    return true;
}

bool FileStamp::operator==(const FileStamp& other) const
{
    return device == other.device && inode == other.inode && size == other.size && modified == other.modified
        && changed == other.changed && directory == other.directory;
}

void FileStamp::write(ByteWriter& out) const
{
    out.number(device);
    out.number(inode);
    out.signedNumber(size);
    out.signedNumber(modified);
    out.signedNumber(changed);
    out.number(directory ? 1 : 0);
}

bool FileStamp::read(ByteReader& in)
{
    std::uint64_t isDirectory = 0;
    if (!in.number(device) || !in.number(inode) || !in.signedNumber(size) || !in.signedNumber(modified)
        || !in.signedNumber(changed) || !in.number(isDirectory) || isDirectory > 1)
        return false;
    directory = isDirectory == 1;
    return true;
}

} // namespace LibraryBrowser::Host
