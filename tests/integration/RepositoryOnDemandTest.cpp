#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/XMLRepository.h"
#include "support/Files.h"

#include <algorithm>

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
    // Read again, nothing is generated a second time.
    sent.clear();
    auto again = open();
    EXPECT_EQ(again->getChildrenIterator(again->getTandrilObject("arithmetica")).size(), 4);
    EXPECT_TRUE(sent.empty());
}

// A product generated into the writable store, whose library the host can
// no longer read: an update tries again, keeps what the writable store holds
// and says why.
TEST_F(RepositoryOnDemandTest, AFailedUpdateKeepsTheWritableArchivesAndSaysWhy)
{
    shipStore();
    const std::string relative = "toolbox/wavecraft/wavecraft.tdlib.json";
    editRootFile(relative, "\"Sine Wave\"", "\"Sine Wave 2\"");
    {
        auto repository = open();
        ASSERT_TRUE(child(*repository, repository->getTandrilObject("wavecraft"), "Sources").isValid());
    }
    ASSERT_TRUE(writableHas("wavecraft"));
    const std::string writable = preferences() + "/td_library_browser_repos/wavecraft/lb_wavecraft_";
    std::map<std::string, QByteArray> archives;
    for (const char* kind : {"icons", "manifests"})
        archives[kind] = readFile(writable + kind + "_repos.rps");

    writeRootFile(relative, "{ \"format\": \"tandril-library\", broken");
    // Later than the edit, which may have been dated the same second.
    setModified(root() + "/" + relative, QDateTime::currentDateTime().addSecs(120));
    sent.clear();
    auto repository = open();
    // What the update command does: every product's store chosen now.
    for (TandrilObjectIterator it = repository->getProductsIterator(); it.isValidIterator(); it.next())
        repository->getChildrenIterator(it.current());
    // Tried again, with those that reference it (and fail with it).
    EXPECT_NE(std::find(sent.begin(), sent.end(), "pre Wavecraft Signals"), sent.end())
        << testing::PrintToString(sent);

    for (const auto& [kind, bytes] : archives)
        EXPECT_EQ(readFile(writable + kind + "_repos.rps"), bytes) << "the " << kind << " archive changed";
    // Read from the writable store: the shipped one has no "Sine Wave 2".
    const TandrilObject sources = child(*repository, repository->getTandrilObject("wavecraft"), "Sources");
    ASSERT_TRUE(sources.isValid());
    EXPECT_TRUE(child(*repository, sources, "Sine Wave 2").isValid());

    std::vector<std::string> why;
    for (const RepositoryReport::Issue& warning : repository->getRepositoryReport()->takeUniqueWarnings())
        if (warning.message.rfind("Product Wavecraft Signals was not generated again (", 0) == 0)
            why.push_back(warning.message);
    ASSERT_EQ(why.size(), 1u);
    EXPECT_NE(why.front().find("wavecraft.tdlib.json"), std::string::npos) << why.front();
    EXPECT_EQ(why.front().find('\n'), std::string::npos) << why.front();

    // Still out of date: the next update tries again.
    sent.clear();
    auto again = open();
    again->getChildrenIterator(again->getTandrilObject("wavecraft"));
    EXPECT_EQ(sent, (std::vector<std::string>{"pre Wavecraft Signals", "post Wavecraft Signals"}));
}
