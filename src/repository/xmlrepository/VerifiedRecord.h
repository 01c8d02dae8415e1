#pragma once

#include <QByteArray>

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser {

// Size and date (in milliseconds) of a file as the record keeps them.
struct VerifiedStamp {
    qint64 size = -1;
    qint64 modified = 0;
    bool operator==(const VerifiedStamp& o) const { return size == o.size && modified == o.modified; }
};

// The record, in one file of a writable store, of the archives read whole or
// published, each with the size and date it had then: an archive unchanged
// since needs no reading whole again. It is read once per process. Changes
// are added at the file's end, a line each, later lines standing over
// earlier ones, so that a change to two archives costs two lines and not the
// whole record written again; several processes may add at once. Once the
// lines that stand over others make up half of the file, it is written anew
// from what this process holds, without the archives of stores that are no
// longer there; lines another process added meanwhile are lost, which costs
// only a read of those archives again. A line cut short by a killed process
// names no archive that is asked for.
class VerifiedRecord {
public:
    explicit VerifiedRecord(std::string file);

    // The stamp recorded for the archive, or one of size -1.
    VerifiedStamp find(const std::string& key);
    void set(const std::string& key, const VerifiedStamp& stamp);
    void erase(const std::string& key);
    // Writes the changes since the last call; nothing if there are none.
    void save();

    // Lines the file holds, as far as this process knows.
    std::size_t lineCount() const { return m_lines; }

private:
    void load();
    void rewrite();
    void append();

    std::string m_file;
    bool m_loaded = false;
    std::size_t m_lines = 0;
    // The file as read, which the keys of its lines point into: a store of
    // a thousand products has thousands of lines, and each key made a
    // string of its own cost a millisecond of every command.
    QByteArray m_text;
    // Keys this process added; a deque, so that they stay where they are.
    std::deque<std::string> m_ownKeys;
    std::unordered_map<std::string_view, VerifiedStamp> m_stamps;
    // Archives changed since the last save, in order; a size of -1 is one
    // taken out.
    std::vector<std::pair<std::string, VerifiedStamp>> m_pending;
};

} // namespace LibraryBrowser
