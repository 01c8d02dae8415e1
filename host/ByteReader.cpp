#include "ByteReader.h"

#include <limits>

namespace LibraryBrowser::Host {

bool ByteReader::number(std::uint64_t& value)
{
    value = 0;
    for (int shift = 0; m_ok && m_left > 0 && shift < 64; shift += 7) {
        const auto byte = std::uint8_t(*m_data++);
        --m_left;
        value |= std::uint64_t(byte & 0x7f) << shift;
        if (!(byte & 0x80))
            return true;
    }
    return fail();
}

bool ByteReader::signedNumber(std::int64_t& value)
{
    std::uint64_t raw = 0;
    if (!number(raw))
        return false;
    value = std::int64_t(raw >> 1) ^ -std::int64_t(raw & 1);
    return true;
}

bool ByteReader::number(int& value)
{
    std::int64_t raw = 0;
    if (!signedNumber(raw) || raw < std::numeric_limits<int>::min() || raw > std::numeric_limits<int>::max())
        return fail();
    value = int(raw);
    return true;
}

bool ByteReader::count(std::size_t& value)
{
    std::uint64_t raw = 0;
    if (!number(raw) || raw > m_left)
        return fail();
    value = std::size_t(raw);
    return true;
}

namespace {
void assign(std::string& value, const char* data, std::size_t size)
{
    value.assign(data, size);
}
void assign(QString& value, const char* data, std::size_t size)
{
    value = QString::fromUtf8(data, qsizetype(size));
}
void assign(QByteArray& value, const char* data, std::size_t size)
{
    value = QByteArray(data, qsizetype(size));
}
} // namespace

template <typename Text>
bool ByteReader::anyText(Text& value)
{
    std::size_t size = 0;
    if (!count(size))
        return false;
    assign(value, m_data, size);
    m_data += size;
    m_left -= size;
    return true;
}

template <typename List>
bool ByteReader::anyTexts(List& values)
{
    std::size_t size = 0;
    if (!count(size))
        return false;
    values.clear();
    values.resize(decltype(values.size())(size));
    for (auto& value : values)
        if (!anyText(value))
            return false;
    return true;
}

bool ByteReader::text(std::string& value)
{
    return anyText(value);
}

bool ByteReader::text(QString& value)
{
    return anyText(value);
}

bool ByteReader::text(QByteArray& value)
{
    return anyText(value);
}

bool ByteReader::texts(QStringList& values)
{
    return anyTexts(values);
}

bool ByteReader::texts(std::vector<std::string>& values)
{
    return anyTexts(values);
}

} // namespace LibraryBrowser::Host
