#include "platform/ZipArchive.h"
#include "platform/ZipEntryIndex.h"
#include "support/Files.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>

using namespace LibraryBrowser;
using Testing::readFile;
using Testing::writeFile;

namespace {

class ZipEntryIndexTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        QByteArray noise(3000, Qt::Uninitialized);
        QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
        entries = {{"Alpha/lbAlphamanifest.xml", QByteArray("<tdlb-manifest/>").repeated(200)},
                   {"icons/Gain \u00fc.svg", "<svg/>"},
                   {"empty", ""},
                   {"noise.bin", noise}};
        ZipArchive archive;
        ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew));
        for (const auto& [name, bytes] : entries)
            ASSERT_TRUE(archive.add(name, bytes));
        ASSERT_TRUE(archive.close()) << archive.errorString();
        whole = readFile(file);
    }

    QTemporaryDir dir;
    std::string file = dir.filePath("archive.rps").toStdString();
    std::map<std::string, QByteArray> entries;
    QByteArray whole;
};

} // namespace

// As libzip wrote it, and with a comment behind the directory's end, as a
// hand-made archive may have.
TEST_F(ZipEntryIndexTest, ReadsEveryEntryOfAnArchiveAlsoBehindAComment)
{
    const QByteArray comment = QByteArray("made by hand ").repeated(300);
    QByteArray commented = whole;
    commented[commented.size() - 2] = char(comment.size() & 0xFF);
    commented[commented.size() - 1] = char(comment.size() >> 8);
    for (const QByteArray& archiveBytes : {whole, commented + comment}) {
        writeFile(file, archiveBytes);
        ZipEntryIndex index;
        std::string error;
        ASSERT_TRUE(index.load(file, error)) << error;
        EXPECT_TRUE(ZipEntryIndex::check(file, error)) << error;
        EXPECT_EQ(index.size(), entries.size());
        for (const auto& [name, bytes] : entries) {
            QByteArray read;
            EXPECT_TRUE(index.read(file, name, read, error)) << name << ": " << error;
            EXPECT_EQ(read, bytes) << name;
        }
        QByteArray read("left over");
        EXPECT_FALSE(index.read(file, "Alpha", read, error)) << "names are whole entry names";
        EXPECT_TRUE(read.isEmpty());
    }
}

TEST_F(ZipEntryIndexTest, FilesThatAreNoArchiveFailToLoadWithAReason)
{
    const std::pair<const char*, QByteArray> cases[] = {
        {"empty file", ""},
        {"text", "this is no zip archive"},
        {"cut before the directory's end", whole.left(whole.size() - 10)},
        {"directory offset beyond the end", whole.left(whole.size() - 6) + QByteArray("\xff\xff\xff\x7f\0\0", 6)},
    };
    for (const auto& [what, bytes] : cases) {
        SCOPED_TRACE(what);
        writeFile(file, bytes);
        ZipEntryIndex index;
        std::string error, checkError;
        EXPECT_FALSE(index.load(file, error) || index.isLoaded() || index.size() || error.empty());
        EXPECT_FALSE(ZipEntryIndex::check(file, checkError));
        EXPECT_EQ(checkError, error);
    }
    ZipEntryIndex index;
    std::string error;
    EXPECT_FALSE(index.load(dir.filePath("missing.rps").toStdString(), error));
    EXPECT_NE(error.find("Can't open file"), std::string::npos) << error;
}

// Each byte of the archive damaged in turn: the index either refuses the
// file, or every read gives the entry's true bytes or fails with a reason.
// Never wrong bytes, never a crash.
TEST_F(ZipEntryIndexTest, ADamagedByteNeverGivesWrongBytes)
{
    int refused = 0, failedReads = 0;
    for (qsizetype at = 0; at < whole.size(); ++at) {
        QByteArray damaged = whole;
        damaged[at] = char(damaged[at] ^ 0x5a);
        writeFile(file, damaged);
        ZipEntryIndex index;
        std::string error;
        if (!index.load(file, error)) {
            EXPECT_FALSE(error.empty());
            ++refused;
            continue;
        }
        for (const auto& [name, bytes] : entries) {
            QByteArray read;
            if (index.read(file, name, read, error))
                EXPECT_EQ(read, bytes) << "byte " << at << " entry " << name;
            else
                ++failedReads;
        }
    }
    EXPECT_GT(refused, 0);
    EXPECT_GT(failedReads, 0);
}
