// A root whose products include none named "Tandril": the tree is the
// products in order, the first one the root gives is opened, and the window
// works as with the main library.

#include "PageTestSupport.h"

#include "gui/LibraryBlocksPage.h"
#include "gui/StandaloneBrowser.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace LibraryBrowser::Testing {
namespace {

TEST(BrowserWithoutMainLibraryTest, TheTreeIsTheProductsInOrderAndTheWindowWorks)
{
    const std::unique_ptr<ExampleRootSession> session = ExampleRootSession::synthetic(3, 4);
    ASSERT_NE(session, nullptr);

    std::unique_ptr<StandaloneBrowser> window = StandaloneBrowser::create(session->repositoryPtr());
    window->showBrowser();
    const std::vector<std::string> names = window->getSortedLibraryNames();
    ASSERT_EQ(names.size(), 3u);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::count(names.begin(), names.end(), "Tandril"), 0);
    ASSERT_FALSE(window->getCurrentTreeNode().empty());
    EXPECT_FALSE(window->libraryPage()->getBlocksDisplayPathNames().empty());
    window->selectTreeNodeByName(names.back());
    EXPECT_EQ(window->getCurrentTreeNode(), names.back());
    window->searchForBlock("Block");
    EXPECT_EQ(window->getResultsPageSectionNames().size(), 3u);
}

} // namespace
} // namespace LibraryBrowser::Testing
