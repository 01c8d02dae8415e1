// A root whose products include none named "Tandril": the tree is the
// products in order, the first one the root gives is opened, and the window
// works as with the main library.

#include "PageTestSupport.h"

#include "SyntheticRootGenerator.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/StandaloneBrowser.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace LibraryBrowser::Testing {
namespace {

TEST(BrowserWithoutMainLibraryTest, TheTreeIsTheProductsInOrderAndTheWindowWorks)
{
    Host::SyntheticRootGenerator::Settings settings;
    settings.products = 3;
    settings.blocksPerProduct = 4;
    settings.depth = 1;
    settings.crossReferences = false;
    settings.referenceShare = 0;
    QTemporaryDir source;
    QString error;
    ASSERT_TRUE(Host::SyntheticRootGenerator(settings).write(source.path(), error)) << error.toStdString();
    ExampleRootSession session(source.path());

    std::unique_ptr<StandaloneBrowser> window = StandaloneBrowser::create(session.repositoryPtr());
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
