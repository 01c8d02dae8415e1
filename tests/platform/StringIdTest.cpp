#include "platform/StringId.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace LibraryBrowser {
namespace {

std::string text(std::size_t i)
{
    return "StringIdTest/Product " + std::to_string(i % 97) + "/Block " + std::to_string(i);
}

// Interned while the pool grows in steps, and looked up again at every
// stage of the move from the old table to the new: a text gives its first id
// each time, and no text is stored twice.
TEST(StringIdTest, ATextKeepsItsIdWhileThePoolGrowsInSteps)
{
    const std::size_t before = StringId::internedCount();
    std::vector<StringId> ids;
    for (std::size_t i = 0; i < 200000; ++i) {
        ids.emplace_back(text(i));
        // The ids made earlier, some in each table, looked up among new ones.
        const std::size_t earlier = (i * 7919) % ids.size();
        ASSERT_EQ(StringId(text(earlier)), ids[earlier]) << text(earlier);
        if (i % 4096 == 0)
            for (std::size_t j = 0; j <= i; j += 61)
                ASSERT_EQ(StringId(text(j)), ids[j]) << text(j);
    }
    EXPECT_EQ(StringId::internedCount() - before, ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        ASSERT_EQ(ids[i].str(), text(i));
        ASSERT_EQ(StringId(text(i)), ids[i]);
    }
}

} // namespace
} // namespace LibraryBrowser
