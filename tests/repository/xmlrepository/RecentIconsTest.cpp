#include "repository/xmlrepository/RecentIcons.h"

#include <gtest/gtest.h>

#include <vector>

namespace LibraryBrowser {
namespace {

BlockIconPtr iconOf(int bytes, char fill)
{
    return std::make_shared<BlockIcon>(QByteArray(bytes, fill));
}

TEST(RecentIconsTest, HoldsTheLastUsedIconsUpToTheBudget)
{
    RecentIcons recent(300);
    std::vector<std::weak_ptr<BlockIcon>> seen;
    for (char fill : {'a', 'b', 'c'}) {
        const BlockIconPtr icon = iconOf(100, fill);
        recent.keep(icon);
        seen.push_back(icon);
    }
    EXPECT_EQ(recent.count(), 3);
    EXPECT_EQ(recent.bytes(), 300);
    for (const auto& icon : seen)
        EXPECT_FALSE(icon.expired()) << "held though nobody else holds it";

    // Using "a" again makes "b" the oldest, which the next icon pushes out.
    recent.keep(seen[0].lock());
    const BlockIconPtr d = iconOf(100, 'd');
    recent.keep(d);
    EXPECT_FALSE(seen[0].expired());
    EXPECT_TRUE(seen[1].expired());
    EXPECT_FALSE(seen[2].expired());
    EXPECT_EQ(recent.bytes(), 300);
}

TEST(RecentIconsTest, EmptyAndOversizedIconsAreNotHeld)
{
    RecentIcons recent(300);
    recent.keep(nullptr);
    recent.keep(std::make_shared<BlockIcon>());
    const BlockIconPtr big = iconOf(301, 'h');
    recent.keep(big);
    EXPECT_EQ(recent.count(), 0);
    EXPECT_EQ(big.use_count(), 1);
}

} // namespace
} // namespace LibraryBrowser
