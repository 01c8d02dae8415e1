#pragma once

#include "FileIssue.h"
#include "TdBlocksEntry.h"

#include <QString>

#include <vector>

namespace LibraryBrowser::Host {

// Reads a tdblocks.json file: the products and palettes that one directory
// of the path announces. File names in it are relative to its directory and
// come out relative to the host root, or absolute outside it.
class TdBlocksParser {
public:
    static constexpr const char* fileName = "tdblocks.json";
    static constexpr const char* format = "tandril-tdblocks";
    static constexpr int currentVersion = 1;

    // False, with the issue filled in and no entries, for a file that does
    // not pass the schema check; a file is taken whole or not at all, except
    // for names a manifest's list could not carry back (see refusedNameReason):
    // such a name is left out of its entry, and `refused` says where.
    static bool parse(const QString& path, const QString& root, std::vector<TdBlocksEntry>& entries,
                      FileIssue& issue, std::vector<FileIssue>& refused);

    // Why a name can't stand in the list `key` ("children" or
    // "dependencies") of an entry, or the empty string. The manifest keeps
    // these lists as text split at "," and, for file records, at "|", and
    // reads only their first line: a palette child with a comma or line feed
    // and a dependency with a "|" or line feed would read back as other
    // names. A comma in a dependency reads back whole.
    static QString refusedNameReason(const char* key, const std::string& name);
};

} // namespace LibraryBrowser::Host
