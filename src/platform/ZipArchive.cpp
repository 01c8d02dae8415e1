#include "platform/ZipArchive.h"

#include <zip.h>

#include <cstdlib>
#include <cstring>

namespace LibraryBrowser {

struct ZipArchive::State {
    zip_t* archive = nullptr;
    std::string path;
    std::string error;

    ~State()
    {
        // An archive dropped without close() keeps its file as it was.
        if (archive)
            zip_discard(archive);
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

} // namespace

ZipArchive::ZipArchive() : m_state(std::make_shared<State>()) {}

ZipArchive::~ZipArchive() = default;

bool ZipArchive::open(const std::string& path, OpenMode mode)
{
    if (m_state->archive)
        close();
    m_state->path = path;
    m_state->error.clear();
    int code = 0;
    int flags = ZIP_CHECKCONS;
    if (mode == CreateNew)
        flags = ZIP_CREATE | ZIP_TRUNCATE;
    else if (mode == ReadOnly)
        flags = ZIP_RDONLY;
    m_state->archive = zip_open(path.c_str(), flags, &code);
    if (!m_state->archive)
        m_state->error = zipErrorText(code);
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
    m_state->archive = nullptr;
    if (zip_close(archive) == 0)
        return true;
    m_state->error = zip_strerror(archive);
    zip_discard(archive);
    return false;
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
    QByteArray data(qsizetype(stat.size), Qt::Uninitialized);
    const zip_int64_t read = zip_fread(file, data.data(), stat.size);
    zip_fclose(file);
    if (read < 0 || zip_uint64_t(read) != stat.size)
        return false;
    bytes = data;
    return true;
}

bool ZipArchive::add(const std::string& name, const QByteArray& bytes)
{
    if (!m_state->archive || name.empty())
        return false;
    // libzip reads the data only when the archive is written; give it a copy it owns.
    void* copy = std::malloc(std::size_t(bytes.size()) + 1);
    if (!copy)
        return false;
    std::memcpy(copy, bytes.constData(), std::size_t(bytes.size()));
    zip_source_t* source = zip_source_buffer(m_state->archive, copy, zip_uint64_t(bytes.size()), 1);
    if (!source) {
        std::free(copy);
        return false;
    }
    if (zip_file_add(m_state->archive, name.c_str(), source, ZIP_FL_OVERWRITE | ZIP_FL_ENC_UTF_8) < 0) {
        zip_source_free(source);
        return false;
    }
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
