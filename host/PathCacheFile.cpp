#include "PathCacheFile.h"

#include "ByteReader.h"
#include "ByteWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LibraryBrowser::Host {

namespace {

constexpr char magic[4] = {'T', 'D', 'H', 'P'};
constexpr std::size_t headerSize = sizeof magic + 1 + 8;
// Far above what a root of millions of blocks needs: a bigger file is no
// file of ours.
constexpr std::int64_t largest = std::int64_t(1) << 30;

// FNV-1a over eight bytes at a time, then the rest: enough to tell a
// damaged file, at a fraction of the cost of reading it.
// A copy older than this is no other process's write in progress, which
// takes milliseconds, but what a process killed before its rename left.
constexpr std::int64_t leftOverAge = 600;

void removeLeftOverCopies(const QString& path)
{
    const QFileInfo file(path);
    const std::int64_t before = std::int64_t(std::time(nullptr)) - leftOverAge;
    const QString pattern = file.fileName() + QStringLiteral(".??????");
    for (const QFileInfo& copy : file.dir().entryInfoList({pattern}, QDir::Files | QDir::Hidden | QDir::System)) {
        struct stat status {};
        if (::lstat(QFile::encodeName(copy.filePath()).constData(), &status) == 0 && S_ISREG(status.st_mode)
            && std::int64_t(status.st_mtim.tv_sec) < before)
            ::unlink(QFile::encodeName(copy.filePath()).constData());
    }
}

std::uint64_t checksum(const char* data, std::size_t size)
{
    constexpr std::uint64_t prime = 0x100000001b3ull;
    std::uint64_t hash = 0xcbf29ce484222325ull ^ size;
    std::size_t i = 0;
    for (; i + 8 <= size; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, data + i, 8);
        hash = (hash ^ word) * prime;
        hash ^= hash >> 29;
    }
    for (; i < size; ++i)
        hash = (hash ^ std::uint8_t(data[i])) * prime;
    return hash;
}

bool readWhole(const QByteArray& path, QByteArray& bytes)
{
    const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status;
    bool ok = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size < largest;
    if (ok) {
        bytes.resize(qsizetype(status.st_size));
        std::size_t done = 0;
        while (ok && done < std::size_t(bytes.size())) {
            const ssize_t got = ::read(descriptor, bytes.data() + done, std::size_t(bytes.size()) - done);
            if (got > 0)
                done += std::size_t(got);
            else if (got == 0 || errno != EINTR)
                ok = false;
        }
    }
    ::close(descriptor);
    return ok;
}

bool writeWhole(int descriptor, const QByteArray& bytes)
{
    std::size_t done = 0;
    while (done < std::size_t(bytes.size())) {
        const ssize_t put = ::write(descriptor, bytes.constData() + done, std::size_t(bytes.size()) - done);
        if (put > 0)
            done += std::size_t(put);
        else if (put == 0 || errno != EINTR)
            return false;
    }
    return true;
}

} // namespace

PathCacheFile::PathCacheFile(const QString& preferencesDirectory, const QString& root) : m_root(root)
{
    if (preferencesDirectory.isEmpty())
        return;
    m_path = preferencesDirectory + QLatin1Char('/') + QLatin1String(fileName);
    load();
}

std::int64_t PathCacheFile::now()
{
    struct timespec time;
    ::clock_gettime(CLOCK_REALTIME, &time);
    return std::int64_t(time.tv_sec) * 1000000000 + time.tv_nsec;
}

void PathCacheFile::load()
{
    QByteArray bytes;
    if (!readWhole(QFile::encodeName(m_path), bytes) || std::size_t(bytes.size()) < headerSize
        || std::memcmp(bytes.constData(), magic, sizeof magic) != 0 || std::uint8_t(bytes[4]) != version)
        return;
    std::uint64_t expected = 0;
    for (int i = 0; i < 8; ++i)
        expected |= std::uint64_t(std::uint8_t(bytes[5 + i])) << (8 * i);
    const char* payload = bytes.constData() + headerSize;
    const std::size_t size = std::size_t(bytes.size()) - headerSize;
    if (checksum(payload, size) != expected)
        return;
    ByteReader in(payload, size);
    QString root;
    std::array<QByteArray, SectionCount> sections;
    if (!in.text(root) || root != m_root)
        return;
    for (QByteArray& section : sections)
        if (!in.text(section))
            return;
    if (in.atEnd())
        m_sections = std::move(sections);
}

QByteArray PathCacheFile::serialize() const
{
    ByteWriter payload;
    payload.text(m_root);
    for (const QByteArray& section : m_sections)
        payload.text(section);
    QByteArray bytes(magic, sizeof magic);
    bytes.append(char(version));
    const std::uint64_t sum = checksum(payload.bytes().constData(), std::size_t(payload.bytes().size()));
    for (int i = 0; i < 8; ++i)
        bytes.append(char((sum >> (8 * i)) & 0xff));
    bytes.append(payload.bytes());
    return bytes;
}

void PathCacheFile::store(Section which, const QByteArray& bytes)
{
    m_sections[which] = bytes;
    if (m_path.isEmpty())
        return;
    // The six letters mkostemp replaces by a name of its own.
    QByteArray temporary = QFile::encodeName(m_path) + '.' + QByteArray(6, 'X');
    const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0)
        return;
    const bool written = writeWhole(descriptor, serialize());
    if (::close(descriptor) != 0 || !written || ::rename(temporary.constData(), QFile::encodeName(m_path).constData()) != 0) {
        ::unlink(temporary.constData());
        return;
    }
    if (!m_leftOversRemoved) {
        m_leftOversRemoved = true;
        removeLeftOverCopies(m_path);
    }
}

} // namespace LibraryBrowser::Host
