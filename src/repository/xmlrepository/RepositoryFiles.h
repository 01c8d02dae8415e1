#pragma once

#include "model/FileInfo.h"

#include <QByteArray>

class QFile;

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace LibraryBrowser {

class ErrorHolder;
class Model;
class RepositoryReport;

// File work of the repository store. Paths are UTF-8. Nothing here throws;
// what goes wrong is said in the report.

// Modification time in seconds since the epoch; 0 for a missing file.
std::uint64_t fileDate(const std::string& path);
// Whether the file exists. On the build account it is asked again for a
// while, since another process may be writing the file.
bool fileExists(const std::string& path);
// Date and size of a file given relative to the host's root (or absolute);
// zeros, and an error, for anything but an existing regular file. The
// checksum is left empty: it is costly and computed where needed.
FileInfo fileInfoOf(RepositoryReport& report, const std::string& fileSpec);
// The same without a word in the report: false for anything but an existing
// regular file.
bool regularFileInfo(const std::string& fileSpec, FileInfo& info);
// The whole-file MD5, written as the sixteen byte values in decimal without
// padding; the empty string, and an error, if the file can't be read. The
// file is read in chunks, so its size doesn't matter.
std::string computeCheckSum(RepositoryReport& report, const std::string& path);
// The checked copy: replaces the destination, making its directory if
// needed. The new file is written beside the destination and renamed over
// it, so that another process sees the old or the new file, never a part.
// False, and an error with the system's reason, on any failure; the
// destination is then as it was.
bool copyFile(RepositoryReport& report, const std::string& source, const std::string& destination);
// One state of a file: a file replaced by a rename has a new inode, one
// written in place a new time.
struct FileStamp {
    bool exists = false;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t modified = 0; // nanoseconds since the epoch

    bool operator==(const FileStamp& other) const
    {
        return exists == other.exists && inode == other.inode && size == other.size && modified == other.modified;
    }
    bool operator!=(const FileStamp& other) const { return !(*this == other); }
};
// Within its life on this thread, a file once found by stat is not looked up
// again: a product's up-to-date test asks about the same few files several
// times, and at a thousand products the calls add up. A file not found is
// asked about again each time. A scope made inside another one adds nothing.
class FileStateScope {
public:
    FileStateScope();
    ~FileStateScope();
    FileStateScope(const FileStateScope&) = delete;
    FileStateScope& operator=(const FileStateScope&) = delete;

    // stat of the path, through the active scope if there is one.
    static bool stat(const std::string& path, struct stat& status);

private:
    std::vector<std::pair<std::string, struct stat>> m_found;
    bool m_active = false;
};

// The stamp of the file at the path now, or of an open file.
FileStamp fileStamp(const std::string& path);
FileStamp fileStamp(const QFile& file);
// Whether the file exists and holds exactly these bytes; false when it can't
// be read.
bool holdsBytes(const std::string& path, const QByteArray& bytes);
// The whole of a regular file, false if it can't be opened or read. By the
// system's calls: QFile's open alone adds three, and a generation reads back
// a file for each of thousands of icons.
bool readFileBytes(const std::string& path, QByteArray& bytes);
// The same for a file named from a directory open as `directory`.
bool readFileBytes(int directory, const std::string& name, QByteArray& bytes);
// Whether the process runs as the automated build account; decided once.
bool isAutomatedBuildUser();
// Waits for about count milliseconds.
void pause(int count);
// The values a load skipped, one warning each.
void reportLoadWarnings(RepositoryReport& report, const ErrorHolder& errors);
// Reads a manifest into the model within one change set. Empty bytes do
// nothing. False, and an error, if the bytes are not a manifest; the nodes
// read before the fault stay in the model.
bool loadManifestFromBytes(RepositoryReport& report, Model& model, const QByteArray& bytes);

} // namespace LibraryBrowser
