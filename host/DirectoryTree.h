#pragma once

#include <QString>

namespace LibraryBrowser::Host {

// A directory and everything below it, taken away by names in their
// directories: a writer's working directory holds an icon file for each
// block of a library, and a removal by whole paths walked each path again
// and asked each file's type. Links are taken away, never followed.
class DirectoryTree {
public:
    // False where anything is left; what could be removed is gone.
    static bool remove(const QString& directory);
};

} // namespace LibraryBrowser::Host
