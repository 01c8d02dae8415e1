#pragma once

namespace LibraryBrowser::Python {

// Counts a call under way for as long as it runs: how many are nested.
class ScopedCount {
public:
    explicit ScopedCount(int& count) : m_count(count) { ++m_count; }
    ~ScopedCount() { --m_count; }
    ScopedCount(const ScopedCount&) = delete;
    ScopedCount& operator=(const ScopedCount&) = delete;

private:
    int& m_count;
};

} // namespace LibraryBrowser::Python
