#pragma once

#include <QByteArray>

#include <cstdint>
#include <string>
#include <unordered_map>

namespace LibraryBrowser {

// Where each entry of a zip file lies, read once from the file's central
// directory. With it one entry is read by opening the file, reading that
// entry's bytes and closing the file again: no file stays open between reads,
// and a read costs the same however many entries the archive holds.
// Stored and deflated entries are read; anything else is refused with a reason.
class ZipEntryIndex {
public:
    // Reads the central directory of the file. False, with the index empty and
    // the reason in `error`, for a file that is not a readable zip archive.
    bool load(const std::string& path, std::string& error);
    // The same test of the file as load, without keeping the entries.
    static bool check(const std::string& path, std::string& error);
    bool isLoaded() const { return m_loaded; }
    void clear();

    bool contains(const std::string& name) const { return m_entries.count(name) != 0; }
    std::size_t size() const { return m_entries.size(); }

    // The bytes of the entry `name` of the file at `path`, which must be the
    // file the index was loaded from. False, `bytes` empty and the reason in
    // `error`, if the entry is unknown or its data is damaged.
    bool read(const std::string& path, const std::string& name, QByteArray& bytes, std::string& error) const;
    // Reads every entry of the file, as read does. False, with the first
    // damaged entry named in `error`, if any can't be read.
    bool readsWhole(const std::string& path, std::string& error) const;

private:
    struct Entry {
        std::uint64_t headerOffset = 0;
        std::uint64_t compressedSize = 0;
        std::uint64_t size = 0;
        std::uint32_t crc = 0;
        std::uint16_t method = 0;
        std::uint16_t flags = 0;
    };

    static bool readable(const Entry& entry, std::string& error);
    // The entry's bytes, checked, from `fetch(offset, length, part)`.
    template<typename Fetch>
    static bool decode(const Entry& entry, const Fetch& fetch, QByteArray& bytes, std::string& error);
    bool parseDirectory(const QByteArray& directory, std::uint64_t count, std::string& error);

    std::unordered_map<std::string, Entry> m_entries;
    bool m_loaded = false;
    bool m_keepEntries = true;
};

} // namespace LibraryBrowser
