#include "platform/MessageService.h"

#include <cstdarg>
#include <cstdio>

namespace LibraryBrowser {

MessageService& MessageService::instance()
{
    static MessageService service;
    return service;
}

void MessageService::addPrimaryTable(const MessageTable& table)
{
    m_facilities[table.facility] = true;
    for (std::uint32_t i = 0; i < table.count; ++i)
        if (table.texts[i])
            m_texts[table.numbers[i]] = table.texts[i];
}

bool MessageService::hasTableFor(std::uint32_t facility) const
{
    return m_facilities.count(facility) != 0;
}

std::string MessageService::message(std::uint32_t number) const
{
    auto it = m_texts.find(number);
    return it == m_texts.end() ? std::string() : std::string(it->second);
}

bool MessageService::format(char* buffer, std::size_t size, std::uint32_t number, ...) const
{
    if (size == 0)
        return false;
    buffer[0] = '\0';
    auto it = m_texts.find(number);
    if (it == m_texts.end())
        return false;
    va_list args;
    va_start(args, number);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::vsnprintf(buffer, size, it->second, args);
#pragma GCC diagnostic pop
    va_end(args);
    return true;
}

} // namespace LibraryBrowser
