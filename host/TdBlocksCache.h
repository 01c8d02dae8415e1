#pragma once

#include "FileIssue.h"
#include "FileStamp.h"
#include "TdBlocksEntry.h"

#include <QString>

#include <memory>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser::Host {

class ByteReader;
class ByteWriter;
class OpenDirectory;
class PathCacheFile;

// The tdblocks.json files read so far, each with the state of the file it
// was read from. Every generation asks for the products of the whole path,
// some of them twice in one process; a file whose state is unchanged is
// given as it was read instead of being parsed again. Any change to the
// file (a rewrite, an edit in place, a file put there by rename) changes
// its state and has it read again. What was read long enough after the
// file's last change (PathCacheFile::trusted) is kept in the cache file,
// for later processes.
class TdBlocksCache {
public:
    explicit TdBlocksCache(PathCacheFile& cache);

    using Entries = std::shared_ptr<const std::vector<TdBlocksEntry>>;

    // The file's entries, or null when it does not exist; then `parsed` is
    // the result of TdBlocksParser::parse, with `issue` and `refused` as
    // that parse filled them. The file is looked up from `from` when it lies
    // below it. The entries stay as they are whatever is read later.
    Entries read(const QString& file, const QString& root, const OpenDirectory& from, bool& parsed,
                 FileIssue& issue, std::vector<FileIssue>& refused);
    // Writes the cache file when this process parsed a file worth keeping.
    void keep();
    // How many files were parsed, rather than taken as known, so far.
    int parsedFiles() const { return m_parsedFiles; }

private:
    struct Parsed {
        FileStamp stamp;
        QString root;
        bool ok = false;
        Entries entries;
        FileIssue issue;
        std::vector<FileIssue> refused;
        // Whether it may be kept for a later process.
        bool trusted = false;
        // Whether this process found the file in this state.
        bool seen = false;
    };

    void load();
    static void writeIssue(ByteWriter& out, const FileIssue& issue, const QString& file);
    static bool readIssue(ByteReader& in, FileIssue& issue, const QString& file);

    PathCacheFile& m_cache;
    bool m_loaded = false;
    bool m_learnt = false;
    int m_parsedFiles = 0;
    std::unordered_map<std::string, Parsed> m_files;
};

} // namespace LibraryBrowser::Host
