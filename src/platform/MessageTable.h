#pragma once

#include <cstdint>

namespace LibraryBrowser {

// A module's primary message table: full message numbers (facility in the
// upper 16 bits, row in the lower), mnemonics and English texts, in row order.
struct MessageTable {
    std::uint32_t count;
    std::uint32_t facility;
    const std::uint32_t* numbers;
    const char* const* names;
    const char* const* texts;
    const char* extra;
};

} // namespace LibraryBrowser
