#pragma once

#include <functional>
#include <string>

namespace LibraryBrowser {

// The seam through which tests make the store's file work fail. Every file
// operation of a generation asks failNow() just before it acts, and on true
// takes the same way out as when the system refuses it. Without a hook,
// which is always so outside tests, nothing fails and the cost is one check.
class FileFaults {
public:
    enum Operation { Create, Write, Rename, Copy, Remove, ArchiveClose };

    // Answers, for each operation asked about, whether it fails.
    using Hook = std::function<bool(Operation operation, const std::string& path)>;

    // Installs the hook (an empty one removes it). Not thread-safe: install
    // it while no generation runs.
    static void setHook(Hook hook);
    static bool failNow(Operation operation, const std::string& path);
    static const char* name(Operation operation);
    // The reason given for a refused operation.
    static const char* message() { return "the file operation was refused"; }
};

} // namespace LibraryBrowser
