#include "repository/xmlrepository/HostOperations.h"

#include "EmbeddedHost.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

using namespace LibraryBrowser;

namespace {

// The module's questions put to the real embedded host on the example root.
class HostOperationsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
        options.root = Host::HostOptions::bundledRoot();
        options.preferencesDirectory = prefs.path();
        host = std::make_unique<Host::EmbeddedHost>(options);
        host->install();
    }
    void TearDown() override { host.reset(); }

    std::size_t indexOf(const ProductsData& data, const std::string& file) const
    {
        return std::size_t(std::find(data.modelFiles.begin(), data.modelFiles.end(), file) - data.modelFiles.begin());
    }

    QTemporaryDir prefs;
    std::unique_ptr<Host::EmbeddedHost> host;
    RepositoryReportPtr report = RepositoryReport::create();
    HostOperations operations{report};
};

} // namespace

TEST_F(HostOperationsTest, ProductsOfTheExampleRoot)
{
    const ProductsData data = operations.getTdBlocksData({});
    ASSERT_EQ(data.size(), 6u) << "five products and one palette";
    for (const auto* sequence : {&data.modelFiles, &data.reposDirectories, &data.treeIcons, &data.panelIcons})
        EXPECT_EQ(sequence->size(), data.size());
    EXPECT_EQ(data.types.size(), data.size());
    EXPECT_EQ(data.children.size(), data.size());
    EXPECT_EQ(data.fileDependencies.size(), data.size());

    const std::size_t palette = indexOf(data, "signal_workbench");
    ASSERT_LT(palette, data.size());
    EXPECT_EQ(data.types[palette], ProductsData::LibraryType::Palette);
    EXPECT_EQ(data.productNames[palette], "Signal Workbench");
    EXPECT_EQ(data.children[palette], (std::vector<std::string>{"Wavecraft Signals", "Arithmetica"}));

    const std::size_t wavecraft = indexOf(data, "wavecraft");
    ASSERT_LT(wavecraft, data.size());
    EXPECT_EQ(data.types[wavecraft], ProductsData::LibraryType::Product);
    ASSERT_EQ(data.fileDependencies[wavecraft].size(), 1u);
    EXPECT_NE(data.fileDependencies[wavecraft][0].fileSpec.find("wavecraft.tdlib.json"), std::string::npos);
    EXPECT_TRUE(data.fileDependencies[wavecraft][0].checkSum.empty());
    EXPECT_FALSE(report->hasError());
}

TEST_F(HostOperationsTest, BlocksOfALibraryAndTheirData)
{
    const std::vector<double> top = operations.getChildrenHandles("wavecraft");
    ASSERT_FALSE(top.empty());
    std::vector<std::string> names;
    for (double handle : top) {
        BlockData data;
        ASSERT_TRUE(operations.getBlockData(handle, data));
        names.push_back(data.name);
        EXPECT_TRUE(data.type == "Block" || data.type == "SubSystem" || data.type == "LibraryRef") << data.type;
        EXPECT_GE(data.position.width(), 0);
        EXPECT_GE(data.position.height(), 0);
    }
    EXPECT_EQ(names.front(), "Sources");

    // Names that hold a slash come doubled in the path and single in the shown name.
    const std::vector<double> conversion = operations.getChildrenHandles("wavecraft/Signal Conversion");
    bool sawConverter = false;
    for (double handle : conversion) {
        BlockData data;
        ASSERT_TRUE(operations.getBlockData(handle, data));
        if (data.displayName == "A/D Converter") {
            sawConverter = true;
            EXPECT_EQ(data.name, "A//D Converter");
        }
    }
    EXPECT_TRUE(sawConverter);
    EXPECT_EQ(operations.getChildrenHandles(conversion.front()).size(), 0u) << "a block has no children";
}

TEST_F(HostOperationsTest, LibraryDataAndFailures)
{
    const LibraryData data = operations.getLibraryData("wavecraft");
    EXPECT_NE(data.fileSpec.find("wavecraft.tdlib.json"), std::string::npos);
    EXPECT_GT(data.size, 0);
    EXPECT_GT(data.date, 0);

    const LibraryData none = operations.getLibraryData("no_such_library");
    EXPECT_TRUE(none.fileSpec.empty());
    EXPECT_EQ(none.size, 0);
    EXPECT_EQ(none.date, 0);
    EXPECT_TRUE(operations.getChildrenHandles("no_such_library").empty());
    BlockData block;
    EXPECT_FALSE(operations.getBlockData(-1.0, block));
}
