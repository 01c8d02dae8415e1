// The rules the search over indexes shares with the depth-first walk, on
// indexes made by hand: a reference is entered once per search, a subsystem
// the search is inside of is stepped over, and display paths continue below
// each reference.

#include "repository/search/IndexedSearch.h"

#include <gtest/gtest.h>

#include <map>

namespace LibraryBrowser {
namespace {

using Paths = std::vector<std::string>;

SearchIndex::Object block(const std::string& name, int depth)
{
    return {name, "", name, "", "", std::uint16_t(depth), SearchIndex::Block};
}

SearchIndex::Object reference(const std::string& name, int depth, const std::string& path, const std::string& target)
{
    return {name, "", name, path, target, std::uint16_t(depth),
            SearchIndex::Block | SearchIndex::SubSystem | SearchIndex::Reference};
}

std::optional<IndexedSearch::Hits> search(const std::map<std::string, std::vector<SearchIndex::Object>>& products,
                                          const std::string& product)
{
    std::map<std::string, std::shared_ptr<const SearchIndex>> indexes;
    for (const auto& [id, objects] : products) {
        auto index = std::make_shared<SearchIndex>();
        for (const SearchIndex::Object& object : objects)
            EXPECT_TRUE(index->add(object));
        indexes[id] = index;
    }
    IndexedSearch indexed(".", SearchOptions::RegExpOn, SearchOptions::WholeWordOff, SearchOptions::MatchCaseOff,
                          false, [&](const std::string& id) {
                              const auto found = indexes.find(id);
                              return found == indexes.end() ? nullptr : found->second;
                          });
    return indexed.search(product, "P");
}

TEST(IndexedSearchTest, ReferencesAreEnteredOnceAndCyclesSteppedOver)
{
    std::map<std::string, std::vector<SearchIndex::Object>> products = {
        {"p",
         {{"A", "", "A", "p/A", "", 0, SearchIndex::Block | SearchIndex::SubSystem}, reference("R1", 1, "p/A/R1", "q"),
          reference("R2", 1, "p/A/R2", "q/Q"), reference("Self", 0, "p/Self", "p")}},
        {"q", {{"Q", "", "Q", "q/Q", "", 0, SearchIndex::Block | SearchIndex::SubSystem}, block("x", 1),
               reference("RQ", 1, "q/Q/RQ", "r")}},
        {"r", {block("y", 0)}}};
    const std::optional<IndexedSearch::Hits> hits = search(products, "p");
    ASSERT_TRUE(hits);
    // R2 leads into Q again, whose reference RQ was entered through R1.
    EXPECT_EQ(hits->paths, (Paths{"P/A", "P/A/R1", "P/A/R1/Q", "P/A/R1/Q/x", "P/A/R1/Q/RQ", "P/A/R1/Q/RQ/y",
                                  "P/A/R2", "P/A/R2/x", "P/A/R2/RQ", "P/Self", "P/Self/A", "P/Self/A/R1",
                                  "P/Self/A/R2"}));
    EXPECT_EQ(std::make_tuple(hits->blocks, hits->subsystems, hits->longestName), std::make_tuple(3, 10, std::string("Self")));

    // References that lead to each other show nothing, as their loading does.
    products["c"] = {reference("L1", 0, "c/L1", "c/L2"), reference("L2", 0, "c/L2", "c/L1")};
    ASSERT_TRUE(search(products, "c"));
    EXPECT_EQ(search(products, "c")->paths, (Paths{"P/L1", "P/L2"}));

    // A reference into a product without an index leaves the search to the walk.
    products.erase("r");
    EXPECT_FALSE(search(products, "p"));
}

} // namespace
} // namespace LibraryBrowser
