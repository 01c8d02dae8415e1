#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace LibraryBrowser {

// A 128-bit value that names a manifest schema. Written into every manifest
// and compared before a stored manifest is trusted; its text form is 32
// lower-case hexadecimal digits.
class Signature {
public:
    Signature() = default;
    Signature(std::uint32_t w0, std::uint32_t w1, std::uint32_t w2, std::uint32_t w3);

    // The signature of the current manifest schema. Change it whenever the
    // schema changes: old stores are then regenerated rather than misread.
    static const Signature& manifestSchema();

    // Null for text that is not 32 hexadecimal digits.
    static Signature fromString(const std::string& text);
    std::string toString() const;
    bool isNull() const;

    bool operator==(const Signature& o) const { return m_bytes == o.m_bytes; }
    bool operator!=(const Signature& o) const { return m_bytes != o.m_bytes; }

private:
    std::array<std::uint8_t, 16> m_bytes{};
};

} // namespace LibraryBrowser
