#include "repository/xmlrepository/RecentIcons.h"

#include <gtest/gtest.h>

#include <vector>

namespace LibraryBrowser {
namespace {

// The last used icons are held up to the budget, though nobody else holds
// them; using one again makes the next the oldest, which a new icon pushes
// out. Empty and oversized icons are not held.
TEST(RecentIconsTest, HoldsTheLastUsedIconsUpToTheBudget)
{
    RecentIcons recent(300);
    recent.keep(nullptr);
    recent.keep(std::make_shared<BlockIcon>());
    const auto big = std::make_shared<BlockIcon>(QByteArray(301, 'h'));
    recent.keep(big);
    EXPECT_EQ(recent.count(), 0);
    EXPECT_EQ(big.use_count(), 1);

    std::vector<std::weak_ptr<BlockIcon>> seen;
    for (char fill : {'a', 'b', 'c'}) {
        const auto icon = std::make_shared<BlockIcon>(QByteArray(100, fill));
        recent.keep(icon);
        seen.push_back(icon);
    }
    EXPECT_EQ(recent.count(), 3);
    EXPECT_EQ(recent.bytes(), 300);
    recent.keep(seen[0].lock());
    recent.keep(std::make_shared<BlockIcon>(QByteArray(100, 'd')));
    EXPECT_FALSE(seen[0].expired());
    EXPECT_TRUE(seen[1].expired());
    EXPECT_FALSE(seen[2].expired());
    EXPECT_EQ(recent.bytes(), 300);
}

} // namespace
} // namespace LibraryBrowser
