#pragma once

#include <QByteArray>
#include <QString>

namespace LibraryBrowser::Host {

struct FileStamp;

// A directory held open so that files below it are looked up from it: the
// system then walks only the part of each path below it, which for a deep
// root is most of the cost of a stat. It is opened for one call (or one
// walk) and closed after, so a directory renamed away or replaced since an
// earlier call is never looked into; files outside it are looked up by
// their own path.
class OpenDirectory {
public:
    // An absolute, clean path. One that can't be opened leaves every look-up
    // to the full path.
    explicit OpenDirectory(const QString& directory);
    ~OpenDirectory();
    OpenDirectory(const OpenDirectory&) = delete;
    OpenDirectory& operator=(const OpenDirectory&) = delete;

    // The descriptor, or -1.
    int descriptor() const { return m_descriptor; }
    // The state of the file at `path` (encoded, as its directory gives it),
    // as FileStamp::read with links followed.
    bool stamp(const QByteArray& path, FileStamp& stamp) const;

private:
    int m_descriptor = -1;
    // The encoded directory with a slash after it.
    QByteArray m_prefix;
};

} // namespace LibraryBrowser::Host
