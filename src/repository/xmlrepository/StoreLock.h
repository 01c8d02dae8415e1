#pragma once

#include <string>

namespace LibraryBrowser {

class RepositoryReport;

// The lock that several processes sharing one store take before they change
// it, and that readers take while they copy a product's archives: the
// system's lock (flock) on the file ".lbstore.lock" in the store directory,
// which holds the owner's line while it is locked. The system ends the lock
// with its process, so a killed owner never leaves it behind. Within a
// process the lock counts: nested verbs of one process share the outermost
// hold. While another process holds it, the waiter says once whose lock it
// waits for (pid, program, user, host), in the report and on standard error,
// and waits as long as the owner holds it.
class StoreLock {
public:
    static constexpr const char* FileName = ".lbstore.lock";

    // A writer makes the lock file if it is missing; a reader only locks a
    // store that has one, since no writer has worked on a store without it,
    // and never writes into a store.
    enum Purpose { Write, Read };

    StoreLock(RepositoryReport& report, const std::string& storeDirectory, Purpose purpose = Write);
    ~StoreLock();
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;

    // False where the store takes no lock file: a directory that can't be
    // written, where nobody else can change the store either.
    bool isHeld() const { return m_held; }

private:
    std::string m_key;
    bool m_held = false;
};

} // namespace LibraryBrowser
