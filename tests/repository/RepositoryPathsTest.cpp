#include "repository/xmlrepository/RepositoryPaths.h"

#include "StoreFixture.h"
#include "platform/Platform.h"
#include "repository/RepositoryReport.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Segments = std::vector<std::string>;

TEST(RepositoryPathsTest, SanitizeNameEscapesAllButLettersDigitsAndUnderscore)
{
    EXPECT_EQ(sanitizeName("a/b_c d"), "a_2fb__c_20d");
    EXPECT_EQ(sanitizeName("a_b"), "a__b");
    EXPECT_EQ(sanitizeName("a\\b"), sanitizeName("a/b"));
    EXPECT_EQ(sanitizeName("a/b"), "a_2fb");
    EXPECT_EQ(sanitizeName(""), "");
    EXPECT_EQ(sanitizeName("v1.2"), "v1_2e2");
    EXPECT_EQ(sanitizeName("tab\there"), "tab_09here");
    // Letters of any script stay; other characters are escaped by their
    // one-byte form, sign-extended, which is 0 outside Latin-1.
    EXPECT_EQ(sanitizeName("Tëst_Жук"), "Tëst__Жук");
    EXPECT_EQ(sanitizeName("90°"), "90_-50");
    EXPECT_EQ(sanitizeName("1€"), "1_00");
}

TEST(RepositoryPathsTest, SplitBlockPathKeepsDoubledSlashesInNames)
{
    EXPECT_EQ(splitBlockPath("lib/sub/block"), (Segments{"lib", "sub", "block"}));
    EXPECT_EQ(splitBlockPath("lib/a//b"), (Segments{"lib", "a//b"}));
    EXPECT_EQ(splitBlockPath("a////b/c"), (Segments{"a////b", "c"}));
    EXPECT_EQ(splitBlockPath("a///b"), (Segments{"a", "b"}));
    EXPECT_EQ(splitBlockPath("/a"), (Segments{"", "a"}));
    EXPECT_EQ(splitBlockPath("a"), (Segments{"a"}));
    EXPECT_TRUE(splitBlockPath("").empty());

    EXPECT_EQ(sanitizePath("my lib/a//b/c_d"), "my_20lib/a_2f_2fb/c__d");
}

TEST(RepositoryPathsTest, AbsoluteAndRelativePaths)
{
    EXPECT_EQ(absolutePath("/root", "toolbox/lib.json"), "/root/toolbox/lib.json");
    EXPECT_EQ(absolutePath("/root", "/elsewhere/lib.json"), "/elsewhere/lib.json");
    // Not tested for existence.
    EXPECT_EQ(absolutePath("/no/such", "x"), "/no/such/x");

    EXPECT_EQ(relativePath("/root", "/root/toolbox/lib.json"), "toolbox/lib.json");
    EXPECT_EQ(relativePath("/root", "toolbox/lib.json"), "toolbox/lib.json");
    // Every occurrence of the root goes, not only a leading one.
    EXPECT_EQ(relativePath("/r", "/x/r/y"), "x/y");
}

class RepositoryDirectoriesTest : public Testing::StoreFixture {};

TEST_F(RepositoryDirectoriesTest, UnmakeableWritableStoreIsAWarning)
{
    // The preferences "directory" is a file: nothing can be made below it.
    writeFile(path("prefs-file"), "x");
    Testing::RecordingEnvironment blocked(hostRoot(), path("prefs-file"));
    Platform::setEnvironment(&blocked);
    RepositoryReport report;
    EXPECT_EQ(writableRepositoryDirectory(report), path("prefs-file") + "/td_library_browser_repos");
    Platform::setEnvironment(environment);
    ASSERT_EQ(report.getWarnings().size(), 1u);
    EXPECT_EQ(report.getWarnings().front().message, "Unable to create preference directory");
}

} // namespace
} // namespace LibraryBrowser
