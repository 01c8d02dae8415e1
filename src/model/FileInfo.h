#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace LibraryBrowser {

// A file a manifest depends on, as it was when the manifest was made.
struct FileInfo {
    std::string fileSpec; // relative to the host root
    std::string checkSum; // whole-file MD5 in the repository's decimal form
    std::uint64_t date = 0; // modification time, seconds since the epoch
    std::uint64_t size = 0; // bytes

    bool operator==(const FileInfo& o) const
    {
        return fileSpec == o.fileSpec && checkSum == o.checkSum && date == o.date && size == o.size;
    }
    bool operator!=(const FileInfo& o) const { return !(*this == o); }
};

using FileInfoVector = std::vector<FileInfo>;
using StringVector = std::vector<std::string>;

} // namespace LibraryBrowser
