#include "DirectoryTree.h"

#include <QFile>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LibraryBrowser::Host {

namespace {

// Empties the directory open as `descriptor`, which this closes.
bool empty(int descriptor)
{
    DIR* listing = ::fdopendir(descriptor);
    if (!listing) {
        ::close(descriptor);
        return false;
    }
    // Listed first, removed after: no entry is missed or met twice while the
    // directory changes under the listing.
    std::vector<std::pair<std::string, bool>> entries;
    while (const dirent* entry = ::readdir(listing)) {
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        bool directory = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN) {
            struct stat status {};
            directory = ::fstatat(descriptor, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
        }
        entries.emplace_back(name, directory);
    }
    bool removed = true;
    for (const auto& [name, directory] : entries) {
        if (directory) {
            const int below = ::openat(descriptor, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            removed = below >= 0 && empty(below) && removed;
        }
        removed = ::unlinkat(descriptor, name.c_str(), directory ? AT_REMOVEDIR : 0) == 0 && removed;
    }
    ::closedir(listing);
    return removed;
}

} // namespace

bool DirectoryTree::remove(const QString& directory)
{
    const QByteArray path = QFile::encodeName(directory);
    if (path.isEmpty() || path.contains('\0'))
        return false;
    const int descriptor = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool emptied = empty(descriptor);
    return ::rmdir(path.constData()) == 0 && emptied;
}

} // namespace LibraryBrowser::Host
