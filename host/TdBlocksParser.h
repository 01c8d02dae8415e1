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
    // not pass the schema check; a file is taken whole or not at all.
    static bool parse(const QString& path, const QString& root, std::vector<TdBlocksEntry>& entries,
                      FileIssue& issue);
};

} // namespace LibraryBrowser::Host
