#pragma once

#include "platform/StringId.h"

#include <string>

namespace LibraryBrowser {

// Text that many objects hold alike, such as the names of a product's
// archives, which every block of the product carries: kept interned, so that
// each holder keeps a pointer and not a copy of its own. It reads and is
// assigned like a std::string.
class SharedText {
public:
    SharedText() = default;
    SharedText(const std::string& text) : m_id(text) {}
    SharedText(const char* text) : m_id(text) {}

    operator const std::string&() const { return m_id.str(); }
    const std::string& str() const { return m_id.str(); }
    const char* c_str() const { return m_id.c_str(); }
    bool empty() const { return m_id.isEmpty(); }
    std::size_t size() const { return m_id.str().size(); }

    bool operator==(const SharedText& other) const { return m_id == other.m_id; }
    bool operator!=(const SharedText& other) const { return m_id != other.m_id; }

private:
    StringId m_id;
};

inline std::string operator+(const std::string& left, const SharedText& right) { return left + right.str(); }
inline std::string operator+(const SharedText& left, const std::string& right) { return left.str() + right; }
inline std::string operator+(const char* left, const SharedText& right) { return left + right.str(); }
inline std::string operator+(const SharedText& left, const char* right) { return left.str() + right; }

} // namespace LibraryBrowser
