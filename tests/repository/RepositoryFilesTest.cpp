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

class RepositoryFilesTest : public Testing::StoreFixture {
protected:
    RepositoryReport report;
};

TEST_F(RepositoryFilesTest, CheckSumIsTheDecimalMd5OfTheWholeFile)
{
    const std::string empty = path("empty.json");
    const std::string abc = path("dir with spaces/Bibliothèque Жук.json");
    writeFile(empty, "");
    writeFile(abc, "abc");
    // Known answers, written by hand from the hexadecimal digests.
    EXPECT_EQ(computeCheckSum(report, empty), "2122914021714301784233128915223624866126");
    EXPECT_EQ(computeCheckSum(report, abc), "14418015260210791762141506312540225127114");
    EXPECT_TRUE(logged(report, "Action: Computed check sum for library " + abc + "\n"));

    // Past the chunks it reads in.
    QByteArray bytes;
    for (int i = 0; i < 3 * 1024 * 1024 + 7; ++i)
        bytes.append(char(i * 31 + (i >> 11)));
    writeFile(path("large.bin"), bytes);
    std::string digest;
    for (const char b : QCryptographicHash::hash(bytes, QCryptographicHash::Md5))
        digest += std::to_string(static_cast<unsigned char>(b));
    EXPECT_EQ(computeCheckSum(report, path("large.bin")), digest);
    EXPECT_FALSE(report.hasError());

    const std::string missing = path("missing.json");
    EXPECT_EQ(computeCheckSum(report, missing), "");
    EXPECT_EQ(computeCheckSum(report, path("tmp")), "");
    EXPECT_EQ(errorMessages(report),
              (Messages{"Unable to locate model file " + missing + ". Skipping checksum",
                        "Unable to read model file " + path("tmp") + ". Skipping checksum"}));
}

TEST_F(RepositoryFilesTest, DateAndSizeOfAFileBelowTheRoot)
{
    const std::string file = hostRoot() + "/toolbox/lib.json";
    writeFile(file, "12345");
    setModified(file, QDateTime::fromSecsSinceEpoch(1600000000));

    EXPECT_EQ(fileInfoOf(report, "toolbox/lib.json"), (FileInfo{"toolbox/lib.json", "", 1600000000u, 5u}));
    EXPECT_EQ(fileDate(path("missing")), 0u);

    // A directory is no model file.
    EXPECT_EQ(fileInfoOf(report, "toolbox"), (FileInfo{"toolbox", "", 0, 0}));
    EXPECT_EQ(errorMessages(report),
              (Messages{"Querying the date and size of an invalid file: " + hostRoot() + "/toolbox"}));
}

TEST_F(RepositoryFilesTest, CopyReplacesTheDestinationAndMakesItsDirectoryButAFailedOneKeepsIt)
{
    const std::string source = path("Quelle ä/modèle.json");
    const std::string destination = path("out/neu er/Ziel ö.json");
    for (const char* content : {"new", "newer"}) {
        writeFile(source, content);
        EXPECT_TRUE(copyFile(report, source, destination));
        EXPECT_EQ(readFile(destination), content);
    }
    EXPECT_FALSE(report.hasError());

    const std::string kept = path("kept.json");
    writeFile(kept, "old");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path("a directory/inner"))));

    EXPECT_FALSE(copyFile(report, path("nothing here.json"), kept));
    // A directory can't be replaced by a file, nor copied as one, nor
    // made where a file is.
    EXPECT_FALSE(copyFile(report, source, path("a directory")));
    EXPECT_FALSE(copyFile(report, path("a directory"), path("copy.json")));
    EXPECT_FALSE(copyFile(report, source, source + "/below.json"));

    EXPECT_EQ(readFile(kept), "old");
    EXPECT_EQ(readFile(source), "newer");
    EXPECT_TRUE(exists(path("a directory/inner")));
    EXPECT_FALSE(exists(path("copy.json")));
    EXPECT_EQ(errorMessages(report),
              (Messages{"Unable to copy. Source file " + path("nothing here.json") + " does not exist",
                        "Unable to remove " + path("a directory") + ": it is a directory",
                        "Unable to copy " + path("a directory") + " to " + path("copy.json")
                            + ": file to open is a directory",
                        "Unable to create directory " + source}));
}

TEST_F(RepositoryFilesTest, CopyOntoAReadOnlyDestinationFailsAndKeepsIt)
{
    const std::string source = path("source.json");
    const std::string destination = path("locked/dest.json");
    writeFile(source, "new");
    writeFile(destination, "old");
    {
        Testing::ReadOnlyPath lockedFile(destination);
        Testing::ReadOnlyPath lockedDirectory(path("locked"));
        if (!lockedFile.active() || !lockedDirectory.active())
            GTEST_SKIP() << "cannot make a path read-only here";
        EXPECT_FALSE(copyFile(report, source, destination));
    }
    EXPECT_EQ(readFile(destination), "old");
    // The reason is the system's: refused to a user, or to anyone for an
    // immutable file.
    const Messages errors = errorMessages(report);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_THAT(errors.front(), ::testing::AnyOf("Unable to remove " + destination + ": Permission denied",
                                                 "Unable to remove " + destination + ": Operation not permitted"));
}

TEST_F(RepositoryFilesTest, LoadManifestFromBytesClosesItsChangeSetEvenOnFailure)
{
    auto source = Model::createModel();
    addProduct(*source, "Alpha");
    auto model = Model::createModel();
    EXPECT_TRUE(loadManifestFromBytes(report, *model, QByteArray()));
    EXPECT_EQ(model->nodeCount(), 0);
    EXPECT_TRUE(loadManifestFromBytes(report, *model, source->saveToBytes()));
    EXPECT_EQ(model->nodeCount(), 1);
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_FALSE(report.hasError());

    EXPECT_FALSE(loadManifestFromBytes(report, *model, "<not a manifest"));
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_EQ(errorMessages(report), (Messages{"Unexpected error occurred while loading the manifest file"}));
}

} // namespace
} // namespace LibraryBrowser
