#pragma once

#include <vector>

namespace LibraryBrowser::SectionMoves {

// The keyboard moves of the results page, where the tiles stand in sections
// one below the other and a section may be hidden with its tiles kept. Each
// move takes the sections in display order, the selected tile and the
// columns, and gives the tile to select, or an invalid position when the
// move does nothing. None of them wraps, and hidden sections are passed over.

struct Section {
    int numTiles = 0;
    bool expanded = false;
};

struct Position {
    int section = -1;
    int tile = -1;
    bool isValid() const { return section >= 0 && tile >= 0; }
    bool operator==(const Position& o) const { return section == o.section && tile == o.tile; }
};

// The first tile of the first expanded section: where a move starts from
// when nothing is selected.
Position first(const std::vector<Section>& sections);
Position left(const std::vector<Section>& sections, Position from);
Position right(const std::vector<Section>& sections, Position from);
// Into the previous section the column is kept on its last row.
Position up(const std::vector<Section>& sections, Position from, int columns);
// Onto a shorter last row the last tile is taken; into the next section the
// column is kept on its first row.
Position down(const std::vector<Section>& sections, Position from, int columns);

} // namespace LibraryBrowser::SectionMoves
