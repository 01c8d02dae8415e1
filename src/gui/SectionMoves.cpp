#include "gui/SectionMoves.h"

#include <algorithm>

namespace LibraryBrowser::SectionMoves {

namespace {

int previousExpanded(const std::vector<Section>& sections, int from)
{
    for (int s = from - 1; s >= 0; --s)
        if (sections[s].expanded)
            return s;
    return -1;
}

int nextExpanded(const std::vector<Section>& sections, int from)
{
    for (int s = from + 1; s < int(sections.size()); ++s)
        if (sections[s].expanded)
            return s;
    return -1;
}

// A section that lost tiles to missing icons may have fewer than asked for.
Position checked(const std::vector<Section>& sections, int section, int tile)
{
    if (section < 0 || section >= int(sections.size()) || tile < 0 || tile >= sections[section].numTiles)
        return {};
    return {section, tile};
}

bool known(const std::vector<Section>& sections, Position from)
{
    return from.section >= 0 && from.section < int(sections.size()) && from.tile >= 0;
}

} // namespace

Position first(const std::vector<Section>& sections)
{
    return checked(sections, nextExpanded(sections, -1), 0);
}

Position left(const std::vector<Section>& sections, Position from)
{
    if (!known(sections, from))
        return first(sections);
    const Section& current = sections[from.section];
    const int j = from.tile - 1;
    if (j >= 0 && current.expanded)
        return checked(sections, from.section, j);
    const int previous = previousExpanded(sections, from.section);
    if (previous >= 0)
        return checked(sections, previous, sections[previous].numTiles - 1);
    return checked(sections, from.section, 0);
}

Position right(const std::vector<Section>& sections, Position from)
{
    if (!known(sections, from))
        return first(sections);
    const Section& current = sections[from.section];
    const int j = from.tile + 1;
    if (j < current.numTiles && current.expanded)
        return checked(sections, from.section, j);
    const int next = nextExpanded(sections, from.section);
    if (next >= 0)
        return checked(sections, next, 0);
    return checked(sections, from.section, current.numTiles - 1);
}

Position up(const std::vector<Section>& sections, Position from, int columns)
{
    if (!known(sections, from))
        return first(sections);
    const int cols = std::max(1, columns);
    const int i = from.tile;
    const int j = i - cols;
    if (j >= 0 && sections[from.section].expanded)
        return checked(sections, from.section, j);
    const int previous = previousExpanded(sections, from.section);
    if (previous < 0)
        return checked(sections, from.section, 0);
    const int last = sections[previous].numTiles - 1;
    return checked(sections, previous, std::min(i + cols * (last / cols), last));
}

Position down(const std::vector<Section>& sections, Position from, int columns)
{
    if (!known(sections, from))
        return first(sections);
    const int cols = std::max(1, columns);
    const Section& current = sections[from.section];
    const int i = from.tile;
    const int last = current.numTiles - 1;
    const int remainder = current.numTiles % cols;
    int j = i + cols;
    const bool onLastRow = i + (remainder != 0 ? remainder : cols) > last;
    if (j > last && !onLastRow)
        j = last;
    if (!onLastRow && current.expanded)
        return checked(sections, from.section, j);
    const int next = nextExpanded(sections, from.section);
    if (next >= 0)
        return checked(sections, next, std::min(i % cols, sections[next].numTiles - 1));
    return checked(sections, from.section, last);
}

} // namespace LibraryBrowser::SectionMoves
