#include "repository/xmlrepository/StoreLock.h"

#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/RepositoryPaths.h"

#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <unistd.h>

namespace LibraryBrowser {

namespace {

struct Hold {
    int descriptor = -1;
    int depth = 0;
    StoreLock::Purpose purpose = StoreLock::Write;
};

// Store directory -> this process's hold on it; main thread only.
std::map<std::string, Hold>& holds()
{
    static std::map<std::string, Hold> table;
    return table;
}

// One key per directory however it is spelt: a second descriptor of this
// process on the same lock file would wait for its own process forever.
std::string keyOf(const std::string& directory)
{
    const QFileInfo info(QString::fromStdString(directory));
    const QString canonical = info.canonicalFilePath();
    return forwardSlashes((canonical.isEmpty() ? info.absoluteFilePath() : canonical).toStdString());
}

std::string userName()
{
    const passwd* entry = ::getpwuid(::geteuid());
    return entry ? entry->pw_name : std::to_string(::geteuid());
}

std::string programName()
{
    char path[4096];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (length <= 0)
        return "?";
    path[length] = '\0';
    const std::string text(path);
    return text.substr(text.rfind('/') + 1);
}

// The owner's line: "process PID (PROGRAM) of user USER on host HOST".
std::string ownerLine()
{
    return "process " + std::to_string(::getpid()) + " (" + programName() + ") of user " + userName() + " on host "
           + QSysInfo::machineHostName().toStdString();
}

std::string readOwner(int descriptor)
{
    char text[512] = {};
    const ssize_t length = ::pread(descriptor, text, sizeof(text) - 1, 0);
    std::string owner = length > 0 ? std::string(text, std::size_t(length)) : std::string();
    while (!owner.empty() && (owner.back() == '\n' || owner.back() == '\0'))
        owner.pop_back();
    return owner.empty() ? "another process" : owner;
}

// Who holds the lock is for the message of a waiter only: a failed write
// costs that message its details, nothing else.
bool writeOwner(int descriptor, const std::string& line)
{
    return ::ftruncate(descriptor, 0) == 0
           && ::pwrite(descriptor, line.data(), line.size(), 0) == ssize_t(line.size());
}

} // namespace

StoreLock::StoreLock(RepositoryReport& report, const std::string& storeDirectory, Purpose purpose)
    : m_key(storeDirectory.empty() ? std::string() : keyOf(storeDirectory))
{
    if (m_key.empty())
        return;
    if (const auto found = holds().find(m_key); found != holds().end()) {
        ++found->second.depth;
        m_held = true;
        return;
    }
    const QFileInfo directory(QString::fromStdString(m_key));
    if (!directory.isDir() || !directory.isWritable())
        return;
    const std::string path = m_key + "/" + FileName;
    // The kernel's lock on an open file ends with the process that holds it,
    // however it ends: a lock is never left behind by a killed process. The
    // file itself stays, so that every process locks the same file.
    const int descriptor = ::open(QFile::encodeName(QString::fromStdString(path)).constData(),
                                  purpose == Write ? O_RDWR | O_CREAT | O_CLOEXEC : O_RDONLY | O_CLOEXEC, 0666);
    if (descriptor < 0 && purpose == Read)
        return;
    if (descriptor < 0) {
        // No lock file can be made (a full disk, a store made read-only
        // under us): nobody can wait for this one, so work goes on without.
        report.log("Unable to lock the repository store " + m_key + ": " + std::strerror(errno)
                   + "; going on without the lock");
        return;
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const std::string line =
            "Waiting for the repository store " + m_key + ", locked by " + readOwner(descriptor);
        report.log(line);
        // Once per store in a process: a reader may wait at every product.
        static std::set<std::string> told;
        if (told.insert(m_key).second) {
            std::fprintf(stderr, "%s\n", line.c_str());
            std::fflush(stderr);
        }
        while (::flock(descriptor, LOCK_EX) != 0) {
            if (errno != EINTR) {
                report.log("Unable to lock the repository store " + m_key + ": " + std::strerror(errno)
                           + "; going on without the lock");
                ::close(descriptor);
                return;
            }
        }
    }
    if (purpose == Write)
        writeOwner(descriptor, ownerLine() + "\n");
    holds()[m_key] = Hold{descriptor, 1, purpose};
    m_held = true;
}

StoreLock::~StoreLock()
{
    if (!m_held)
        return;
    const auto found = holds().find(m_key);
    if (found == holds().end() || --found->second.depth > 0)
        return;
    const int descriptor = found->second.descriptor;
    const bool written = found->second.purpose == Write;
    holds().erase(found);
    if (written)
        writeOwner(descriptor, std::string());
    ::close(descriptor);
}

} // namespace LibraryBrowser
