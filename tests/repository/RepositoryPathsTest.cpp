#include "repository/xmlrepository/RepositoryPaths.h"

#include "StoreFixture.h"
#include "platform/Platform.h"


namespace LibraryBrowser {
namespace {

using Segments = std::vector<std::string>;

TEST(RepositoryPathsTest, SanitizeNameEscapesAllButLettersDigitsAndUnderscore)
{
    // Letters of any script stay; other characters are escaped by their
    // one-byte form, sign-extended, which is 0 outside Latin-1.
    const std::pair<const char*, const char*> cases[] = {
        {"a/b_c d", "a_2fb__c_20d"}, {"a\\b", "a_2fb"},       {"", ""},           {"v1.2", "v1_2e2"},
        {"tab\there", "tab_09here"}, {"Tëst_Жук", "Tëst__Жук"}, {"90°", "90_-50"}, {"1€", "1_00"},
    };
    for (const auto& [name, sanitized] : cases)
        EXPECT_EQ(sanitizeName(name), sanitized) << name;
    EXPECT_EQ(sanitizePath("my lib/a//b/c_d"), "my_20lib/a_2f_2fb/c__d");

    // Splitting keeps doubled slashes in names; absolute and relative forms.
    const std::pair<const char*, Segments> splits[] = {
        {"lib/sub/block", {"lib", "sub", "block"}}, {"lib/a//b", {"lib", "a//b"}}, {"a////b/c", {"a////b", "c"}},
        {"a///b", {"a", "b"}}, {"/a", {"", "a"}}, {"a", {"a"}}, {"", {}},
    };
    for (const auto& [path, segments] : splits)
        EXPECT_EQ(splitBlockPath(path), segments) << path;
    EXPECT_EQ(absolutePath("/root", "toolbox/lib.json"), "/root/toolbox/lib.json");
    EXPECT_EQ(absolutePath("/root", "/elsewhere/lib.json"), "/elsewhere/lib.json");
    EXPECT_EQ(relativePath("/root", "/root/toolbox/lib.json"), "toolbox/lib.json");
    EXPECT_EQ(relativePath("/root", "toolbox/lib.json"), "toolbox/lib.json");
    EXPECT_EQ(relativePath("/r", "/x/r/y"), "x/y") << "every occurrence of the root goes, not only a leading one";
}

TEST(RepositoryPathsTest, OnlyRelativePathsWithinTheStoreServeAsRepositoryDirectories)
{
    for (const char* inside : {"wavecraft", "vendor/wave craft", "a\\b", "..x/y..", "Жук"})
        EXPECT_EQ(storePathProblem(inside), "") << inside;
    const struct {
        const char* path;
        const char* problem;
    } refused[] = {{"", "it is empty"},
                   {"/etc", "it is not a relative path"},
                   {"\\\\server\\share", "it is not a relative path"},
                   {"C:/data", "it is not a relative path"},
                   {"a/../../b", "it holds a \"..\" segment"},
                   {"..", "it holds a \"..\" segment"},
                   {"a\\..", "it holds a \"..\" segment"},
                   {"./a", "it holds a \".\" segment"},
                   {"a//b", "it holds an empty segment"},
                   {"a/", "it holds an empty segment"},
                   {"a\x01b", "it holds a control character"}};
    for (const auto& c : refused)
        EXPECT_EQ(storePathProblem(c.path), c.problem) << c.path;

    EXPECT_FALSE(holdsControlCharacter("Two\nLines\tand a tab"));
    EXPECT_TRUE(holdsControlCharacter("Bell\a"));
    EXPECT_TRUE(holdsControlCharacter("Carriage\rReturn"));
    EXPECT_EQ(showControlCharacters("Bell\a\x1f"), "Bell\\x07\\x1f");
}

using RepositoryDirectoriesTest = Testing::StoreFixture;

TEST_F(RepositoryDirectoriesTest, UnmakeableWritableStoreIsAWarning)
{
    // The preferences "directory" is a file: nothing can be made below it.
    writeFile(path("prefs-file"), "x");
    Testing::RecordingEnvironment blocked(hostRoot(), path("prefs-file"));
    Platform::setEnvironment(&blocked);
    EXPECT_EQ(writableRepositoryDirectory(*report), path("prefs-file") + "/td_library_browser_repos");
    Platform::setEnvironment(environment);
    ASSERT_EQ(report->getWarnings().size(), 1u);
    EXPECT_EQ(report->getWarnings().front().message, "Unable to create preference directory");
}

} // namespace
} // namespace LibraryBrowser
