#pragma once

#include <string>

namespace LibraryBrowser {

class RepositoryReport;

// Private working directories below the system's temporary directory. A name
// gets a unique directory on its first use and keeps it for the life of the
// process, also after the directory has been removed: it is then made anew.

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
void removeNamedTempDirectory(RepositoryReport& report, const std::string& name);
// Removes a directory and all below it through the host; a missing one is
// left alone.
void removeDirectory(RepositoryReport& report, const std::string& path);

} // namespace LibraryBrowser
