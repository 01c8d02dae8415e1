#pragma once

#include "FileStamp.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

namespace LibraryBrowser::Host {

class PathCacheFile;

// The walk below the host root that finds the directories holding a
// tdblocks.json and the library files in every directory. It goes where a
// recursive directory iterator with the patterns "tdblocks.json" and
// "*.tdlib.json" (in any case) goes and finds what it finds: regular files
// and links that lead to something other than a directory; no hidden entry,
// and no directory reached through a link.
//
// Each directory listed is remembered with its state (device, inode, dates
// to the nanosecond). Adding, removing or renaming an entry changes a
// directory's state, so a directory whose state is as remembered, and was
// remembered long enough after its last change (PathCacheFile::trusted), is
// taken as it was instead of being listed again: a walk of an unchanged root
// costs one stat per directory, and one per link among the found names.
class RootWalk {
public:
    struct Found {
        // The directories that hold a tdblocks.json, sorted.
        QStringList below;
        // Per directory, the names of the library files in it, if any.
        QHash<QString, QStringList> libraries;
    };

    explicit RootWalk(const PathCacheFile& trust) : m_trust(trust) {}

    Found walk(const QString& root);
    // The root as the walk names the directories below it: absolute, clean.
    static QString absoluteRoot(const QString& root);
    // How many directories the last walk listed rather than took as known.
    int listed() const { return m_listed; }
    // Whether the last walk learnt something that toBytes() keeps, or found
    // something it kept gone.
    bool changed() const { return m_changed; }

    // The directories that may be taken again, for a later process.
    QByteArray toBytes() const;
    // What toBytes() gave; anything else leaves nothing known.
    void fromBytes(const QByteArray& bytes);

private:
    struct Directory {
        FileStamp stamp;
        bool trusted = false;
        QStringList subdirectories;
        QStringList files;
        // Matching names that are symbolic links: whether one counts as a
        // file depends on where it leads, which the directory's state does
        // not show.
        QStringList links;
        // The last walk that reached it.
        int walk = 0;
    };

    static void list(const QByteArray& path, Directory& directory);

    const PathCacheFile& m_trust;
    // By path relative to the root, the root itself "".
    QHash<QString, Directory> m_directories;
    int m_listed = 0;
    int m_walks = 0;
    bool m_changed = false;
};

} // namespace LibraryBrowser::Host
