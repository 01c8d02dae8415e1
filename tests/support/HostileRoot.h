#pragma once

#include <string>

namespace LibraryBrowser::Testing {

// Library files that a careless or hostile author could ship, written below
// a root as a directory of their own with its tdblocks.json. Each returns
// the directory it wrote, relative to the root.

// Libraries fan0 .. fanK, each with one block "LevelI" and two references
// to the next ("Left", "Right"); fanK holds the block only. One product,
// "Fan Out", of library fan0. A walk that entered every reference at each
// place it meets it would see the last level 2^K times.
std::string writeFanOut(const std::string& root, int levels);
// The same with one reference ("Next") per library: libraries chain0 ..
// chainK, product "Chain" of library chain0.
std::string writeChain(const std::string& root, int levels);

// Palettes "Cycle 1" .. "Cycle N", each listing the next and the last the
// first and depending on their tdblocks.json, and a product "Cycle Member"
// (library cyclemember, one block "Orbit") listed by the first.
std::string writePaletteCycle(const std::string& root, int length);

// A product "Escape" (library escape, one block "Breakout") whose
// repository directory is the given text, e.g. "../../outside".
std::string writeEscapingProduct(const std::string& root, const std::string& repository);

} // namespace LibraryBrowser::Testing
