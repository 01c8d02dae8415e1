#include "GenerationFixture.h"

#include "repository/TandrilObjectIterator.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/XMLRepository.h"
#include "support/Files.h"

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

// A repository on the root copy, with the shipped store at its place and a
// writable store below the preferences.
class RepositoryOnDemandTest : public GenerationFixture {
protected:
    XMLRepositoryPtr open()
    {
        sent.clear();
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

    std::string writableArchive(const std::string& product, const char* kind) const
    {
        return preferences() + "/td_library_browser_repos/" + product + "/lb_" + product + "_" + kind + "_repos.rps";
    }

    std::vector<std::string> sent;
};

} // namespace

// Made at the first open, the shipped store is then read as it is. A changed
// product is generated into the writable store between the two signals, once.
// When the host can no longer read it, an update tries again, keeps what the
// writable store holds and says why, and the next update tries again.
TEST_F(RepositoryOnDemandTest, ShippedStoreMadeAtOpenThenChangedProductsGeneratedOnDemand)
{
    EXPECT_TRUE(open()->exists());
    EXPECT_TRUE(exists(shippedRepositoryDirectory() + "/wavecraft/lb_wavecraft_icons_repos.rps"));
    auto repository = open();
    EXPECT_EQ(repository->getChildrenIterator(repository->getTandrilObject("wavecraft")).size(), 3);
    const TandrilObject kinetics = repository->getTandrilObject("kinetics");
    EXPECT_EQ(repository->getChildrenIterator(kinetics).size(), 5);
    EXPECT_EQ(repository->getChildrenIterator(child(*repository, kinetics, "Continuous")).size(), 10);
    EXPECT_TRUE(sent.empty());
    EXPECT_FALSE(exists(writableArchive("kinetics", "manifests")));

    editRootFile("toolbox/arithmetica/arithmetica.tdlib.json", "Adds or subtracts its inputs",
                 "Adds or subtracts, edited, its inputs");
    repository = open();
    const TandrilObject basic = child(*repository, repository->getTandrilObject("arithmetica"), "Basic Operations");
    ASSERT_TRUE(basic.isValid());
    EXPECT_EQ(sent, (std::vector<std::string>{"pre Arithmetica", "post Arithmetica"}));
    EXPECT_TRUE(exists(writableArchive("arithmetica", "manifests")));
    EXPECT_FALSE(exists(writableArchive("kinetics", "manifests")));
    EXPECT_EQ(child(*repository, basic, "Sum").getDescription().rfind("Adds or subtracts, edited, its inputs", 0), 0u);
    repository = open();
    EXPECT_EQ(repository->getChildrenIterator(repository->getTandrilObject("arithmetica")).size(), 4);
    EXPECT_TRUE(sent.empty());

    const std::string relative = "toolbox/wavecraft/wavecraft.tdlib.json";
    editRootFile(relative, "\"Sine Wave\"", "\"Sine Wave 2\"");
    repository = open();
    ASSERT_TRUE(child(*repository, repository->getTandrilObject("wavecraft"), "Sources").isValid());
    std::map<std::string, QByteArray> archives;
    for (const char* kind : {"icons", "manifests"})
        archives[kind] = readFile(writableArchive("wavecraft", kind));
    ASSERT_FALSE(archives["manifests"].isEmpty());

    writeRootFile(relative, "{ \"format\": \"tandril-library\", broken");
    // Later than the edit, which may have been dated the same second.
    setModified(root() + "/" + relative, QDateTime::currentDateTime().addSecs(120));
    repository = open();
    // What the update command does: every product's store chosen now.
    for (TandrilObjectIterator it = repository->getProductsIterator(); it.isValidIterator(); it.next())
        repository->getChildrenIterator(it.current());
    EXPECT_NE(std::find(sent.begin(), sent.end(), "pre Wavecraft Signals"), sent.end())
        << testing::PrintToString(sent);
    for (const auto& [kind, bytes] : archives)
        EXPECT_EQ(readFile(writableArchive("wavecraft", kind.c_str())), bytes) << "the " << kind << " archive changed";
    // Read from the writable store: the shipped one has no "Sine Wave 2".
    const TandrilObject sources = child(*repository, repository->getTandrilObject("wavecraft"), "Sources");
    EXPECT_TRUE(child(*repository, sources, "Sine Wave 2").isValid());
    std::vector<std::string> why;
    for (const RepositoryReport::Issue& warning : repository->getRepositoryReport()->takeUniqueWarnings())
        if (warning.message.rfind("Product Wavecraft Signals was not generated again (", 0) == 0)
            why.push_back(warning.message);
    ASSERT_EQ(why.size(), 1u);
    EXPECT_NE(why.front().find("wavecraft.tdlib.json"), std::string::npos) << why.front();
    EXPECT_EQ(why.front().find('\n'), std::string::npos) << why.front();

    repository = open();
    repository->getChildrenIterator(repository->getTandrilObject("wavecraft"));
    EXPECT_EQ(sent, (std::vector<std::string>{"pre Wavecraft Signals", "post Wavecraft Signals"}));
}
