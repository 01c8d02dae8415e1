#pragma once

#include "RootWalk.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <string>
#include <unordered_map>

#include <sys/stat.h>

namespace LibraryBrowser::Host {

class PathCacheFile;

// The directories the host searches for tdblocks.json and library files:
// the given ones in their order, then every directory below the root that
// holds a tdblocks.json, sorted. The first one on the path wins. What the
// walk below the root learns is kept in the cache file for the next process.
class SearchPath {
public:
    static constexpr const char* librarySuffix = ".tdlib.json";

    SearchPath(QString root, QStringList given, PathCacheFile& cache);

    const QString& root() const { return m_root; }
    const QStringList& directories() const { return m_directories; }
    // Scans the root again, for directories added since.
    void refresh();
    // How many directories the last scan listed rather than took as known.
    int listedDirectories() const { return m_walk.listed(); }
    // The first file for the library on the path, or empty. A file once
    // found is given again while it exists: a generation asks for each
    // library thousands of times, and walking the path each time costs a
    // failed look-up per directory before it. For the same reason the
    // directories below the root are taken as the last refresh() listed
    // them, and only the others are looked into. So a file of the same name
    // added later to a directory earlier on the path is only seen after the
    // one found is gone or refresh() has run.
    QString findLibraryFile(const std::string& library) const;
    // The same, with the state of the file the look-up found (by stat,
    // links followed) in `status`: one look-up of the file, not two.
    QString findLibraryFile(const std::string& library, struct stat& status) const;

    static QString libraryFileName(const std::string& library);
    // How the host names a file to the module: relative to the root when it
    // lies below it, else absolute.
    static std::string fileSpec(const QString& root, const QString& file);
    // The same for a file of this path.
    std::string fileSpec(const QString& file) const;

private:
    QString m_root;
    // The root, absolute and clean, with a slash after it.
    QString m_top;
    QStringList m_given;
    PathCacheFile& m_cache;
    RootWalk m_walk;
    QStringList m_directories;
    mutable std::unordered_map<std::string, QString> m_found;
    // For each library file name the walk below the root listed, the
    // indices in m_directories of the directories that hold it, ascending;
    // and the indices of the directories the walk did not list. A look-up
    // then tries only those, whatever the length of the path.
    QHash<QString, QList<int>> m_listedIn;
    QList<int> m_unlisted;
};

} // namespace LibraryBrowser::Host
