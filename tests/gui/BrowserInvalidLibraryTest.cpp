// Roots unlike the example's: a product that the store can no longer
// resolve (its handle stands on the invalid placeholder) keeps its node in
// the tree, and the search walk passes it by; a root without "Tandril" shows
// its products in order, the first one opened, and opens sections only up to
// the limit of hits.

#include "PageTestSupport.h"

#include "gui/LibraryBlocksPage.h"
#include "gui/LibraryTreeView.h"
#include "gui/ResultsBlocksPage.h"
#include "gui/StandaloneBrowser.h"
#include "repository/TandrilObjectReferenceIterator.h"
#include "repository/xmlrepository/XMLRepository.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMainWindow>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

namespace LibraryBrowser::Testing {
namespace {

// The default stores, with one more product at the top that names nothing
// the store holds.
class RepositoryWithUnresolvedProduct : public XMLRepository {
public:
    TandrilObjectIterator getTopLevelIterator() override
    {
        TandrilObjectList products;
        for (TandrilObjectIterator it = XMLRepository::getTopLevelIterator(); it.isValidIterator(); it.next())
            products.push_back(it.current());
        products.push_back(getTandrilObject("Unresolved"));
        return TandrilObjectReferenceIterator::overList(getCache(), std::move(products));
    }
};

TEST(BrowserInvalidLibraryTest, AnUnresolvedProductHasANodeButIsNotSearched)
{
    ExampleRootSession session;
    auto repository = std::make_shared<RepositoryWithUnresolvedProduct>();
    repository->updateProducts();
    ASSERT_FALSE(repository->getTandrilObject("Unresolved").isValid());

    std::unique_ptr<StandaloneBrowser> window = StandaloneBrowser::create(repository);
    QStringList texts;
    QObject::connect(window->window()->statusBar(), &QStatusBar::messageChanged, window->window(),
                     [&texts](const QString& text) { texts.append(text); });
    window->showBrowser();

    QStringList topLevel;
    for (int i = 0; i < window->tree()->topLevelItemCount(); ++i)
        topLevel.append(window->tree()->topLevelItem(i)->text(0).trimmed());
    EXPECT_TRUE(topLevel.contains("InvalidLibrary") && topLevel.contains("Kinetics")) << topLevel.join(", ").toStdString();

    QLineEdit* edit = window->searchComboBox()->lineEdit();
    edit->setText("Delay");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(window->getResultsPageSectionNames(), (std::vector<std::string>{"Tandril", "Kinetics"}));
    EXPECT_TRUE(!texts.filter("Searching Kinetics").isEmpty() && texts.filter("InvalidLibrary").isEmpty())
        << texts.join(" | ").toStdString();
}

// Five products of forty plain blocks, "Block 0" to "Block 39" each, so
// that a pattern picks the same number of hits in every library: 29 each
// make 145, so the fifth section stays shut with no tile made and the status
// says so; opened by the user it is filled, and forgotten at the next search.
// (Which section opens in every other case is the opening rule's table.)
TEST(BrowserWithoutMainLibraryTest, TheProductsInOrderAndTheFirst144HitsOpenByThemselves)
{
    const std::unique_ptr<ExampleRootSession> session = ExampleRootSession::synthetic(5, 40);
    ASSERT_NE(session, nullptr);
    std::unique_ptr<StandaloneBrowser> window = StandaloneBrowser::create(session->repositoryPtr());
    QStringList texts;
    QObject::connect(window->window()->statusBar(), &QStatusBar::messageChanged, window->window(),
                     [&texts](const QString& text) { texts.append(text); });
    window->showBrowser();
    const std::vector<std::string> names = window->getSortedLibraryNames();
    ASSERT_EQ(names.size(), 5u);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()) && window->getCurrentTreeNode() == names.front());
    EXPECT_FALSE(window->libraryPage()->getBlocksDisplayPathNames().empty());

    window->setSearchOptions({true, false, false});
    window->searchForBlock("^Block ([0-9]|1[0-9]|2[0-8])$");
    ResultsBlocksPage& page = *window->resultsPage();
    ASSERT_EQ(page.getPageSectionNames(), names);
    const std::string fifth = names.back();
    for (const std::string& name : names)
        EXPECT_EQ(page.isResultsSectionVisibleGui(name), name != fifth) << name;
    EXPECT_EQ(page.getBlocksDisplayPathNames().size(), 116u);
    EXPECT_TRUE(page.getPageSectionBlocksDisplayPathNames(fifth).empty());
    EXPECT_FALSE(texts.filter(QRegularExpression(QString::fromStdString("    Hiding " + fifth + "$"))).isEmpty());

    EXPECT_TRUE(page.showResultsSectionByName(fifth) && page.isResultsSectionVisibleGui(fifth));
    EXPECT_EQ(std::make_pair(page.getPageSectionBlocksDisplayPathNames(fifth).size(), page.getBlocksDisplayPathNames().size()),
              std::make_pair(std::size_t(29), std::size_t(145)));
    window->searchForBlock("^Block ([0-9]|[12][0-9]|3[0-5])$");
    EXPECT_FALSE(page.isResultsSectionVisibleGui(fifth));
    EXPECT_TRUE(page.isResultsSectionVisibleGui(names[3]));
}

} // namespace
} // namespace LibraryBrowser::Testing
