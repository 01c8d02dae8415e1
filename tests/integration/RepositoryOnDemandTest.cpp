#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/XMLRepository.h"
#include "support/Files.h"

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

// A repository on the root copy, whose shipped store the build would have
// made, and a writable store below the preferences.
class RepositoryOnDemandTest : public GenerationFixture {
protected:
    void shipStore()
    {
        XMLRepositoryWriter writer(shippedRepositoryDirectory(), report);
        writer.generateRepository();
    }

    XMLRepositoryPtr open()
    {
        auto repository = std::dynamic_pointer_cast<XMLRepository>(Repository::open());
        QObject::connect(repository.get(), &Repository::preGenerateProduct,
                         [this](const std::string& name) { sent.push_back("pre " + name); });
        QObject::connect(repository.get(), &Repository::postGenerateProduct,
                         [this](const std::string& path) { sent.push_back("post " + path); });
        return repository;
    }

    // The child of that name, read through the repository as the window does.
    static TandrilObject child(XMLRepository& repository, const TandrilObject& parent, const std::string& name)
    {
        for (TandrilObjectIterator it = repository.getChildrenIterator(parent); it.isValidIterator(); it.next())
            if (it.current().getName() == name)
                return it.current();
        return TandrilObject();
    }

    bool writableHas(const std::string& product) const
    {
        return exists(preferences() + "/td_library_browser_repos/" + product + "/lb_" + product +
                      "_manifests_repos.rps");
    }

    std::vector<std::string> sent;
};

} // namespace

// Made at the first open, the shipped store is then read as it is: nothing
// generated, nothing in the writable store.
TEST_F(RepositoryOnDemandTest, AMissingShippedStoreIsGeneratedAtOpenAndThenReadAsItIs)
{
    EXPECT_TRUE(open()->exists());
    EXPECT_TRUE(exists(shippedRepositoryDirectory() + "/wavecraft/lb_wavecraft_icons_repos.rps"));

    auto repository = open();
    EXPECT_EQ(repository->getChildrenIterator(repository->getTandrilObject("wavecraft")).size(), 3);
    const TandrilObject kinetics = repository->getTandrilObject("kinetics");
    EXPECT_EQ(repository->getChildrenIterator(kinetics).size(), 5);
    EXPECT_EQ(repository->getChildrenIterator(child(*repository, kinetics, "Continuous")).size(), 10);
    EXPECT_TRUE(sent.empty());
    EXPECT_FALSE(writableHas("kinetics"));
    EXPECT_FALSE(writableHas("wavecraft"));
    EXPECT_EQ(repository->shippedReader()->getVersion(), Model::createModel()->signature().toString());
}

TEST_F(RepositoryOnDemandTest, AChangedProductIsGeneratedBetweenTheTwoSignals)
{
    shipStore();
    editRootFile("toolbox/arithmetica/arithmetica.tdlib.json", "Adds or subtracts its inputs",
                 "Adds or subtracts, edited, its inputs");
    auto repository = open();
    const TandrilObject basic = child(*repository, repository->getTandrilObject("arithmetica"), "Basic Operations");
    ASSERT_TRUE(basic.isValid());
    EXPECT_EQ(sent, (std::vector<std::string>{"pre Arithmetica", "post Arithmetica"}));
    EXPECT_TRUE(writableHas("arithmetica"));
    EXPECT_FALSE(writableHas("kinetics"));

    // Read from the writable store, where the new text now is.
    const TandrilObject sum = child(*repository, basic, "Sum");
    ASSERT_TRUE(sum.isValid());
    EXPECT_EQ(sum.getDescription().rfind("Adds or subtracts, edited, its inputs", 0), 0u);
    EXPECT_TRUE(repository->getIcon(sum) != nullptr);
    // Read again, nothing is generated a second time.
    sent.clear();
    auto again = open();
    EXPECT_EQ(again->getChildrenIterator(again->getTandrilObject("arithmetica")).size(), 4);
    EXPECT_TRUE(sent.empty());
}
