#pragma once

#include "repository/Library.h"

#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

class BlocksPanel;
class GuiBlock;
class SectionHeader;

// One library's part of the results page: a header bar and a body of tiles.
// The widgets belong to the page's panel; the record to the page.
struct PageSection {
    // The tiles in display order; empty until the section was first expanded.
    std::vector<std::shared_ptr<GuiBlock>> blocks;
    // The library's display path: the section's key.
    std::string name;
    SectionHeader* header = nullptr;
    BlocksPanel* body = nullptr;
    Library library;
    int numBlocks = 0;
    int numSubsystems = 0;
    // Tiles made: 0 until expanded, -1 while the first expansion runs.
    int numTiles = 0;
    int minWidth = 0;
    int height = 0;
    bool expanded = false;

    int hits() const { return numBlocks + numSubsystems; }
};

} // namespace LibraryBrowser
