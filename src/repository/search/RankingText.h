#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace LibraryBrowser::RankingText {

// Text as the ranking engine compares it: UTF-8, each character lower-cased
// and stripped of its accent on its own, so that a folded text has as many
// characters as the original and a character position means the same in both.
struct FoldedName {
    std::string lowered;
    // Byte offsets in `lowered` where a word starts: after a blank or a
    // punctuation mark, at a capital after a small letter ("PidController"),
    // at the last capital of a run before a small letter ("PIDController"),
    // and where letters turn into digits or back.
    std::vector<std::uint32_t> wordStarts;
    std::size_t characters = 0;
};

FoldedName foldName(std::string_view utf8);
std::string lowered(std::string_view utf8);
// The lower-cased words of a text: runs of letters and digits.
std::vector<std::string> words(std::string_view utf8);
// The character position of a byte offset of a UTF-8 text.
int characterIndex(std::string_view utf8, std::size_t byteOffset);
inline bool isContinuationByte(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

} // namespace LibraryBrowser::RankingText
