#pragma once

namespace LibraryBrowser {

// Which sections of a result the results page makes in one turn of the event
// loop, so that a result of a thousand libraries never holds the loop for
// long. The first turn makes every section that may open (until the opening
// rule overflows, and through the last one the user opened by name), and at
// least a screenful, so that the page shows its tiles and takes its selection
// at once; every later turn makes a fixed number of hidden headers. A turn
// is told where it began and whether the opening rule has overflowed yet.
class SectionSlices {
public:
    // `lastShownByUser` is the index of the last section the user opened by
    // name, -1 when none.
    SectionSlices(int sections, int screenful, int perTurn, int lastShownByUser);

    // True while the turn that began at section `first` makes section `index`.
    bool makes(int first, int index, bool overflow) const;
    int sections() const { return m_sections; }

private:
    int m_sections;
    int m_screenful;
    int m_perTurn;
    int m_lastShownByUser;
};

} // namespace LibraryBrowser
