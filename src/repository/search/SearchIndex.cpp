#include "repository/search/SearchIndex.h"

#include "repository/search/SearchPattern.h"

#include <cstring>

namespace LibraryBrowser {

namespace {

constexpr char Magic[4] = {'T', 'D', 'S', 'I'};
constexpr std::uint8_t Version = 1;

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
    if (object.depth > deepest)
        return false;
    m_objects.push_back(std::move(object));
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
        putText(bytes, object.name);
        putText(bytes, object.description);
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
    // Each object takes at least 11 bytes: no count can reserve more than the
    // bytes could hold.
    index.m_objects.reserve(std::min<std::size_t>(count, std::size_t(bytes.size()) / 11));
    for (std::uint32_t i = 0; i < count; ++i) {
        Object object;
        std::uint32_t kind = 0;
        std::uint32_t depth = 0;
        if (!cursor.number(kind, 1) || !cursor.number(depth, 2) || !cursor.text(object.name)
            || !cursor.text(object.description)) {
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

SearchIndex::Hits SearchIndex::search(const std::string& pattern, SearchOptions::RegExp regExp,
                                      SearchOptions::WholeWord wholeWord, SearchOptions::MatchCase matchCase,
                                      bool descriptions, const std::string& productPath) const
{
    const SearchPattern compiled(pattern, regExp, wholeWord, matchCase);
    Hits hits;
    // The object at each depth above the current one: a hit's path is joined
    // from their names only when it is listed.
    std::vector<const Object*> above;
    std::string path;
    for (const Object& object : m_objects) {
        above.resize(object.depth);
        above.push_back(&object);
        const bool matched = ((object.kind & Block) && compiled.matches(object.name))
                             || (descriptions && (object.kind & HasDescription)
                                 && compiled.matches(object.description));
        if (!matched)
            continue;
        ++hits.matched;
        if (object.kind & Library) {
            ++hits.libraries;
            continue;
        }
        if (object.kind & SubSystem)
            ++hits.subsystems;
        else if (object.kind & Block)
            ++hits.blocks;
        else
            continue;
        path = productPath;
        for (const Object* step : above)
            path.append(1, '/').append(step->name);
        hits.paths.push_back(path);
        if (object.name.size() > hits.longestName.size())
            hits.longestName = object.name;
    }
    return hits;
}

} // namespace LibraryBrowser
