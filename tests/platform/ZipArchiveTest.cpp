#include "platform/ZipArchive.h"
#include "support/Files.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

using namespace LibraryBrowser;
using Testing::readFile;

namespace {

class ZipArchiveTest : public ::testing::Test {
protected:
    std::string path(const char* name) const { return m_dir.filePath(QString::fromUtf8(name)).toStdString(); }

    static ino_t inode(const std::string& file)
    {
        struct stat status {};
        return ::stat(file.c_str(), &status) == 0 ? status.st_ino : 0;
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(ZipArchiveTest, EntriesSurviveCloseAndReopen)
{
    ZipArchive archive;
    ASSERT_TRUE(archive.open(path("empty.rps"), ZipArchive::CreateNew));
    EXPECT_TRUE(archive.close());
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path("empty.rps")))) << "an empty archive leaves no file";

    const std::string file = path("icons \u00fc.rps");
    ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew)) << archive.errorString();
    EXPECT_EQ(archive.getArchiveFilePath(), file);
    EXPECT_TRUE(archive.add("icons/Signals/Sine_20Wave.svg", "<svg/>"));
    EXPECT_TRUE(archive.add("icons/Gr\u00f6\u00dfe.svg", QByteArray(5000, 'x')));
    ASSERT_TRUE(archive.close());
    EXPECT_FALSE(archive.isOpened());

    ZipArchive again;
    ASSERT_TRUE(again.open(file, ZipArchive::OpenExisting));
    EXPECT_EQ(again.entryNames(),
              (std::vector<std::string>{"icons/Signals/Sine_20Wave.svg", "icons/Gr\u00f6\u00dfe.svg"}));
    QByteArray bytes;
    ASSERT_TRUE(again.read(again.find("icons/Gr\u00f6\u00dfe.svg"), bytes));
    EXPECT_EQ(bytes, QByteArray(5000, 'x'));
    EXPECT_TRUE(again.add("icons/Signals/Sine_20Wave.svg", "<svg version=\"2\"/>")) << "adding replaces";
    ASSERT_TRUE(again.close());

    std::string error;
    ASSERT_TRUE(ZipArchive::readEntry(file, "icons/Signals/Sine_20Wave.svg", bytes, error)) << error;
    EXPECT_EQ(bytes, QByteArray("<svg version=\"2\"/>"));
    EXPECT_FALSE(ZipArchive::readEntry(file, "icons/missing.svg", bytes, error));
    EXPECT_NE(error.find("icons/missing.svg"), std::string::npos);
}

// An empty entry is a real entry: it is listed and reads back empty, and
// under the leak checker it costs nothing once the archive is closed.
TEST_F(ZipArchiveTest, AnEmptyEntryIsKeptAndReadsBackEmpty)
{
    const std::string file = path("with-empty.rps");
    ZipArchive archive;
    ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew)) << archive.errorString();
    EXPECT_TRUE(archive.add("icons/none.svg", QByteArray()));
    EXPECT_TRUE(archive.add("icons/one.svg", "1"));
    ASSERT_TRUE(archive.close()) << archive.errorString();

    ZipArchive again;
    ASSERT_TRUE(again.open(file, ZipArchive::OpenExisting));
    EXPECT_EQ(again.entryNames(), (std::vector<std::string>{"icons/none.svg", "icons/one.svg"}));
    QByteArray bytes = "stale";
    ASSERT_TRUE(again.read(again.find("icons/none.svg"), bytes));
    EXPECT_TRUE(bytes.isEmpty());
    // Replaced by an empty one, the other entry empties too.
    EXPECT_TRUE(again.add("icons/one.svg", QByteArray()));
    ASSERT_TRUE(again.close());
    std::string error;
    ASSERT_TRUE(ZipArchive::readEntry(file, "icons/one.svg", bytes, error)) << error;
    EXPECT_TRUE(bytes.isEmpty());
}

TEST_F(ZipArchiveTest, RemovalAndReopeningKeepTheRest)
{
    const std::string file = path("manifests.rps");
    ZipArchive archive;
    ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew));
    for (int i = 0; i < 250; ++i) {
        archive.add("m/" + std::to_string(i) + ".xml", QByteArray::number(i));
        if (i % 100 == 99) {
            ASSERT_TRUE(archive.close());
            ASSERT_TRUE(archive.open(file, ZipArchive::OpenExisting));
        }
    }
    const ZipArchive::Entry entry = archive.find("m/7.xml");
    ASSERT_TRUE(entry.isValid());
    EXPECT_EQ(archive.getName(entry), "m/7.xml");
    EXPECT_TRUE(archive.remove(entry));
    EXPECT_FALSE(archive.exists("m/7.xml"));
    ASSERT_TRUE(archive.close());

    ASSERT_TRUE(archive.open(file, ZipArchive::ReadOnly));
    EXPECT_EQ(archive.entryNames().size(), 249u);
    QByteArray bytes;
    ASSERT_TRUE(archive.read(archive.find("m/0.xml"), bytes)) << "entries added before a reopen remain";
    EXPECT_EQ(bytes, "0");
}

TEST_F(ZipArchiveTest, DroppedWithoutCloseLeavesTheFileAsItWas)
{
    const std::string file = path("a.rps");
    {
        ZipArchive archive;
        archive.open(file, ZipArchive::CreateNew);
        archive.add("kept", "1");
        archive.close();
    }
    const QByteArray before = readFile(file);
    {
        ZipArchive archive;
        archive.open(file, ZipArchive::OpenExisting);
        archive.add("lost", "2");
    }
    EXPECT_EQ(readFile(file), before);
}

TEST_F(ZipArchiveTest, DamagedOrMissingFilesLeaveItClosedAndHarmless)
{
    const std::string garbage = path("damaged.rps");
    Testing::writeFile(garbage, "PK\x03\x04 this is not really a zip archive at all");
    ZipArchive archive;
    EXPECT_FALSE(archive.open(garbage, ZipArchive::OpenExisting));
    EXPECT_FALSE(archive.errorString().empty());
    EXPECT_FALSE(archive.open(path("missing.rps"), ZipArchive::OpenExisting));

    // Everything on a closed archive answers "nothing" and changes nothing.
    EXPECT_FALSE(archive.isOpened());
    EXPECT_FALSE(archive.exists("x"));
    EXPECT_FALSE(archive.find("x").isValid());
    EXPECT_FALSE(archive.add("x", "1"));
    QByteArray bytes("left over");
    EXPECT_FALSE(archive.read(archive.find("x"), bytes));
    EXPECT_TRUE(bytes.isEmpty());
    EXPECT_FALSE(archive.remove(archive.find("x")));
    EXPECT_TRUE(archive.entryNames().empty());
    EXPECT_EQ(archive.getName(archive.find("x")), "");
    EXPECT_FALSE(archive.close());
    EXPECT_EQ(readFile(garbage).left(4), QByteArray("PK\x03\x04"));

    std::string error;
    EXPECT_FALSE(ZipArchive::readEntry(garbage, "x", bytes, error));
    EXPECT_FALSE(error.empty());

    ASSERT_TRUE(archive.open(garbage, ZipArchive::CreateNew)) << "a new archive replaces a damaged file";
    archive.add("fresh", "1");
    ASSERT_TRUE(archive.close());
    ASSERT_TRUE(ZipArchive::readEntry(garbage, "fresh", bytes, error)) << error;
}

// A close writes the archive into the file it opened rather than into a new
// file renamed over it: the writer closes and reopens an archive every 100
// additions, and freeing an inode at each of those is what made generation
// slow on a file system without a journal.
TEST_F(ZipArchiveTest, ClosingRewritesTheSameFile)
{
    const std::string file = path("icons.rps");
    ZipArchive archive;
    ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew));
    for (int i = 0; i < 3; ++i)
        archive.add("i/" + std::to_string(i) + ".svg", QByteArray(2000, char('a' + i)));
    ASSERT_TRUE(archive.close());
    const ino_t first = inode(file);
    ASSERT_NE(first, ino_t(0));

    ASSERT_TRUE(archive.open(file, ZipArchive::OpenExisting)) << archive.errorString();
    archive.add("i/3.svg", QByteArray(2000, 'd'));
    ASSERT_TRUE(archive.close());
    EXPECT_EQ(inode(file), first);

    // Changes at the front shift everything behind them and shrink the file.
    const qint64 before = QFile(QString::fromStdString(file)).size();
    ASSERT_TRUE(archive.open(file, ZipArchive::OpenExisting));
    ASSERT_TRUE(archive.remove(archive.find("i/0.svg")));
    archive.add("i/1.svg", "short");
    ASSERT_TRUE(archive.close());
    EXPECT_EQ(inode(file), first);
    EXPECT_LT(QFile(QString::fromStdString(file)).size(), before);

    ZipArchive check;
    ASSERT_TRUE(check.open(file, ZipArchive::OpenExisting)) << check.errorString();
    EXPECT_EQ(check.entryNames(), (std::vector<std::string>{"i/1.svg", "i/2.svg", "i/3.svg"}));
    QByteArray bytes;
    ASSERT_TRUE(check.read(check.find("i/1.svg"), bytes));
    EXPECT_EQ(bytes, "short");
    ASSERT_TRUE(check.read(check.find("i/3.svg"), bytes));
    EXPECT_EQ(bytes, QByteArray(2000, 'd'));
}

// Reopening what the same object has just written skips the consistency
// check, but only while the file holds exactly those bytes.
TEST_F(ZipArchiveTest, AFileChangedAfterCloseIsCheckedAgainOnReopen)
{
    const std::string file = path("manifests.rps");
    ZipArchive archive;
    ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew));
    archive.add("a.xml", "<a/>");
    archive.add("b.xml", "<b/>");
    ASSERT_TRUE(archive.close());

    // The first local header names "a.xml" right after its 30 fixed bytes;
    // the central directory still says "a.xml".
    QByteArray bytes = readFile(file);
    ASSERT_EQ(bytes.mid(30, 5), "a.xml");
    bytes[30] = 'x';
    Testing::writeFile(file, bytes);

    EXPECT_FALSE(archive.open(file, ZipArchive::OpenExisting));
    EXPECT_FALSE(archive.errorString().empty());
    EXPECT_EQ(readFile(file), bytes) << "a failed open leaves the file alone";
}

namespace {

// Sets the uncompressed size that the local and the central header of the
// archive's only entry claim.
void claimSize(QByteArray& zip, quint32 size)
{
    const auto put = [&](qsizetype at) {
        for (int i = 0; i < 4; ++i)
            zip[at + i] = char((size >> (8 * i)) & 0xff);
    };
    const qsizetype local = zip.indexOf("PK\x03\x04");
    const qsizetype central = zip.indexOf("PK\x01\x02");
    ASSERT_GE(local, 0);
    ASSERT_GT(central, local);
    put(local + 22);
    put(central + 24);
}

// Reads the archive's only entry in every way the store does; true if any
// of them gave bytes.
bool anyReadSucceeds(const std::string& file)
{
    bool read = false;
    for (ZipArchive::OpenMode mode : {ZipArchive::ReadOnly, ZipArchive::OpenExisting}) {
        ZipArchive archive;
        if (!archive.open(file, mode))
            continue;
        QByteArray bytes;
        read = archive.read(archive.find("manifest.xml"), bytes) || read;
        read = read || !bytes.isEmpty();
    }
    return read;
}

#if !defined(__SANITIZE_ADDRESS__)
// anyReadSucceeds with the address space held to a gigabyte above what the
// process uses; for a child process only.
bool readsWithinAGigabyteMore(const std::string& file)
{
    long pages = 0;
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (statm.open(QIODevice::ReadOnly))
        pages = statm.readAll().split(' ').value(0).toLong();
    const rlim_t limit = rlim_t(pages) * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(1) << 30);
    const struct rlimit bound = {limit, limit};
    setrlimit(RLIMIT_AS, &bound);
    return anyReadSucceeds(file);
}
#endif

} // namespace

// Found by fuzzing: the size an entry's header claims was allocated before
// a byte was read, so a few kilobytes claiming 4 GiB took 4 GiB.
TEST_F(ZipArchiveTest, AnEntryIsReadOnlyAsFarAsItsBytesReallyGo)
{
    const std::string file = path("claims.rps");
    {
        ZipArchive archive;
        ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew));
        archive.add("manifest.xml", QByteArray(5000, 'm'));
        ASSERT_TRUE(archive.close());
    }
    const QByteArray honest = readFile(file);
    QByteArray zip = honest;
    claimSize(zip, 0xfffffff0u);
    Testing::writeFile(file, zip);
    EXPECT_FALSE(anyReadSucceeds(file)) << "an entry shorter than it claims is refused";

    // Where an allocation of the claimed size fails, it ends the process.
    // Sanitizers reserve their shadow memory up front and cannot run so.
#if !defined(__SANITIZE_ADDRESS__)
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(readsWithinAGigabyteMore(file) ? 1 : 0), ::testing::ExitedWithCode(0), "");
#endif

    zip = honest;
    claimSize(zip, 10);
    Testing::writeFile(file, zip);
    EXPECT_FALSE(anyReadSucceeds(file)) << "an entry longer than it claims is refused";

    Testing::writeFile(file, honest);
    EXPECT_TRUE(anyReadSucceeds(file));
}
