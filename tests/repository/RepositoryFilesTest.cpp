#include "repository/xmlrepository/RepositoryFiles.h"

#include "ReadOnlyPath.h"
#include "StoreFixture.h"
#include "repository/RepositoryReport.h"

#include <QCryptographicHash>
#include <QDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;
using RepositoryFilesTest = Testing::StoreFixture;

// The checksum is the decimal MD5 of the whole file; date and size are read
// below the root; a manifest loaded from bytes closes its change set even
// when it fails.
TEST_F(RepositoryFilesTest, CheckSumIsTheDecimalMd5OfTheWholeFile)
{
    const std::string empty = path("empty.json");
    const std::string abc = path("dir with spaces/Bibliothèque Жук.json");
    writeFile(empty, "");
    writeFile(abc, "abc");
    // Known answers, written by hand from the hexadecimal digests.
    EXPECT_EQ(computeCheckSum(*report, empty), "2122914021714301784233128915223624866126");
    EXPECT_EQ(computeCheckSum(*report, abc), "14418015260210791762141506312540225127114");
    EXPECT_TRUE(logged(*report, "Action: Computed check sum for library " + abc + "\n"));
    // Past the chunks it reads in.
    QByteArray bytes;
    for (int i = 0; i < 3 * 1024 * 1024 + 7; ++i)
        bytes.append(char(i * 31 + (i >> 11)));
    writeFile(path("large.bin"), bytes);
    std::string digest;
    for (const char b : QCryptographicHash::hash(bytes, QCryptographicHash::Md5))
        digest += std::to_string(static_cast<unsigned char>(b));
    EXPECT_EQ(computeCheckSum(*report, path("large.bin")), digest);
    EXPECT_FALSE(report->hasError());
    EXPECT_EQ(computeCheckSum(*report, path("missing.json")), "");
    EXPECT_EQ(computeCheckSum(*report, path("tmp")), "");

    const std::string file = hostRoot() + "/toolbox/lib.json";
    writeFile(file, "12345");
    setModified(file, QDateTime::fromSecsSinceEpoch(1600000000));
    EXPECT_EQ(fileInfoOf(*report, "toolbox/lib.json"), (FileInfo{"toolbox/lib.json", "", 1600000000u, 5u}));
    EXPECT_EQ(fileDate(path("missing")), 0u);
    // A directory is no model file.
    EXPECT_EQ(fileInfoOf(*report, "toolbox"), (FileInfo{"toolbox", "", 0, 0}));

    auto source = Model::createModel();
    addProduct(*source, "Alpha");
    auto model = Model::createModel();
    EXPECT_TRUE(loadManifestFromBytes(*report, *model, QByteArray()));
    EXPECT_EQ(model->nodeCount(), 0);
    EXPECT_TRUE(loadManifestFromBytes(*report, *model, source->saveToBytes()));
    EXPECT_EQ(model->nodeCount(), 1);
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_FALSE(loadManifestFromBytes(*report, *model, "<not a manifest"));
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_EQ(errorMessages(*report),
              (Messages{"Unable to locate model file " + path("missing.json") + ". Skipping checksum",
                        "Unable to read model file " + path("tmp") + ". Skipping checksum",
                        "Querying the date and size of an invalid file: " + hostRoot() + "/toolbox",
                        "Unexpected error occurred while loading the manifest file"}));
}

// A copy replaces the destination and makes its directory, but a failed one
// keeps it, read-only or not.
TEST_F(RepositoryFilesTest, CopyReplacesTheDestinationAndMakesItsDirectoryButAFailedOneKeepsIt)
{
    const std::string source = path("Quelle ä/modèle.json");
    const std::string destination = path("out/neu er/Ziel ö.json");
    for (const char* content : {"new", "newer"}) {
        writeFile(source, content);
        EXPECT_TRUE(copyFile(*report, source, destination));
        EXPECT_EQ(readFile(destination), content);
    }
    EXPECT_FALSE(report->hasError());
    const std::string kept = path("kept.json");
    writeFile(kept, "old");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path("a directory/inner"))));
    EXPECT_FALSE(copyFile(*report, path("nothing here.json"), kept));
    // A directory can't be replaced by a file, nor copied as one, nor made where a file is.
    EXPECT_FALSE(copyFile(*report, source, path("a directory")));
    EXPECT_FALSE(copyFile(*report, path("a directory"), path("copy.json")));
    EXPECT_FALSE(copyFile(*report, source, source + "/below.json"));
    EXPECT_EQ(readFile(kept), "old");
    EXPECT_EQ(readFile(source), "newer");
    EXPECT_TRUE(exists(path("a directory/inner")));
    EXPECT_FALSE(exists(path("copy.json")));
    EXPECT_EQ(errorMessages(*report),
              (Messages{"Unable to copy. Source file " + path("nothing here.json") + " does not exist",
                        "Unable to remove " + path("a directory") + ": it is a directory",
                        "Unable to copy " + path("a directory") + " to " + path("copy.json")
                            + ": file to open is a directory",
                        "Unable to create directory " + source}));

    report = RepositoryReport::create();
    const std::string locked = path("locked/dest.json");
    writeFile(locked, "old");
    {
        Testing::ReadOnlyPath lockedFile(locked);
        Testing::ReadOnlyPath lockedDirectory(path("locked"));
        if (!lockedFile.active() || !lockedDirectory.active())
            GTEST_SKIP() << "cannot make a path read-only here";
        EXPECT_FALSE(copyFile(*report, source, locked));
    }
    EXPECT_EQ(readFile(locked), "old");
    // The reason is the system's: refused to a user, or to anyone for an immutable file.
    EXPECT_THAT(errorMessages(*report),
                ::testing::ElementsAre(::testing::AnyOf("Unable to remove " + locked + ": Permission denied",
                                                        "Unable to remove " + locked + ": Operation not permitted")));
}

} // namespace
} // namespace LibraryBrowser
