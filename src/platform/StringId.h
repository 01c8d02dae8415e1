#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace LibraryBrowser {

// An interned string: equal text always gives the identical id, so ids
// compare and hash by address. Used for property names, type names and
// object ids, where the same few strings are compared millions of times.
// Interning happens on the host's main thread only.
class StringId {
public:
    StringId() = default;
    explicit StringId(const std::string& text);
    explicit StringId(const char* text);

    const std::string& str() const { return *m_text; }
    const char* c_str() const { return m_text->c_str(); }
    bool isEmpty() const { return m_text->empty(); }

    bool operator==(const StringId& other) const { return m_text == other.m_text; }
    bool operator!=(const StringId& other) const { return m_text != other.m_text; }
    // Ordering by address is stable for the life of the process, which is all
    // that ordered containers need.
    bool operator<(const StringId& other) const { return m_text < other.m_text; }

    std::size_t hash() const { return std::hash<const void*>()(m_text); }

    // Number of distinct strings interned so far.
    static std::size_t internedCount();

private:
    static const std::string* intern(const std::string& text);
    static const std::string* emptyText();

    const std::string* m_text = emptyText();
};

inline std::size_t qHash(const StringId& id, std::size_t seed = 0) { return id.hash() ^ seed; }

} // namespace LibraryBrowser

template <>
struct std::hash<LibraryBrowser::StringId> {
    std::size_t operator()(const LibraryBrowser::StringId& id) const { return id.hash(); }
};
