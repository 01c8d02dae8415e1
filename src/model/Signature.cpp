#include "model/Signature.h"

namespace LibraryBrowser {

Signature::Signature(std::uint32_t w0, std::uint32_t w1, std::uint32_t w2, std::uint32_t w3)
{
    const std::uint32_t words[4] = {w0, w1, w2, w3};
    for (int w = 0; w < 4; ++w)
        for (int b = 0; b < 4; ++b)
            m_bytes[w * 4 + b] = std::uint8_t(words[w] >> (24 - 8 * b));
}

const Signature& Signature::manifestSchema()
{
    static const Signature signature(0x82D9731A, 0xDDC98524, 0x506A2F8F, 0xD4EE71CA);
    return signature;
}

Signature Signature::fromString(const std::string& text)
{
    Signature s;
    if (text.size() != 32)
        return s;
    auto nibble = [](char c) -> int {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        return -1;
    };
    for (std::size_t i = 0; i < 16; ++i) {
        const int hi = nibble(text[2 * i]);
        const int lo = nibble(text[2 * i + 1]);
        if (hi < 0 || lo < 0)
            return Signature();
        s.m_bytes[i] = std::uint8_t(hi * 16 + lo);
    }
    return s;
}

std::string Signature::toString() const
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(32);
    for (std::uint8_t b : m_bytes) {
        text += digits[b >> 4];
        text += digits[b & 15];
    }
    return text;
}

bool Signature::isNull() const
{
    for (std::uint8_t b : m_bytes)
        if (b)
            return false;
    return true;
}

} // namespace LibraryBrowser
