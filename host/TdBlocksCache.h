#pragma once

#include "FileIssue.h"
#include "TdBlocksEntry.h"

#include <QString>

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser::Host {

// The tdblocks.json files read so far, each with the state of the file it
// was read from. Every generation asks for the products of the whole path,
// some of them twice in one process; a file whose state is unchanged is
// given as it was read instead of being parsed again. Any change to the
// file (a rewrite, an edit in place, a file put there by rename) changes
// its state and has it read again.
class TdBlocksCache {
public:
    // Whether the file exists. If so, its entries are appended and the
    // result of TdBlocksParser::parse given, with `issue` and `refused` as
    // that parse filled them.
    bool read(const QString& file, const QString& root, std::vector<TdBlocksEntry>& entries, bool& parsed,
              FileIssue& issue, std::vector<FileIssue>& refused);

private:
    struct Stamp {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t modified = 0; // nanoseconds
        std::int64_t changed = 0;  // nanoseconds, the inode's change
        bool operator==(const Stamp& other) const;
    };
    struct Parsed {
        Stamp stamp;
        QString root;
        bool ok = false;
        std::vector<TdBlocksEntry> entries;
        FileIssue issue;
        std::vector<FileIssue> refused;
    };

    std::unordered_map<std::string, Parsed> m_files;
};

} // namespace LibraryBrowser::Host
