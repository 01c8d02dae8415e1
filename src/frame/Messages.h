#pragma once

#include <cstdint>
#include <string>

namespace LibraryBrowser {

// Message texts by full number, formatted. Every result is cut at 4095
// characters, the size of the host's formatting buffer less its terminator.
class Messages {
public:
    static constexpr std::size_t BufferSize = 4096;

    static std::string xlatedMessageFromId(std::uint32_t id);
    static std::string xlatedMessageFromIdAndCharStar(std::uint32_t id, const std::string& text);
    static std::string xlatedMessageFromIdAndTwoCharStars(std::uint32_t id, const std::string& first,
                                                          const std::string& second);
    static std::string xlatedMessageFromIdAndCharStarAndTwoInts(std::uint32_t id, const std::string& text,
                                                                int first, int second);
    static std::string xlatedMessageFromIdAndCharStarAndThreeInts(std::uint32_t id, const std::string& text,
                                                                  int first, int second, int third);
    static std::string xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(std::uint32_t id,
                                                                             const std::string& text, int first,
                                                                             int second, int third,
                                                                             const std::string& last);
};

} // namespace LibraryBrowser
