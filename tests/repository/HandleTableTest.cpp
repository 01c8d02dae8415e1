#include "repository/HandleTable.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace LibraryBrowser {
namespace {

// The table never looks behind its values: distinct addresses stand in for
// the handles.
class HandleTableTest : public ::testing::Test {
protected:
    HandleData* handle(std::size_t i) { return reinterpret_cast<HandleData*>(&m_handles[i]); }
    static StringId id(std::size_t i) { return StringId("HandleTableTest/Product/Block " + std::to_string(i)); }

    // Every id of `expected` finds its handle, no other id finds one, and
    // the walk over the table meets each handle once.
    void expectHolds(const HandleTable& table, const std::map<std::size_t, HandleData*>& expected, std::size_t ids)
    {
        ASSERT_EQ(table.size(), expected.size());
        for (std::size_t i = 0; i < ids; ++i) {
            const auto it = expected.find(i);
            ASSERT_EQ(table.find(id(i)), it == expected.end() ? nullptr : it->second) << "id " << i;
        }
        std::map<const HandleData*, int> met;
        table.forEach([&met](HandleData* data) { ++met[data]; });
        ASSERT_EQ(met.size(), expected.size());
        for (const auto& entry : met)
            ASSERT_EQ(entry.second, 1);
    }

private:
    std::vector<char> m_handles = std::vector<char>(100000);
};

// A table grown in steps while handles come and go, as a walk that releases
// products files and drops them: at every step, the old table still being
// emptied into the new one among them, each id finds its own handle, an
// erased one none, and erasing with another id's handle takes nothing out.
TEST_F(HandleTableTest, GrownInStepsWhileHandlesComeAndGoEveryHandleStaysFindable)
{
    constexpr std::size_t Ids = 20000;
    HandleTable table;
    std::map<std::size_t, HandleData*> expected;
    for (std::size_t i = 0; i < Ids; ++i) {
        HandleData*& entry = table.entry(id(i));
        ASSERT_EQ(entry, nullptr) << "a new id's entry is empty";
        entry = handle(i);
        expected[i] = handle(i);
        // Erasing an id with another's handle takes nothing out.
        table.erase(id(i / 3), handle(i / 3 + 1));
        // Now and then an id made earlier goes again, some while an old
        // table is still being moved over.
        if (i % 7 == 3) {
            const std::size_t gone = i - i % 3;
            table.erase(id(gone), handle(gone));
            expected.erase(gone);
        }
        // Ids already there keep their handle, wherever the table has them.
        if (i % 5 == 0 && i >= 10) {
            const std::size_t again = i / 2;
            const auto it = expected.find(again);
            ASSERT_EQ(table.entry(id(again)), it == expected.end() ? nullptr : it->second) << "id " << again;
            if (it == expected.end())
                table.erase(id(again), nullptr);
        }
        if (i % 997 == 0 || (i > 1000 && i < 1100))
            expectHolds(table, expected, i + 1);
    }
    expectHolds(table, expected, Ids);

    // Emptied in another order than filled, then filled again.
    for (std::size_t i = Ids; i-- > 0;) {
        table.erase(id(i), handle(i));
        expected.erase(i);
        if (i % 1999 == 0)
            expectHolds(table, expected, Ids);
    }
    EXPECT_EQ(table.size(), 0u);
    for (std::size_t i = 0; i < Ids; i += 2) {
        table.entry(id(i)) = handle(i);
        expected[i] = handle(i);
    }
    expectHolds(table, expected, Ids);
}

} // namespace
} // namespace LibraryBrowser
