#include "frame/Messages.h"

#include "platform/MessageService.h"

namespace LibraryBrowser {

namespace {

template <class... Args>
std::string formatted(std::uint32_t id, Args... args)
{
    char buffer[Messages::BufferSize];
    MessageService::instance().format(buffer, sizeof buffer, id, args...);
    return std::string(buffer);
}

} // namespace

std::string Messages::xlatedMessageFromId(std::uint32_t id)
{
    return MessageService::instance().message(id);
}

std::string Messages::xlatedMessageFromIdAndCharStar(std::uint32_t id, const std::string& text)
{
    return formatted(id, text.c_str());
}

std::string Messages::xlatedMessageFromIdAndTwoCharStars(std::uint32_t id, const std::string& first,
                                                         const std::string& second)
{
    return formatted(id, first.c_str(), second.c_str());
}

std::string Messages::xlatedMessageFromIdAndCharStarAndTwoInts(std::uint32_t id, const std::string& text,
                                                                int first, int second)
{
    return formatted(id, text.c_str(), first, second);
}

std::string Messages::xlatedMessageFromIdAndCharStarAndThreeInts(std::uint32_t id, const std::string& text,
                                                                  int first, int second, int third)
{
    return formatted(id, text.c_str(), first, second, third);
}

std::string Messages::xlatedMessageFromIdAndCharStarAndThreeIntsAndCharStar(std::uint32_t id,
                                                                             const std::string& text,
                                                                             int first, int second, int third,
                                                                             const std::string& last)
{
    return formatted(id, text.c_str(), first, second, third, last.c_str());
}

} // namespace LibraryBrowser
