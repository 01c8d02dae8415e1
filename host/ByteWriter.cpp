#include "ByteWriter.h"

namespace LibraryBrowser::Host {

void ByteWriter::number(std::uint64_t value)
{
    while (value >= 0x80) {
        m_bytes.append(char((value & 0x7f) | 0x80));
        value >>= 7;
    }
    m_bytes.append(char(value));
}

void ByteWriter::signedNumber(std::int64_t value)
{
    number((std::uint64_t(value) << 1) ^ std::uint64_t(value >> 63));
}

void ByteWriter::text(const std::string& value)
{
    number(value.size());
    m_bytes.append(value.data(), qsizetype(value.size()));
}

void ByteWriter::text(const QString& value)
{
    text(value.toUtf8());
}

void ByteWriter::text(const QByteArray& value)
{
    number(std::uint64_t(value.size()));
    m_bytes.append(value);
}

void ByteWriter::texts(const QStringList& values)
{
    number(std::uint64_t(values.size()));
    for (const QString& value : values)
        text(value);
}

void ByteWriter::texts(const std::vector<std::string>& values)
{
    number(values.size());
    for (const std::string& value : values)
        text(value);
}

} // namespace LibraryBrowser::Host
