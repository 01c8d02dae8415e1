#include "repository/HandMadeStore.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <QFile>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

const QDateTime stamp = QDateTime::fromSecsSinceEpoch(1763800000);

// The reader's decision over whole products: a product with its
// dependencies, and a palette that is as fresh as its members.
class ProductUpToDateTest : public HandMadeStore {
protected:
    void SetUp() override
    {
        HandMadeStore::SetUp();
        reader = openReader();
        interpreter.on("tdprivate:lb_getLibraryData", [this](int, const std::vector<HostValue>& in) {
            HostInterpreter::CallResult r;
            const auto it = modelFiles.find(in[2].toString());
            r.ok = it != modelFiles.end();
            if (r.ok)
                r.outputs = {HostValue::cellOfStrings({it->second}),
                             HostValue::doubleScalar(double(readFile(hostRoot() + "/" + it->second).size())),
                             HostValue()};
            return r;
        });
    }

    LibraryImpl* stored(const std::string& id)
    {
        for (TandrilObjectImpl* node : reader->topLevelManifest()->getNodes())
            if (node->getUniquePath() == StringId(id))
                return dynamic_cast<LibraryImpl*>(node);
        return nullptr;
    }

    // Puts the library's model file on the host's disk and records it in the
    // store as it is now.
    void record(const std::string& id, const QByteArray& content)
    {
        LibraryImpl* library = stored(id);
        ASSERT_NE(library, nullptr) << id;
        const std::string spec = "toolbox/" + id + ".tdlib.json";
        const std::string file = hostRoot() + "/" + spec;
        writeFile(file, content);
        setModified(file, stamp);
        library->setModelFileSpec(spec);
        library->setModelFileSize(content.size());
        library->setModelFileDate(std::int32_t(stamp.toSecsSinceEpoch()));
        library->setModelFileCheckSum(computeCheckSum(*report, file));
        modelFiles[library->getPath()] = spec;
    }

    std::shared_ptr<XMLRepositoryReader> reader;
    std::map<std::string, std::string> modelFiles;
};

} // namespace

TEST_F(ProductUpToDateTest, AProductIsAsFreshAsItsDependencies)
{
    record("Alpha", "{\"blocks\": 1}");
    record("Alpha-Shared", "{\"blocks\": 2}");
    // As generation leaves it: the dependency's archives are its product's.
    stored("Alpha-Shared")->setProduct(stored("Alpha"));
    const TandrilObject alpha = reader->getTandrilObject("Alpha");
    EXPECT_TRUE(reader->isProductUpToDate(alpha));
    EXPECT_TRUE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "NotADependency", false));

    const std::string shared = hostRoot() + "/toolbox/Alpha-Shared.tdlib.json";
    writeFile(shared, "{\"blocks\": 3}");
    setModified(shared, stamp.addSecs(5));
    EXPECT_FALSE(reader->isProductUpToDate(alpha)) << "a changed dependency makes the product out of date";
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_TRUE(logged(*report, "The checksums did not match. (Alpha-Shared)"));
}

TEST_F(ProductUpToDateTest, APaletteIsAsFreshAsItsMembers)
{
    record("Beta", "{\"blocks\": 1}");
    const TandrilObject tools = reader->getTandrilObject("Tools");
    ASSERT_TRUE(tools.isValid());
    EXPECT_FALSE(reader->isProductUpToDate(tools)) << "its member Beta has no icons archive";

    writeArchive(archive("Beta", "icons"), {{"icons/B1.svg", svg("B1")}});
    EXPECT_TRUE(reader->isProductUpToDate(tools, true));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (Beta)"))
        << "the members' dates count even when the palette's are ignored";
    bool warned = false;
    for (const auto& issue : report->getWarnings())
        warned = warned || issue.id == "Tandril:LibraryBrowser:CycleInPalette";
    EXPECT_TRUE(warned) << "the palette lists itself";
}

TEST_F(ProductUpToDateTest, NothingThatIsNoStoredProductIsUpToDate)
{
    record("Alpha", "{\"blocks\": 1}");
    EXPECT_FALSE(reader->isProductUpToDate(TandrilObject()));
    EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("Nope")));
    EXPECT_FALSE(reader->isProductUpToDate(std::string("Nope")));
    EXPECT_FALSE(reader->isLibraryUpToDate(TandrilObject(), "Shared", false));
    TandrilObjectIterator children = reader->getChildrenIterator(reader->getTandrilObject("Alpha"));
    ASSERT_TRUE(children.isValidIterator());
    EXPECT_EQ(children.current().getName(), "Gain");
    EXPECT_FALSE(reader->isProductUpToDate(children.current())) << "a block is no product";
}
