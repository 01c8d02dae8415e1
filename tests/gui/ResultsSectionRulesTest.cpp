#include "gui/SearchResults.h"
#include "gui/SectionMoves.h"
#include "gui/SectionOpening.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

using namespace LibraryBrowser;

namespace {

struct OpeningCase {
    const char* what;
    std::vector<int> hits;
    std::set<int> hiddenByName;
    std::set<int> shownByUser;
    std::vector<bool> open;
};

std::vector<bool> openings(const OpeningCase& c)
{
    SectionOpening opening(SearchResults::maxHitsShown);
    std::vector<bool> open;
    for (std::size_t i = 0; i < c.hits.size(); ++i) {
        const bool starts = opening.startsOpen(c.hits[i], c.hiddenByName.count(int(i)) > 0,
                                               c.shownByUser.count(int(i)) > 0);
        if (starts)
            opening.opened(c.hits[i]);
        open.push_back(starts);
    }
    return open;
}

} // namespace

TEST(ResultsSectionRulesTest, SectionsOpenWithinTheLimitAndNotAfterTheFirstOverflow)
{
    const std::vector<OpeningCase> cases{
        {"exactly 144 opens all", {100, 44}, {}, {}, {true, true}},
        {"one more starts the overflow", {100, 45}, {}, {}, {true, false}},
        {"after the overflow even a small one stays shut", {100, 45, 1}, {}, {}, {true, false, false}},
        {"a first section over the limit alone stays shut", {145, 1}, {}, {}, {false, false}},
        {"hidden by name stays shut and opens nothing", {10, 140, 4}, {0}, {}, {false, true, true}},
        {"hidden by name still counts towards the overflow", {100, 50, 4}, {1}, {}, {true, false, false}},
        {"the user's choice opens past the limit", {140, 10, 5}, {}, {1}, {true, true, false}},
        {"hidden by name wins over the user's choice", {10, 10}, {1}, {1}, {true, false}},
        {"no hits, no overflow", {0, 144, 0}, {}, {}, {true, true, true}},
    };
    for (const OpeningCase& c : cases)
        EXPECT_EQ(openings(c), c.open) << c.what;
}

TEST(ResultsSectionRulesTest, MovesAcrossSections)
{
    using namespace SectionMoves;
    // Three columns: 7 tiles (rows of 3, 3, 1), a hidden one of 4 with its
    // tiles kept, 5 tiles (3, 2), and a last of 2.
    const std::vector<Section> sections{{7, true}, {4, false}, {5, true}, {2, true}};
    using Move = Position (*)(const std::vector<Section>&, Position, int);
    const Move left = [](const std::vector<Section>& s, Position p, int) { return SectionMoves::left(s, p); };
    const Move right = [](const std::vector<Section>& s, Position p, int) { return SectionMoves::right(s, p); };
    const std::vector<std::tuple<const char*, Move, Position, Position>> cases{
        {"left from the first tile to the previous section's last", left, {2, 0}, {0, 6}},
        {"left at the very first tile stays", left, {0, 0}, {0, 0}},
        {"left from a hidden section's tile", left, {1, 2}, {0, 6}},
        {"right within, across a row end", right, {0, 2}, {0, 3}},
        {"right from the last tile to the next shown section", right, {0, 6}, {2, 0}},
        {"right at the very last tile stays", right, {3, 1}, {3, 1}},
        {"right from a hidden section's tile", right, {1, 0}, {2, 0}},
        {"down within", &down, {0, 1}, {0, 4}},
        {"down onto a shorter last row takes the last tile", &down, {0, 5}, {0, 6}},
        {"down from the last row keeps the column", &down, {2, 4}, {3, 1}},
        {"down keeps the column within the next section", &down, {2, 3}, {3, 0}},
        {"down passes over the hidden section", &down, {0, 6}, {2, 0}},
        {"down on the last row of the last section takes its last tile", &down, {3, 0}, {3, 1}},
        {"up into the previous section keeps the column on its last row", &up, {2, 0}, {0, 6}},
        {"up beyond the short last row takes the last tile", &up, {2, 2}, {0, 6}},
        {"up from the first row of the first section takes tile 0", &up, {0, 2}, {0, 0}},
        {"up into a full last row", &up, {3, 1}, {2, 4}},
        {"nothing selected starts at the first shown tile", &down, {}, {0, 0}},
    };
    for (const auto& [what, move, from, to] : cases)
        EXPECT_EQ(move(sections, from, 3), to) << what;

    // A shown section without tiles, nothing shown, and a shown one after a hidden one.
    EXPECT_EQ((std::vector<Position>{first({{3, false}, {0, true}}), first({{3, false}}), first({{3, false}, {2, true}})}),
              (std::vector<Position>{{}, {}, {1, 0}}));
}
