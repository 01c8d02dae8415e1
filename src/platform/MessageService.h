#pragma once

#include "platform/MessageTable.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

namespace LibraryBrowser {

// The process-wide message service: modules add their tables, callers look
// texts up by full number and format them printf-style into a bounded buffer.
class MessageService {
public:
    static MessageService& instance();

    // Adds every row of the table; a later table with the same numbers wins.
    void addPrimaryTable(const MessageTable& table);
    bool hasTableFor(std::uint32_t facility) const;

    // The text of a message, or the empty string for an unknown number.
    std::string message(std::uint32_t number) const;
    // Formats the message into `buffer` of `size` bytes, cutting the result at
    // size - 1 characters. Returns false for an unknown number (the buffer
    // then holds the empty string).
    bool format(char* buffer, std::size_t size, std::uint32_t number, ...) const;

private:
    std::unordered_map<std::uint32_t, const char*> m_texts;
    std::unordered_map<std::uint32_t, bool> m_facilities;
};

} // namespace LibraryBrowser
