#include "repository/search/SearchIndex.h"

#include <cstring>

namespace LibraryBrowser {

namespace {

constexpr char Magic[4] = {'T', 'D', 'S', 'I'};
constexpr std::uint8_t Version = 2;

void putNumber(QByteArray& bytes, std::uint32_t value, int size)
{
    for (int i = 0; i < size; ++i)
        bytes.append(char((value >> (8 * i)) & 0xff));
}

void putText(QByteArray& bytes, const std::string& text)
{
    putNumber(bytes, std::uint32_t(text.size()), 4);
    bytes.append(text.data(), qsizetype(text.size()));
}

// Reads little-endian numbers and texts, refusing to run past the end.
class Cursor {
public:
    explicit Cursor(const QByteArray& bytes) : m_data(bytes.constData()), m_left(std::size_t(bytes.size())) {}

    bool number(std::uint32_t& value, int size)
    {
        if (m_left < std::size_t(size))
            return false;
        value = 0;
        for (int i = 0; i < size; ++i)
            value |= std::uint32_t(std::uint8_t(m_data[i])) << (8 * i);
        skip(std::size_t(size));
        return true;
    }
    bool text(std::string& value)
    {
        std::uint32_t size = 0;
        if (!number(size, 4) || m_left < size)
            return false;
        value.assign(m_data, size);
        skip(size);
        return true;
    }
    bool bytes(const char* expected, std::size_t size)
    {
        if (m_left < size || std::memcmp(m_data, expected, size) != 0)
            return false;
        skip(size);
        return true;
    }
    bool atEnd() const { return m_left == 0; }

private:
    void skip(std::size_t size)
    {
        m_data += size;
        m_left -= size;
    }
    const char* m_data;
    std::size_t m_left;
};

} // namespace

bool SearchIndex::add(Object object)
{
    const int deepest = m_objects.empty() ? 0 : m_objects.back().depth + 1;
    if (object.depth > deepest || object.depth > MaximumDepth)
        return false;
    // The objects open at this depth or below end their subtrees here.
    const auto here = std::uint32_t(m_objects.size());
    while (!m_open.empty() && m_objects[m_open.back()].depth >= object.depth) {
        m_subtreeEnds[m_open.back()] = here;
        m_open.pop_back();
    }
    m_open.push_back(here);
    if (m_productEnd == m_objects.size() && !(object.depth == 0 && (object.kind & Dependency)))
        ++m_productEnd;
    m_objects.push_back(std::move(object));
    m_subtreeEnds.push_back(0);
    return true;
}

QByteArray SearchIndex::toBytes() const
{
    QByteArray bytes;
    bytes.append(Magic, sizeof Magic);
    bytes.append(char(Version));
    putNumber(bytes, std::uint32_t(m_objects.size()), 4);
    for (const Object& object : m_objects) {
        putNumber(bytes, object.kind, 1);
        putNumber(bytes, object.depth, 2);
        for (const std::string* text : {&object.name, &object.description, &object.key, &object.path, &object.target})
            putText(bytes, *text);
    }
    return bytes;
}

std::optional<SearchIndex> SearchIndex::fromBytes(const QByteArray& bytes, std::string& problem)
{
    Cursor cursor(bytes);
    const char version = char(Version);
    std::uint32_t count = 0;
    if (!cursor.bytes(Magic, sizeof Magic) || !cursor.bytes(&version, 1) || !cursor.number(count, 4)) {
        problem = "it is no search index of this version";
        return std::nullopt;
    }
    SearchIndex index;
    // Each object takes at least 23 bytes: no count can reserve more than the
    // bytes could hold.
    index.m_objects.reserve(std::min<std::size_t>(count, std::size_t(bytes.size()) / 23));
    for (std::uint32_t i = 0; i < count; ++i) {
        Object object;
        std::uint32_t kind = 0;
        std::uint32_t depth = 0;
        if (!cursor.number(kind, 1) || !cursor.number(depth, 2) || !cursor.text(object.name)
            || !cursor.text(object.description) || !cursor.text(object.key) || !cursor.text(object.path)
            || !cursor.text(object.target)) {
            problem = "it ends inside object " + std::to_string(i + 1) + " of " + std::to_string(count);
            return std::nullopt;
        }
        object.kind = std::uint8_t(kind);
        object.depth = std::uint16_t(depth);
        if (!index.add(std::move(object))) {
            problem = "object " + std::to_string(i + 1) + " lies deeper than any parent";
            return std::nullopt;
        }
    }
    if (!cursor.atEnd()) {
        problem = "bytes follow its last object";
        return std::nullopt;
    }
    return index;
}

std::size_t SearchIndex::subtreeEnd(std::size_t position) const
{
    // Zero while the object is still open: its subtree runs to the end.
    const std::uint32_t end = m_subtreeEnds[position];
    return end != 0 ? end : m_objects.size();
}

} // namespace LibraryBrowser
