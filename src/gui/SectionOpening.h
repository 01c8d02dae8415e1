#pragma once

namespace LibraryBrowser {

// Which sections of a result open by themselves, taken in display order: the
// sections open until the tiles opened so far and the next section's hits
// would exceed the limit. From then on every section starts hidden, even a
// small one, unless the user opened it; a section kept hidden by name starts
// hidden in any case. This bounds the icons one search renders.
class SectionOpening {
public:
    explicit SectionOpening(int limit) : m_limit(limit) {}

    // Decides the next section; the caller reports what an open one made.
    bool startsOpen(int hits, bool hiddenByName, bool shownByUser);
    void opened(int tiles) { m_shown += tiles; }

    bool overflow() const { return m_overflow; }
    int shown() const { return m_shown; }

private:
    int m_limit;
    int m_shown = 0;
    bool m_overflow = false;
};

} // namespace LibraryBrowser
