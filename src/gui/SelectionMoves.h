#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser::SelectionMoves {

// Index arithmetic of the keyboard moves over tiles in display order. Each
// takes the selected index (-1 for none) and gives the index to select, or
// -1 when the move does nothing. None of them wraps.

int left(int index);
int right(int index, int count);
// With one column, all tiles in one row, or a list, down acts as right and
// up as left. The shorter last row isn't reached from a column to the right
// of its end.
int down(int index, int count, int columns, bool listLayout);
int up(int index, int count, int columns, bool listLayout);
int home(int index);
int end(int index, int count);
// The next tile after the selected one whose name starts with the key, upper
// case for a to z; the walk wraps and the selected tile comes last, so a
// repeated key cycles through the tiles of that initial.
int byInitial(int index, const std::vector<std::string>& names, char key);

} // namespace LibraryBrowser::SelectionMoves
