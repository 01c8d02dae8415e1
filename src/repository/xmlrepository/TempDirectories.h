#pragma once

#include <QString>
#include <QStringList>

#include <string>

namespace LibraryBrowser {

class RepositoryReport;

// Private working directories below privateTempBase(). A name gets a unique
// directory on its first use and keeps it for the life of the process, also
// after the directory has been removed: it is then made anew.

// Where the private working directories go. A directory named by TMPDIR is
// taken as it stands. Otherwise a memory file system with room to spare
// (XDG_RUNTIME_DIR, then /dev/shm), since a generation makes and removes a
// file per block there, and creating files on a disk costs far more; failing
// that, the system's temporary directory.
QString privateTempBase();
// The first of the candidates that is a writable directory on a memory file
// system with room to spare, or empty.
QString memoryFileSystemBase(const QStringList& candidates);

// The directory of that name, made if create is set; the empty string, and
// an error, if it can't be had.
std::string namedTempDirectory(RepositoryReport& report, const std::string& name, bool create);
// "LBwriter" + number: a generation's working directory.
std::string tempDirectory(RepositoryReport& report, int number);
// "LBCache" + number: a cached archive's working directory.
std::string cacheTempDirectory(RepositoryReport& report, int number);
// "LBTop" + number: where a top-level manifest is read from.
std::string topLevelTempDirectory(RepositoryReport& report, int number);
void removeTempDirectory(RepositoryReport& report, int number);
// Copies a file into a private working directory, replacing what is there.
// The copy is nobody else's and dies with the process, so it is not synced
// to the disk. False, with no file left, if it can't be made.
bool copyToPrivateFile(const std::string& source, const std::string& destination);
void removeNamedTempDirectory(RepositoryReport& report, const std::string& name);
// Removes a directory and all below it through the host; a missing one is
// left alone.
void removeDirectory(RepositoryReport& report, const std::string& path);

} // namespace LibraryBrowser
