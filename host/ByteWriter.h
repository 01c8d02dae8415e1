#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <string>
#include <vector>

namespace LibraryBrowser::Host {

// Writes numbers and texts compactly for ByteReader: numbers in seven-bit
// groups, least significant first, texts as their UTF-8 length and bytes.
class ByteWriter {
public:
    void number(std::uint64_t value);
    // Small negative numbers stay small.
    void signedNumber(std::int64_t value);
    void text(const std::string& value);
    void text(const QString& value);
    void text(const QByteArray& value);
    void texts(const QStringList& values);
    void texts(const std::vector<std::string>& values);

    const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

} // namespace LibraryBrowser::Host
