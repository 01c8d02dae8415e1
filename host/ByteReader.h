#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace LibraryBrowser::Host {

// Reads what ByteWriter wrote. Every call is false, and stays false, once
// the bytes end too early or hold what no writer makes; a count can never
// promise more items than the bytes left could hold.
class ByteReader {
public:
    ByteReader(const char* data, std::size_t size) : m_data(data), m_left(size) {}
    explicit ByteReader(const QByteArray& bytes) : ByteReader(bytes.constData(), std::size_t(bytes.size())) {}

    bool number(std::uint64_t& value);
    bool signedNumber(std::int64_t& value);
    bool number(int& value);
    // A count of items that each take at least one byte.
    bool count(std::size_t& value);
    bool text(std::string& value);
    bool text(QString& value);
    bool text(QByteArray& value);
    bool texts(QStringList& values);
    bool texts(std::vector<std::string>& values);
    bool atEnd() const { return m_ok && m_left == 0; }

private:
    bool fail() { return m_ok = false; }
    template <typename Text>
    bool anyText(Text& value);
    template <typename List>
    bool anyTexts(List& values);

    const char* m_data;
    std::size_t m_left;
    bool m_ok = true;
};

} // namespace LibraryBrowser::Host
