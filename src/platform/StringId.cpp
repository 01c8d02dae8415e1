#include "platform/StringId.h"

#include <unordered_set>

namespace LibraryBrowser {

namespace {
// Node-based set: element addresses never move, so they serve as the ids.
std::unordered_set<std::string>& pool()
{
    static std::unordered_set<std::string> strings{std::string()};
    return strings;
}
} // namespace

StringId::StringId(const std::string& text) : m_text(intern(text)) {}

StringId::StringId(const char* text) : m_text(intern(text ? std::string(text) : std::string())) {}

const std::string* StringId::intern(const std::string& text)
{
    return &*pool().insert(text).first;
}

const std::string* StringId::emptyText()
{
    static const std::string* empty = intern(std::string());
    return empty;
}

std::size_t StringId::internedCount()
{
    return pool().size();
}

} // namespace LibraryBrowser
