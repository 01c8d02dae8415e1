#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace LibraryBrowser {

// Appends one code point in UTF-8; the caller sees to it that it is one.
inline void appendUtf8(std::string& out, std::uint32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

// The length of the well-formed UTF-8 sequence of more than one byte at p,
// with its code point in `c`; 0 for anything else (an ASCII byte, a stray
// or missing continuation byte, an overlong form, a surrogate, a value past
// U+10FFFF). Every conforming decoder reads what this accepts alike.
inline std::size_t decodeUtf8(const char* p, const char* end, std::uint32_t& c)
{
    const auto b0 = static_cast<unsigned char>(p[0]);
    std::size_t length;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        length = 2;
        c = b0 & 0x1F;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        length = 3;
        c = b0 & 0x0F;
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        length = 4;
        c = b0 & 0x07;
    } else {
        return 0;
    }
    if (std::size_t(end - p) < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        const auto b = static_cast<unsigned char>(p[i]);
        if ((b & 0xC0) != 0x80)
            return 0;
        c = (c << 6) | (b & 0x3F);
    }
    static const std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (c < smallest[length] || (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF)
        return 0;
    return length;
}

} // namespace LibraryBrowser
