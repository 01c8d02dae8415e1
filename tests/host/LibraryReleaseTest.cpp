#include "HostTestSupport.h"

#include "LibraryCatalog.h"

#include <gtest/gtest.h>

namespace LibraryBrowser::Host::Testing {

namespace {

// Libraries of half the bytes the catalog keeps, each with a block, a
// subsystem and a padding block: loading the third lets the first go.
class LibraryRelease : public ::testing::Test {
protected:
    static constexpr int libraryCount = 3;

    static std::string name(int i) { return "lib" + std::to_string(i); }
    static QString file(int i) { return QStringLiteral("toolbox/kinetics/lib%1.tdlib.json").arg(i); }

    void writeLibrary(int i, const std::string& description)
    {
        static const std::string padding(std::size_t(LibraryCatalog::keptBytes / 2), 'p');
        root.write(file(i), libraryJson(name(i), R"([{"name": "A", "type": "Block", "description": ")" + description
                                                       + R"("}, {"name": "S", "type": "SubSystem", "blocks": [
                                                       {"name": "Inner", "type": "Block"}]},
                                                       {"name": "Pad", "type": "Block", "description": ")"
                                                       + padding + R"("}])"));
    }

    void SetUp() override
    {
        for (int i = 0; i < libraryCount; ++i)
            writeLibrary(i, "first");
    }

    RootCopy root;
};

// Handles stay valid when their library's document is let go: it is read
// again while its file is unchanged. Once the file has changed, what the
// handle named is gone, and the call says so instead of answering for the
// new file.
TEST_F(LibraryRelease, HandlesIntoALetGoDocumentAnswerAsBeforeUntilItsFileChanges)
{
    HostFixture fixture(root.path());
    const auto releaseFirst = [&] {
        for (int i = 1; i < libraryCount; ++i)
            ASSERT_EQ(fixture.children(name(i)).size(), 3u);
    };
    const std::vector<double> handles = fixture.children(name(0));
    ASSERT_EQ(handles.size(), 3u);
    const std::vector<HostValue> block = fixture.blockData(handles[0]);
    ASSERT_EQ(block.size(), 6u);
    EXPECT_EQ(block[1].toString(), "first");
    releaseFirst();

    EXPECT_EQ(fixture.blockData(handles[0]), block);
    EXPECT_EQ(fixture.children(name(0)), handles) << "the same reading keeps its nodes";
    const std::vector<double> inner = fixture.children(HostValue::doubleScalar(handles[1]));
    ASSERT_EQ(inner.size(), 1u);
    EXPECT_EQ(fixture.blockData(inner[0]).at(0).toString(), "Inner");
    const auto icon = fixture.tdprivate("lb_createSubSystemIcons", 0,
                                        {HostValue::string("lib0/S"), HostValue::cellOfStrings({"lib0/S/Inner"}),
                                         HostValue::cellOfStrings({root.file("inner.svg").toStdString()})});
    EXPECT_TRUE(icon.ok) << icon.errorMessage;
    EXPECT_TRUE(fixture.errors().empty());

    releaseFirst();
    writeLibrary(0, "second");
    const auto stale = fixture.tdprivate("lb_getBlockData", 6, {HostValue::doubleScalar(handles[0])});
    EXPECT_FALSE(stale.ok);
    EXPECT_NE(stale.errorMessage.find("the library file changed after the handle of \"lib0/A\" was given"),
              std::string::npos)
        << stale.errorMessage;
    EXPECT_EQ(fixture.children(HostValue::doubleScalar(handles[1])), inner)
        << "children once listed are the node's own and stay";
    const std::vector<double> fresh = fixture.children(name(0));
    ASSERT_EQ(fresh.size(), 3u);
    EXPECT_NE(fresh, handles);
    EXPECT_EQ(fixture.blockData(fresh[0]).at(1).toString(), "second");

    // A change while the document is still kept: new handles read the new
    // file, the old ones keep what they named.
    writeLibrary(0, "third reading");
    const std::vector<double> third = fixture.children(name(0));
    ASSERT_EQ(third.size(), 3u);
    EXPECT_EQ(fixture.blockData(third[0]).at(1).toString(), "third reading");
    EXPECT_EQ(fixture.blockData(fresh[0]).at(1).toString(), "second");
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
