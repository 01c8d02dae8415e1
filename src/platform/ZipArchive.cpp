#include "platform/ZipArchive.h"

#include "platform/FileFaults.h"

#include <QFile>

#include <zip.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace LibraryBrowser {

struct ZipArchive::State {
    zip_t* archive = nullptr;
    // For an archive open for writing: libzip works on this in-memory copy
    // of the file, so close() can update the file in place (see close()).
    zip_source_t* source = nullptr;
    // What the file holds as far as this object knows: the bytes read at
    // open, then those written at close.
    QByteArray contents;
    // The file this object last wrote, for the reopen that follows.
    std::string writtenPath;
    std::string path;
    std::string error;

    ~State()
    {
        // An archive dropped without close() keeps its file as it was.
        discard();
    }

    void discard()
    {
        if (archive)
            zip_discard(archive);
        archive = nullptr;
        releaseSource();
    }

    void releaseSource()
    {
        if (source)
            zip_source_free(source);
        source = nullptr;
    }
};

namespace {

std::string zipErrorText(int code)
{
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    std::string text = zip_error_strerror(&error);
    zip_error_fini(&error);
    return text;
}

std::string zipErrorText(zip_error_t& error)
{
    std::string text = zip_error_strerror(&error);
    zip_error_fini(&error);
    return text;
}

// Opens an archive on an in-memory copy of `bytes`; `source` then holds a
// reference of the caller's to what libzip will write.
zip_t* openBytes(const QByteArray& bytes, int flags, zip_source_t*& source, std::string& error)
{
    // libzip gets a copy it owns: a buffer it only borrows is freed twice
    // when it writes the archive back over its unchanged first entries.
    const std::size_t size = std::size_t(bytes.size());
    void* copy = size ? std::malloc(size) : nullptr;
    if (size && !copy) {
        error = zipErrorText(ZIP_ER_MEMORY);
        return nullptr;
    }
    if (copy)
        std::memcpy(copy, bytes.constData(), size);
    zip_error_t reason;
    zip_error_init(&reason);
    zip_source_t* created = zip_source_buffer_create(copy, zip_uint64_t(size), 1, &reason);
    if (!created) {
        std::free(copy);
        error = zipErrorText(reason);
        return nullptr;
    }
    zip_t* archive = zip_open_from_source(created, flags, &reason);
    if (!archive) {
        zip_source_free(created);
        error = zipErrorText(reason);
        return nullptr;
    }
    zip_error_fini(&reason);
    zip_source_keep(created);
    source = created;
    return archive;
}

// All the bytes of a source that libzip has finished writing.
bool readSource(zip_source_t* source, QByteArray& bytes, std::string& error)
{
    zip_stat_t stat;
    if (zip_source_open(source) != 0) {
        zip_error_t* reason = zip_source_error(source);
        // An archive left without entries is removed, not written.
        if (zip_error_code_zip(reason) == ZIP_ER_DELETED) {
            bytes.clear();
            return true;
        }
        error = zip_error_strerror(reason);
        return false;
    }
    bool read = zip_source_stat(source, &stat) == 0 && (stat.valid & ZIP_STAT_SIZE);
    if (read) {
        bytes = QByteArray(qsizetype(stat.size), Qt::Uninitialized);
        read = zip_source_read(source, bytes.data(), stat.size) == zip_int64_t(stat.size);
    }
    if (!read)
        error = zip_error_strerror(zip_source_error(source));
    zip_source_close(source);
    return read;
}

// Brings the file at `path` from `before` to `after`, writing only from the
// first byte that differs. The file keeps its inode: replacing it with a new
// file at every close, as libzip does on its own, frees an inode each time,
// and on a file system without a journal every later file creation nearby
// walks past each recently freed inode. A file that is not the size expected
// is written whole.
bool writeInPlace(const std::string& path, const QByteArray& before, const QByteArray& after, std::string& error)
{
    QFile file(QString::fromStdString(path));
    if (after.isEmpty()) {
        // libzip writes no archive without entries; the file goes away.
        if (!file.exists() || file.remove())
            return true;
        error = file.errorString().toStdString();
        return false;
    }
    if (!file.open(QIODevice::ReadWrite)) {
        error = file.errorString().toStdString();
        return false;
    }
    qsizetype same = 0;
    if (file.size() == before.size()) {
        const qsizetype common = std::min(before.size(), after.size());
        same = std::mismatch(after.constData(), after.constData() + common, before.constData()).first
               - after.constData();
    }
    if (same == after.size() && after.size() == file.size())
        return true;
    const qint64 rest = after.size() - same;
    if (!file.seek(same) || file.write(after.constData() + same, rest) != rest || !file.resize(after.size())) {
        error = file.errorString().toStdString();
        return false;
    }
    return true;
}

} // namespace

ZipArchive::ZipArchive() : m_state(std::make_shared<State>()) {}

ZipArchive::~ZipArchive() = default;

bool ZipArchive::open(const std::string& path, OpenMode mode)
{
    if (m_state->archive)
        close();
    m_state->path = path;
    m_state->error.clear();
    if (mode == ReadOnly) {
        m_state->contents.clear();
        int code = 0;
        m_state->archive = zip_open(path.c_str(), ZIP_RDONLY, &code);
        if (!m_state->archive)
            m_state->error = zipErrorText(code);
        return m_state->archive != nullptr;
    }
    int flags = ZIP_CREATE | ZIP_TRUNCATE;
    if (mode == OpenExisting) {
        QFile file(QString::fromStdString(path));
        if (!file.exists()) {
            m_state->error = zipErrorText(ZIP_ER_NOENT);
            return false;
        }
        if (!file.open(QIODevice::ReadOnly)) {
            m_state->error = zipErrorText(ZIP_ER_OPEN) + ": " + file.errorString().toStdString();
            return false;
        }
        const QByteArray bytes = file.readAll();
        // Bytes exactly as this object's last close() wrote them came from
        // libzip itself: checking their consistency again would only repeat
        // the parse of every header.
        const bool ownOutput = !bytes.isEmpty() && path == m_state->writtenPath && bytes == m_state->contents;
        m_state->contents = bytes;
        flags = ownOutput ? 0 : ZIP_CHECKCONS;
    } else {
        m_state->contents.clear();
    }
    m_state->archive = openBytes(m_state->contents, flags, m_state->source, m_state->error);
    if (!m_state->archive)
        m_state->contents.clear();
    return m_state->archive != nullptr;
}

bool ZipArchive::isOpened() const
{
    return m_state->archive != nullptr;
}

bool ZipArchive::close()
{
    zip_t* archive = m_state->archive;
    if (!archive)
        return false;
    if (FileFaults::failNow(FileFaults::ArchiveClose, m_state->path)) {
        m_state->error = FileFaults::message();
        m_state->discard();
        return false;
    }
    if (zip_close(archive) != 0) {
        m_state->error = zip_strerror(archive);
        m_state->discard();
        return false;
    }
    m_state->archive = nullptr;
    if (!m_state->source)
        return true;
    QByteArray bytes;
    const bool written = readSource(m_state->source, bytes, m_state->error)
                         && writeInPlace(m_state->path, m_state->contents, bytes, m_state->error);
    m_state->releaseSource();
    m_state->contents = written ? bytes : QByteArray();
    m_state->writtenPath = written ? m_state->path : std::string();
    return written;
}

const std::string& ZipArchive::getArchiveFilePath() const
{
    return m_state->path;
}

const std::string& ZipArchive::errorString() const
{
    return m_state->error;
}

bool ZipArchive::exists(const std::string& name) const
{
    return find(name).isValid();
}

ZipArchive::Entry ZipArchive::find(const std::string& name) const
{
    if (!m_state->archive || name.empty())
        return Entry(-1);
    return Entry(zip_name_locate(m_state->archive, name.c_str(), ZIP_FL_ENC_RAW));
}

bool ZipArchive::read(const Entry& entry, QByteArray& bytes) const
{
    bytes.clear();
    if (!m_state->archive || !entry.isValid())
        return false;
    zip_stat_t stat;
    if (zip_stat_index(m_state->archive, zip_uint64_t(entry.index()), 0, &stat) != 0
        || !(stat.valid & ZIP_STAT_SIZE))
        return false;
    zip_file_t* file = zip_fopen_index(m_state->archive, zip_uint64_t(entry.index()), 0);
    if (!file)
        return false;
    // The size in the entry's header is only a claim: the buffer grows with
    // the bytes that actually come, so a header that claims gigabytes costs
    // nothing until they arrive, and an entry that holds more or less than
    // it claims is refused.
    constexpr zip_uint64_t chunk = 1 << 16;
    QByteArray data;
    data.reserve(qsizetype(std::min(stat.size, chunk)));
    bool ok = true;
    for (;;) {
        const zip_uint64_t have = zip_uint64_t(data.size());
        const zip_uint64_t want = have < stat.size ? std::min(chunk, stat.size - have) : 1;
        data.resize(qsizetype(have + want));
        const zip_int64_t read = zip_fread(file, data.data() + have, want);
        data.resize(qsizetype(have + zip_uint64_t(std::max<zip_int64_t>(read, 0))));
        if (read <= 0 || zip_uint64_t(data.size()) > stat.size) {
            ok = read == 0 && zip_uint64_t(data.size()) == stat.size;
            break;
        }
    }
    zip_fclose(file);
    if (!ok)
        return false;
    bytes = data;
    return true;
}

bool ZipArchive::add(const std::string& name, const QByteArray& bytes)
{
    if (!m_state->archive || name.empty())
        return false;
    // libzip reads the data only when the archive is written; give it a copy
    // it owns. An empty entry gets no buffer: libzip keeps no record of an
    // empty one and would never free it.
    const std::size_t size = std::size_t(bytes.size());
    void* copy = size ? std::malloc(size) : nullptr;
    if (size && !copy)
        return false;
    if (copy)
        std::memcpy(copy, bytes.constData(), size);
    zip_source_t* source = zip_source_buffer(m_state->archive, copy, zip_uint64_t(size), copy ? 1 : 0);
    if (!source) {
        std::free(copy);
        return false;
    }
    const zip_int64_t index = zip_file_add(m_state->archive, name.c_str(), source, ZIP_FL_OVERWRITE | ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        return false;
    }
    // A small entry is stored as it is. Deflating it would save a third of a
    // few hundred bytes, and cost a compressor set up and its code tables
    // built for each: for an icon, more than all the rest of writing it.
    // Larger ones are deflated at zlib's usual level rather than libzip's
    // highest, which takes more than twice as long on a product's manifests
    // to make them 2 % smaller. Where the level can't be set, libzip's stays.
    constexpr std::size_t StoredBelow = 1024;
    constexpr zip_uint32_t DeflateLevel = 6;
    if (size < StoredBelow)
        zip_set_file_compression(m_state->archive, zip_uint64_t(index), ZIP_CM_STORE, 0);
    else
        zip_set_file_compression(m_state->archive, zip_uint64_t(index), ZIP_CM_DEFLATE, DeflateLevel);
    return true;
}

bool ZipArchive::remove(const Entry& entry)
{
    return m_state->archive && entry.isValid() && zip_delete(m_state->archive, zip_uint64_t(entry.index())) == 0;
}

std::vector<std::string> ZipArchive::entryNames() const
{
    std::vector<std::string> names;
    if (!m_state->archive)
        return names;
    const zip_int64_t count = zip_get_num_entries(m_state->archive, 0);
    for (zip_int64_t i = 0; i < count; ++i)
        if (const char* name = zip_get_name(m_state->archive, zip_uint64_t(i), ZIP_FL_ENC_RAW))
            names.emplace_back(name);
    return names;
}

std::string ZipArchive::getName(const Entry& entry) const
{
    if (!m_state->archive || !entry.isValid())
        return std::string();
    const char* name = zip_get_name(m_state->archive, zip_uint64_t(entry.index()), ZIP_FL_ENC_RAW);
    return name ? std::string(name) : std::string();
}

bool ZipArchive::readEntry(const std::string& path, const std::string& name, QByteArray& bytes, std::string& error)
{
    ZipArchive archive;
    if (!archive.open(path, ReadOnly)) {
        error = archive.errorString();
        return false;
    }
    const Entry entry = archive.find(name);
    if (!entry.isValid()) {
        error = "no entry named " + name;
        return false;
    }
    if (!archive.read(entry, bytes)) {
        error = "the entry " + name + " cannot be read";
        return false;
    }
    return true;
}

} // namespace LibraryBrowser
