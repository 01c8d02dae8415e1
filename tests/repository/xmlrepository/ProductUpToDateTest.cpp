#include "repository/HandMadeStore.h"

#include "repository/HandleData.h"

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

const QDateTime stamp = QDateTime::fromSecsSinceEpoch(1763800000);

// The reader's decision over whole products: a product with its
// dependencies, and a palette that is as fresh as its members.
class ProductUpToDateTest : public HandMadeStore {
protected:
    LibraryImpl* stored(const std::string& id)
    {
        for (TandrilObjectImpl* node : reader->topLevelManifest()->getNodes())
            if (node->getUniquePath() == StringId(id))
                return dynamic_cast<LibraryImpl*>(node);
        return nullptr;
    }

    // Puts the library's model file on the host's disk and records it in the
    // store as it is now; an edit comes later and is not recorded.
    void record(const std::string& id, const QByteArray& content, bool edit = false)
    {
        const std::string spec = "toolbox/" + id + ".tdlib.json";
        writeFile(hostRoot() + "/" + spec, content);
        setModified(hostRoot() + "/" + spec, edit ? stamp.addSecs(5) : stamp);
        if (!edit)
            recordModelFile(*stored(id), spec);
    }
};

} // namespace

TEST_F(ProductUpToDateTest, AProductIsAsFreshAsItsDependencies)
{
    // A palette: its member Beta has no icons archive; then it has. The
    // members' dates count even when the palette's are ignored.
    record("Beta", "{\"blocks\": 1}");
    const TandrilObject tools = reader->getTandrilObject("Tools");
    EXPECT_FALSE(reader->isProductUpToDate(tools));
    writeArchive(archive("Beta", "icons"), {{"icons/B1.svg", svg("B1")}});
    EXPECT_TRUE(reader->isProductUpToDate(tools, true));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (Beta)"));
    ASSERT_FALSE(report->getWarnings().empty());
    EXPECT_EQ(report->getWarnings().front().id, "Tandril:LibraryBrowser:CycleInPalette") << "the palette lists itself";

    record("Alpha", "{\"blocks\": 1}");
    record("Alpha-Shared", "{\"blocks\": 2}");
    // As generation leaves it: the dependency's archives are its product's.
    stored("Alpha-Shared")->setProduct(stored("Alpha"));
    const TandrilObject alpha = reader->getTandrilObject("Alpha");
    EXPECT_TRUE(reader->isProductUpToDate(alpha));
    EXPECT_TRUE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "NotADependency", false));
    EXPECT_FALSE(reader->isProductUpToDate(TandrilObject()));
    EXPECT_FALSE(reader->isProductUpToDate(std::string("Nope")));
    EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("Alpha/Gain"))) << "a block is no product";

    // A handle of the merged list may hold the other store's node of a
    // product (both stores' handles share one entry per id). Each reader
    // judges the product by its own top-level record, whatever node the
    // handle holds.
    ModelPtr otherStore = Model::createModel();
    LibraryImpl* foreign = otherStore->createLibraryImpl();
    foreign->copyNonStructuralPropertiesFromNode(static_cast<const Node*>(stored("Alpha")));
    foreign->setModelFileSpec("toolbox/NotThere.tdlib.json");
    alpha.getData()->setNode(foreign);
    ASSERT_EQ(alpha.getImpl(), foreign);
    EXPECT_TRUE(reader->isProductUpToDate(alpha)) << "the foreign node's missing model file does not count";
    alpha.getData()->setNode(stored("Alpha"));

    record("Alpha-Shared", "{\"blocks\": 3}", true);
    EXPECT_FALSE(reader->isProductUpToDate(alpha)) << "a changed dependency makes the product out of date";
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_TRUE(logged(*report, "The checksums did not match. (Alpha-Shared)"));
    record("Alpha-Shared", "{\"blocks\": 3}");
    EXPECT_TRUE(reader->isProductUpToDate(alpha));
    stored("Alpha")->setModelFileSpec("");
    EXPECT_FALSE(reader->isProductUpToDate(alpha)) << "a record never generated is not up to date";
}
