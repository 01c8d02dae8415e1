#pragma once

#include <QByteArray>

#include <cstdint>

namespace LibraryBrowser::Host {

class ByteReader;
class ByteWriter;

// The state of a file or directory as far as a change to it shows: any
// write, rename into place, edit in place or change of its dates or rights
// changes one of these.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0; // nanoseconds
    std::int64_t changed = 0;  // nanoseconds, the inode's change
    bool directory = false;

    // False when there is nothing at the path. A symbolic link is followed
    // unless `followLinks` is false. A relative path is taken from the open
    // directory `from`, if one is given.
    bool read(const char* path, bool followLinks, int from = -1);
    bool read(const QByteArray& path, bool followLinks, int from = -1)
    {
        return read(path.constData(), followLinks, from);
    }
    // The later of the two times: what a state is not older than.
    std::int64_t latest() const { return modified > changed ? modified : changed; }
    bool operator==(const FileStamp& other) const;
    bool operator!=(const FileStamp& other) const { return !(*this == other); }

    void write(ByteWriter& out) const;
    bool read(ByteReader& in);
};

} // namespace LibraryBrowser::Host
