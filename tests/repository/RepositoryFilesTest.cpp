#include "repository/xmlrepository/RepositoryFiles.h"

#include "ReadOnlyPath.h"
#include "StoreFixture.h"
#include "repository/RepositoryReport.h"

#include <QCryptographicHash>
#include <QDir>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;

class RepositoryFilesTest : public Testing::StoreFixture {
protected:
    RepositoryReport report;
};

std::string decimalDigest(const QByteArray& bytes)
{
    std::string text;
    for (const char b : QCryptographicHash::hash(bytes, QCryptographicHash::Md5))
        text += std::to_string(static_cast<unsigned char>(b));
    return text;
}

TEST_F(RepositoryFilesTest, CheckSumIsTheDecimalMd5OfTheWholeFile)
{
    const std::string empty = path("empty.json");
    const std::string abc = path("dir with spaces/Bibliothèque Жук.json");
    const std::string unix = path("unix.txt");
    const std::string dos = path("dos.txt");
    writeFile(empty, "");
    writeFile(abc, "abc");
    writeFile(unix, "line\n");
    writeFile(dos, "line\r\n");

    // Known answers, written by hand from the hexadecimal digests.
    EXPECT_EQ(computeCheckSum(report, empty), "2122914021714301784233128915223624866126");
    EXPECT_EQ(computeCheckSum(report, abc), "14418015260210791762141506312540225127114");
    EXPECT_NE(computeCheckSum(report, unix), computeCheckSum(report, dos));
    EXPECT_FALSE(report.hasError());
    EXPECT_TRUE(logged(report, "Action: Computed check sum for library " + abc + "\n"));
}

TEST_F(RepositoryFilesTest, CheckSumSpansChunkBoundaries)
{
    QByteArray bytes;
    for (int i = 0; i < 3 * 1024 * 1024 + 7; ++i)
        bytes.append(char(i * 31 + (i >> 11)));
    const std::string file = path("large.bin");
    writeFile(file, bytes);
    EXPECT_EQ(computeCheckSum(report, file), decimalDigest(bytes));
}

TEST_F(RepositoryFilesTest, CheckSumOfWhatIsNoReadableFileIsEmpty)
{
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
    const QDateTime when = QDateTime::fromSecsSinceEpoch(1600000000);
    setModified(file, when);

    const FileInfo info = fileInfoOf(report, "toolbox/lib.json");
    EXPECT_EQ(info, (FileInfo{"toolbox/lib.json", "", 1600000000u, 5u}));
    EXPECT_EQ(fileDate(file), 1600000000u);
    EXPECT_EQ(fileDate(path("missing")), 0u);
    EXPECT_FALSE(report.hasError());

    // A directory is no model file.
    const FileInfo directory = fileInfoOf(report, "toolbox");
    EXPECT_EQ(directory, (FileInfo{"toolbox", "", 0, 0}));
    EXPECT_EQ(errorMessages(report),
              (Messages{"Querying the date and size of an invalid file: " + hostRoot() + "/toolbox"}));
}

TEST_F(RepositoryFilesTest, CopyReplacesTheDestinationAndMakesItsDirectory)
{
    const std::string source = path("Quelle ä/modèle.json");
    const std::string destination = path("out/neu er/Ziel ö.json");
    writeFile(source, "new");
    EXPECT_TRUE(copyFile(report, source, destination));
    EXPECT_EQ(readFile(destination), "new");

    writeFile(source, "newer");
    EXPECT_TRUE(copyFile(report, source, destination));
    EXPECT_EQ(readFile(destination), "newer");
    EXPECT_FALSE(report.hasError());
}

TEST_F(RepositoryFilesTest, CopyFromAMissingSourceLeavesTheDestination)
{
    const std::string destination = path("kept.json");
    writeFile(destination, "old");
    EXPECT_FALSE(copyFile(report, path("nothing here.json"), destination));
    EXPECT_EQ(readFile(destination), "old");
    EXPECT_EQ(errorMessages(report),
              (Messages{"Unable to copy. Source file " + path("nothing here.json") + " does not exist"}));
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
    EXPECT_EQ(errorMessages(report), (Messages{"Unable to remove " + destination}));
}

TEST_F(RepositoryFilesTest, CopyWhereADirectoryStandsForAFile)
{
    const std::string source = path("source.json");
    writeFile(source, "data");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path("a directory/inner"))));

    // The destination is a directory: it can't be replaced by a file.
    EXPECT_FALSE(copyFile(report, source, path("a directory")));
    EXPECT_TRUE(exists(path("a directory/inner")));
    // The source is a directory: there is nothing to copy.
    EXPECT_FALSE(copyFile(report, path("a directory"), path("copy.json")));
    EXPECT_FALSE(exists(path("copy.json")));
    // The destination's directory would have to be where a file is.
    EXPECT_FALSE(copyFile(report, source, path("source.json/below.json")));

    EXPECT_EQ(errorMessages(report),
              (Messages{"Unable to remove " + path("a directory"),
                        "Unable to copy " + path("a directory") + " to " + path("copy.json"),
                        "Unable to create directory " + path("source.json")}));
    EXPECT_EQ(readFile(source), "data");
}

TEST_F(RepositoryFilesTest, LoadManifestFromBytes)
{
    auto source = Model::createModel();
    addProduct(*source, "Alpha");
    const QByteArray bytes = source->saveToBytes();

    auto model = Model::createModel();
    EXPECT_TRUE(loadManifestFromBytes(report, *model, QByteArray()));
    EXPECT_EQ(model->nodeCount(), 0);
    EXPECT_TRUE(loadManifestFromBytes(report, *model, bytes));
    EXPECT_EQ(model->nodeCount(), 1);
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_FALSE(report.hasError());

    EXPECT_FALSE(loadManifestFromBytes(report, *model, "<not a manifest"));
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_EQ(errorMessages(report), (Messages{"Unexpected error occurred while loading the manifest file"}));
}

} // namespace
} // namespace LibraryBrowser
