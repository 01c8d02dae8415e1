#include "model/LoadContext.h"
#include "model/Model.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

// Ids of a document in every order and spread a hostile one may give: each
// names the node it was given first, a repeat is refused wherever the first
// one went, and references bind to the right nodes, null for ids never given.
TEST(LoadContextTest, EachIdNamesTheNodeItWasGivenFirstHoweverSpread)
{
    Model model;
    LoadContext context;
    const std::vector<unsigned> ids = {3, 1, 4000000000u, 2, 5000, 1500, 700, 2100, 3000};
    std::vector<Node*> nodes;
    for (unsigned id : ids) {
        nodes.push_back(model.createBlockImpl());
        ASSERT_TRUE(context.addNode(id, nodes.back())) << "id " << id;
    }
    // Far ids first, then enough nodes that the near ones after them count
    // as dense: a repeat of either kind is refused and changes nothing.
    for (unsigned id = 4; id < 2000; ++id) {
        if (id != 1500 && id != 700) {
            ASSERT_TRUE(context.addNode(id, model.createBlockImpl())) << "id " << id;
        }
    }
    for (unsigned id : ids)
        EXPECT_FALSE(context.addNode(id, model.createBlockImpl())) << "id " << id;
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_EQ(context.findNode(ids[i]), nodes[i]) << "id " << ids[i];
    EXPECT_EQ(context.findNode(4001), nullptr);
    EXPECT_EQ(context.findNode(0), nullptr);

    std::vector<Node*> bound;
    context.deferReference({5000, 0, 2, 4999, 4000000000u}, [&bound](const std::vector<Node*>& targets) {
        bound = targets;
    });
    context.bindReferences();
    EXPECT_EQ(bound, (std::vector<Node*>{nodes[4], nullptr, nodes[3], nullptr, nodes[2]}));
}

} // namespace
} // namespace LibraryBrowser
