#include "platform/ZipEntryIndex.h"

#include <QFile>

#include <zlib.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace LibraryBrowser {

namespace {

constexpr std::uint32_t endOfDirectorySignature = 0x06054b50;
constexpr std::uint32_t zip64EndSignature = 0x06064b50;
constexpr std::uint32_t zip64LocatorSignature = 0x07064b50;
constexpr std::uint32_t directoryHeaderSignature = 0x02014b50;
constexpr std::uint32_t localHeaderSignature = 0x04034b50;
constexpr int endOfDirectorySize = 22;
constexpr int zip64LocatorSize = 20;
constexpr int zip64EndSize = 56;
constexpr int directoryHeaderSize = 46;
constexpr int localHeaderSize = 30;
constexpr std::uint16_t zip64ExtraId = 0x0001;
constexpr std::uint16_t methodStored = 0;
constexpr std::uint16_t methodDeflated = 8;
constexpr std::uint16_t flagEncrypted = 0x0001;
// Larger archives are checked entry by entry from the open file.
constexpr qint64 wholeReadLimit = qint64(64) << 20;

// Little-endian fields at an offset the caller has checked to be inside.
std::uint64_t field(const QByteArray& bytes, qsizetype at, int width)
{
    std::uint64_t value = 0;
    for (int i = width - 1; i >= 0; --i)
        value = (value << 8) | std::uint8_t(bytes[at + i]);
    return value;
}

bool readAt(QFile& file, std::uint64_t offset, qint64 length, QByteArray& bytes)
{
    if (offset > std::uint64_t(std::numeric_limits<qint64>::max()) || !file.seek(qint64(offset)))
        return false;
    bytes = file.read(length);
    return bytes.size() == length;
}

bool inflateRaw(const QByteArray& compressed, std::uint64_t size, QByteArray& bytes)
{
    if (size > std::uint64_t(std::numeric_limits<uInt>::max())
        || compressed.size() > qsizetype(std::numeric_limits<uInt>::max()))
        return false;
    bytes = QByteArray(qsizetype(size), Qt::Uninitialized);
    z_stream stream{};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return false;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.constData()));
    stream.avail_in = uInt(compressed.size());
    // One spare byte: output beyond the recorded size means a damaged entry.
    QByteArray spare(1, '\0');
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = uInt(size);
    int result = inflate(&stream, Z_FINISH);
    if (result == Z_BUF_ERROR && stream.avail_out == 0) {
        stream.next_out = reinterpret_cast<Bytef*>(spare.data());
        stream.avail_out = 1;
        result = inflate(&stream, Z_FINISH);
    }
    const bool whole = result == Z_STREAM_END && stream.total_out == size;
    inflateEnd(&stream);
    return whole;
}

// Unbuffered: a read takes exactly the bytes asked for. A buffered file
// reads ahead a block much larger than a manifest's compressed entry.
bool openUnbuffered(QFile& file, std::string& error)
{
    if (file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return true;
    error = "Can't open file: " + file.errorString().toStdString();
    return false;
}

} // namespace

void ZipEntryIndex::clear()
{
    m_entries.clear();
    m_loaded = false;
}

bool ZipEntryIndex::load(const std::string& path, std::string& error)
{
    clear();
    QFile file(QString::fromStdString(path));
    if (!openUnbuffered(file, error))
        return false;
    const qint64 fileSize = file.size();
    // The end record sits within the last 22 bytes plus a comment of at most
    // 64 KiB. Archives of ours carry no comment, so the last 22 bytes are
    // tried first.
    QByteArray tail;
    qint64 tailSize = std::min<qint64>(fileSize, endOfDirectorySize);
    qsizetype end = -1;
    for (const qint64 size : {qint64(endOfDirectorySize), qint64(endOfDirectorySize + 0xFFFF)}) {
        tailSize = std::min<qint64>(fileSize, size);
        if (tailSize < endOfDirectorySize || !readAt(file, std::uint64_t(fileSize - tailSize), tailSize, tail)) {
            error = "Not a zip archive";
            return false;
        }
        end = tail.size() - endOfDirectorySize;
        while (end >= 0 && field(tail, end, 4) != endOfDirectorySignature)
            --end;
        if (end >= 0 || tailSize == fileSize)
            break;
    }
    if (end < 0) {
        error = "Not a zip archive";
        return false;
    }
    std::uint64_t count = field(tail, end + 10, 2);
    std::uint64_t directorySize = field(tail, end + 12, 4);
    std::uint64_t directoryOffset = field(tail, end + 16, 4);
    const qint64 endOffset = fileSize - tailSize + end;
    if (count == 0xFFFF || directorySize == 0xFFFFFFFF || directoryOffset == 0xFFFFFFFF) {
        QByteArray locator, record;
        if (endOffset < zip64LocatorSize
            || !readAt(file, std::uint64_t(endOffset - zip64LocatorSize), zip64LocatorSize, locator)
            || field(locator, 0, 4) != zip64LocatorSignature
            || !readAt(file, field(locator, 8, 8), zip64EndSize, record) || field(record, 0, 4) != zip64EndSignature) {
            error = "Zip64 end of central directory record is missing or damaged";
            return false;
        }
        count = field(record, 32, 8);
        directorySize = field(record, 40, 8);
        directoryOffset = field(record, 48, 8);
    }
    QByteArray directory;
    if (directorySize > std::uint64_t(fileSize) || directoryOffset > std::uint64_t(fileSize) - directorySize
        || count > directorySize / directoryHeaderSize + 1
        || !readAt(file, directoryOffset, qint64(directorySize), directory)) {
        error = "Central directory lies outside the file";
        return false;
    }
    if (!parseDirectory(directory, count, error)) {
        m_entries.clear();
        return false;
    }
    m_loaded = true;
    return true;
}

bool ZipEntryIndex::check(const std::string& path, std::string& error)
{
    ZipEntryIndex index;
    index.m_keepEntries = false;
    return index.load(path, error);
}

bool ZipEntryIndex::parseDirectory(const QByteArray& directory, std::uint64_t count, std::string& error)
{
    qsizetype at = 0;
    for (std::uint64_t i = 0; i < count; ++i) {
        if (directory.size() - at < directoryHeaderSize || field(directory, at, 4) != directoryHeaderSignature) {
            error = "Damaged central directory at entry " + std::to_string(i);
            return false;
        }
        Entry entry;
        entry.flags = std::uint16_t(field(directory, at + 8, 2));
        entry.method = std::uint16_t(field(directory, at + 10, 2));
        entry.crc = std::uint32_t(field(directory, at + 16, 4));
        entry.compressedSize = field(directory, at + 20, 4);
        entry.size = field(directory, at + 24, 4);
        entry.headerOffset = field(directory, at + 42, 4);
        const qsizetype nameLength = qsizetype(field(directory, at + 28, 2));
        const qsizetype extraLength = qsizetype(field(directory, at + 30, 2));
        const qsizetype commentLength = qsizetype(field(directory, at + 32, 2));
        const qsizetype nameAt = at + directoryHeaderSize;
        if (directory.size() - nameAt < nameLength + extraLength + commentLength) {
            error = "Damaged central directory at entry " + std::to_string(i);
            return false;
        }
        // Zip64 sizes and offset follow in the extra field, each only where
        // the header holds all ones.
        for (qsizetype extra = nameAt + nameLength; extra + 4 <= nameAt + nameLength + extraLength;) {
            const std::uint16_t id = std::uint16_t(field(directory, extra, 2));
            const qsizetype length = qsizetype(field(directory, extra + 2, 2));
            qsizetype value = extra + 4;
            const qsizetype valuesEnd = std::min(value + length, nameAt + nameLength + extraLength);
            if (id == zip64ExtraId) {
                for (std::uint64_t* target : {&entry.size, &entry.compressedSize, &entry.headerOffset}) {
                    if (*target != 0xFFFFFFFF)
                        continue;
                    if (value + 8 > valuesEnd) {
                        error = "Damaged zip64 field at entry " + std::to_string(i);
                        return false;
                    }
                    *target = field(directory, value, 8);
                    value += 8;
                }
            }
            extra += 4 + length;
        }
        if (m_keepEntries)
            m_entries.emplace(std::string(directory.constData() + nameAt, std::size_t(nameLength)), entry);
        at = nameAt + nameLength + extraLength + commentLength;
    }
    return true;
}

bool ZipEntryIndex::read(const std::string& path, const std::string& name, QByteArray& bytes,
                         std::string& error) const
{
    bytes.clear();
    const auto found = m_entries.find(name);
    if (found == m_entries.end()) {
        error = "No such file";
        return false;
    }
    if (!readable(found->second, error))
        return false;
    QFile file(QString::fromStdString(path));
    if (!openUnbuffered(file, error))
        return false;
    return decode(found->second,
                  [&](std::uint64_t offset, qint64 length, QByteArray& part) {
                      return readAt(file, offset, length, part);
                  },
                  bytes, error);
}

bool ZipEntryIndex::readsWhole(const std::string& path, std::string& error) const
{
    QFile file(QString::fromStdString(path));
    if (!openUnbuffered(file, error))
        return false;
    // One open and, for an archive of a usual size, one read: opening the
    // file again for each of a thousand icons costs ten times the checks.
    const qint64 size = file.size();
    QByteArray whole;
    const bool inMemory = size <= wholeReadLimit;
    if (inMemory && !readAt(file, 0, size, whole)) {
        error = "Can't read file: " + file.errorString().toStdString();
        return false;
    }
    const auto fetch = [&](std::uint64_t offset, qint64 length, QByteArray& part) {
        if (!inMemory)
            return readAt(file, offset, length, part);
        if (offset > std::uint64_t(whole.size()) || std::uint64_t(length) > std::uint64_t(whole.size()) - offset)
            return false;
        part = whole.mid(qsizetype(offset), qsizetype(length));
        return true;
    };
    // In the order of the file, so that the first damaged entry is named.
    std::vector<const std::pair<const std::string, Entry>*> entries;
    entries.reserve(m_entries.size());
    for (const auto& entry : m_entries)
        entries.push_back(&entry);
    std::sort(entries.begin(), entries.end(),
              [](const auto* a, const auto* b) { return a->second.headerOffset < b->second.headerOffset; });
    QByteArray bytes;
    for (const auto* entry : entries) {
        if (!readable(entry->second, error) || !decode(entry->second, fetch, bytes, error)) {
            error = "the entry " + entry->first + ": " + error;
            return false;
        }
    }
    return true;
}

bool ZipEntryIndex::readable(const Entry& entry, std::string& error)
{
    if (entry.flags & flagEncrypted) {
        error = "Encrypted entries are not read";
        return false;
    }
    if (entry.method != methodStored && entry.method != methodDeflated) {
        error = "Compression method " + std::to_string(entry.method) + " not supported";
        return false;
    }
    if (entry.size > std::uint64_t(std::numeric_limits<int>::max())
        || entry.compressedSize > std::uint64_t(std::numeric_limits<int>::max())) {
        error = "Entry too large";
        return false;
    }
    return true;
}

template<typename Fetch>
bool ZipEntryIndex::decode(const Entry& entry, const Fetch& fetch, QByteArray& bytes, std::string& error)
{
    bytes.clear();
    QByteArray header, data;
    if (!fetch(entry.headerOffset, localHeaderSize, header) || field(header, 0, 4) != localHeaderSignature) {
        error = "Damaged local header";
        return false;
    }
    const std::uint64_t dataOffset = entry.headerOffset + localHeaderSize + field(header, 26, 2) + field(header, 28, 2);
    if (!fetch(dataOffset, qint64(entry.compressedSize), data)) {
        error = "Entry data is cut short";
        return false;
    }
    QByteArray result;
    if (entry.method == methodStored) {
        if (entry.compressedSize != entry.size) {
            error = "Damaged stored entry";
            return false;
        }
        result = data;
    } else if (!inflateRaw(data, entry.size, result)) {
        error = "Compressed data is damaged";
        return false;
    }
    const uLong crc = crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef*>(result.constData()),
                            uInt(result.size()));
    if (crc != entry.crc) {
        error = "CRC error";
        return false;
    }
    bytes = result;
    return true;
}

} // namespace LibraryBrowser
