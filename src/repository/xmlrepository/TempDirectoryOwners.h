#pragma once

#include <QString>

namespace LibraryBrowser {

class RepositoryReport;

// Which process a private temporary directory belongs to. Each directory this
// process makes gets an owner file with the process's id and start time; a
// later process removes the directories whose owner has ended, which a killed
// process leaves behind. Only directories of our own names ("LBwriter",
// "LBCache", "LBTop", a number and the unique part) of the user running are
// ever touched: those with an owner file, and those left without one for ten
// minutes (their process ended between making and marking them).
class TempDirectoryOwners {
public:
    static constexpr const char* OwnerFileName = ".lbowner";

    // Writes the owner file of a directory this process has just made.
    static void mark(const QString& directory);
    // Removes the left-over directories of ended processes below the base of
    // the private working directories; the first call of a process does the work, later
    // ones nothing.
    static void removeLeftOversOnce(RepositoryReport& report);
    // The same, every time it is called.
    static void removeLeftOvers(RepositoryReport& report);
    // Whether the process of an owner file's text still runs; true when it
    // can't be told.
    static bool ownerIsRunning(const QString& ownerText);
};

} // namespace LibraryBrowser
