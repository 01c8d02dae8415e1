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

bool ByteReader::span(const char*& start, std::size_t& size)
{
    if (!count(size))
        return false;
    start = m_data;
    m_data += size;
    m_left -= size;
    return true;
}

bool ByteReader::text(std::string& value)
{
    const char* start = nullptr;
    std::size_t size = 0;
    if (!span(start, size))
        return false;
    value.assign(start, size);
    return true;
}

bool ByteReader::text(QString& value)
{
    const char* start = nullptr;
    std::size_t size = 0;
    if (!span(start, size))
        return false;
    value = QString::fromUtf8(start, qsizetype(size));
    return true;
}

bool ByteReader::text(QByteArray& value)
{
    const char* start = nullptr;
    std::size_t size = 0;
    if (!span(start, size))
        return false;
    value = QByteArray(start, qsizetype(size));
    return true;
}

bool ByteReader::texts(QStringList& values)
{
    std::size_t size = 0;
    if (!count(size))
        return false;
    values.clear();
    values.reserve(qsizetype(size));
    for (std::size_t i = 0; i < size; ++i) {
        values.append(QString());
        if (!text(values.back()))
            return false;
    }
    return true;
}

bool ByteReader::texts(std::vector<std::string>& values)
{
    std::size_t size = 0;
    if (!count(size))
        return false;
    values.assign(size, std::string());
    for (std::string& value : values)
        if (!text(value))
            return false;
    return true;
}

} // namespace LibraryBrowser::Host
