#include "GenerationFixture.h"

#include "repository/xmlrepository/HostOperations.h"

#include <algorithm>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

// The module's questions put to the real embedded host on the example root.
class HostOperationsTest : public GenerationFixture {
protected:
    std::size_t indexOf(const ProductsData& data, const std::string& file) const
    {
        return std::size_t(std::find(data.modelFiles.begin(), data.modelFiles.end(), file) - data.modelFiles.begin());
    }

    HostOperations operations{report};
};

} // namespace

TEST_F(HostOperationsTest, ProductsOfTheExampleRoot)
{
    const ProductsData data = operations.getTdBlocksData({});
    ASSERT_EQ(data.size(), 6u) << "five products and one palette";
    for (std::size_t size : {data.modelFiles.size(), data.reposDirectories.size(), data.treeIcons.size(),
                             data.panelIcons.size(), data.types.size(), data.children.size(),
                             data.fileDependencies.size()})
        EXPECT_EQ(size, data.size());

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

TEST_F(HostOperationsTest, BlocksAndLibrariesAndTheirFailures)
{
    BlockData first;
    ASSERT_TRUE(operations.getBlockData(operations.getChildrenHandles("wavecraft").at(0), first));
    EXPECT_EQ(first.name, "Sources");
    EXPECT_EQ(first.type, "SubSystem");

    // Names that hold a slash come doubled in the path and single in the shown name.
    const std::vector<double> conversion = operations.getChildrenHandles("wavecraft/Signal Conversion");
    std::vector<std::string> names;
    for (double handle : conversion) {
        BlockData data;
        ASSERT_TRUE(operations.getBlockData(handle, data));
        if (data.displayName == "A/D Converter")
            names.push_back(data.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"A//D Converter"}));
    EXPECT_TRUE(operations.getChildrenHandles(conversion.at(0)).empty()) << "a block has no children";

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
