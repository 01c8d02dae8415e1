#pragma once

#include <QByteArray>

#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

// A zip archive on disk. Copies refer to the same open archive. Every
// operation is safe on a closed archive: lookups find nothing and changes do
// nothing, so a caller that goes on after a failed open cannot crash.
// Changes reach the file when the archive is closed. They are written into
// the same file rather than a new one renamed over it, so a close cut short
// can leave the file damaged: archives are opened for writing only on
// private copies.
class ZipArchive {
public:
    // OpenExisting and CreateNew hold the archive in memory while it is open.
    // ReadOnly reads from the file and skips the consistency checks of
    // OpenExisting: for the many short reads of a cache.
    enum OpenMode { OpenExisting = 0, CreateNew = 1, ReadOnly = 2 };

    // An entry by index; invalid when it names nothing.
    class Entry {
    public:
        bool isValid() const { return m_index >= 0; }
        long long index() const { return m_index; }

    private:
        friend class ZipArchive;
        explicit Entry(long long index) : m_index(index) {}
        long long m_index = -1;
    };

    ZipArchive();
    ~ZipArchive();
    ZipArchive(const ZipArchive&) = default;
    ZipArchive& operator=(const ZipArchive&) = default;

    // Opens an existing archive, or makes a new empty one (replacing a file
    // of that name when it is closed). A file that is not a readable zip
    // leaves the archive closed, with the reason in errorString().
    bool open(const std::string& path, OpenMode mode);
    bool isOpened() const;
    // Writes pending changes. False if they could not be written; the archive
    // is closed either way. An archive closed without entries leaves no file.
    bool close();
    const std::string& getArchiveFilePath() const;
    const std::string& errorString() const;

    bool exists(const std::string& name) const;
    Entry find(const std::string& name) const;
    // The entry's bytes; false (and `bytes` empty) if it cannot be read.
    bool read(const Entry& entry, QByteArray& bytes) const;
    // Adds or replaces the entry; the bytes are copied.
    bool add(const std::string& name, const QByteArray& bytes);
    bool remove(const Entry& entry);

    // The names of all entries, in archive order, without removed ones.
    std::vector<std::string> entryNames() const;
    std::string getName(const Entry& entry) const;

    // Reads one entry of an archive file without keeping it open.
    static bool readEntry(const std::string& path, const std::string& name, QByteArray& bytes,
                          std::string& error);

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace LibraryBrowser
