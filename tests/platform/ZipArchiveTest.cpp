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

    static QByteArray entry(const std::string& file, const std::string& name)
    {
        QByteArray bytes("not read");
        std::string error;
        EXPECT_TRUE(ZipArchive::readEntry(file, name, bytes, error)) << name << ": " << error;
        return bytes;
    }

    QTemporaryDir m_dir;
};

} // namespace

// Adding, replacing (an empty entry is a real one), removing, and the
// writer's close and reopen every 100 additions: what is written reads back.
TEST_F(ZipArchiveTest, EntriesSurviveCloseReopenAndRemoval)
{
    ZipArchive archive;
    ASSERT_TRUE(archive.open(path("empty.rps"), ZipArchive::CreateNew));
    EXPECT_TRUE(archive.close());
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path("empty.rps")))) << "an empty archive leaves no file";

    const std::string file = path("icons \u00fc.rps");
    ASSERT_TRUE(archive.open(file, ZipArchive::CreateNew)) << archive.errorString();
    EXPECT_TRUE(archive.add("icons/Signals/Sine_20Wave.svg", "<svg/>"));
    EXPECT_TRUE(archive.add("icons/Gr\u00f6\u00dfe.svg", QByteArray(5000, 'x')));
    EXPECT_TRUE(archive.add("icons/none.svg", QByteArray()));
    for (int i = 0; i < 250; ++i) {
        archive.add("m/" + std::to_string(i) + ".xml", QByteArray::number(i));
        if (i % 100 == 99) {
            ASSERT_TRUE(archive.close());
            ASSERT_TRUE(archive.open(file, ZipArchive::OpenExisting));
        }
    }
    EXPECT_TRUE(archive.remove(archive.find("m/7.xml")));
    EXPECT_FALSE(archive.exists("m/7.xml"));
    EXPECT_TRUE(archive.add("icons/Signals/Sine_20Wave.svg", QByteArray())) << "adding replaces";
    ASSERT_TRUE(archive.close());
    EXPECT_FALSE(archive.isOpened());

    ASSERT_TRUE(archive.open(file, ZipArchive::ReadOnly));
    const std::vector<std::string> names = archive.entryNames();
    ASSERT_EQ(names.size(), 252u);
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.begin() + 4),
              (std::vector<std::string>{"icons/Signals/Sine_20Wave.svg", "icons/Gr\u00f6\u00dfe.svg", "icons/none.svg",
                                        "m/0.xml"}));
    archive.close();
    EXPECT_EQ(entry(file, "icons/Gr\u00f6\u00dfe.svg"), QByteArray(5000, 'x'));
    EXPECT_TRUE(entry(file, "icons/none.svg").isEmpty());
    EXPECT_TRUE(entry(file, "icons/Signals/Sine_20Wave.svg").isEmpty());
    EXPECT_EQ(entry(file, "m/0.xml"), "0") << "entries added before a reopen remain";
    EXPECT_EQ(entry(file, "m/249.xml"), "249");

    QByteArray bytes;
    std::string error;
    EXPECT_FALSE(ZipArchive::readEntry(file, "m/7.xml", bytes, error));
    EXPECT_NE(error.find("m/7.xml"), std::string::npos);
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
    EXPECT_FALSE(archive.add("x", "1"));
    QByteArray bytes("left over");
    EXPECT_FALSE(archive.read(archive.find("x"), bytes));
    EXPECT_TRUE(bytes.isEmpty());
    EXPECT_FALSE(archive.remove(archive.find("x")));
    EXPECT_FALSE(archive.close());
    EXPECT_EQ(readFile(garbage).left(4), QByteArray("PK\x03\x04"));
    std::string error;
    EXPECT_FALSE(ZipArchive::readEntry(garbage, "x", bytes, error));
    EXPECT_FALSE(error.empty());

    ASSERT_TRUE(archive.open(garbage, ZipArchive::CreateNew)) << "a new archive replaces a damaged file";
    archive.add("fresh", "1");
    ASSERT_TRUE(archive.close());
    EXPECT_EQ(entry(garbage, "fresh"), "1");
}

// A close writes the archive into the file it opened rather than into a new
// file renamed over it: freeing an inode at each of the writer's reopenings
// made generation slow on a file system without a journal.
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

    // Changes at the front shift everything behind them and shrink the file.
    const qint64 before = QFile(QString::fromStdString(file)).size();
    ASSERT_TRUE(archive.open(file, ZipArchive::OpenExisting)) << archive.errorString();
    ASSERT_TRUE(archive.remove(archive.find("i/0.svg")));
    archive.add("i/1.svg", "short");
    ASSERT_TRUE(archive.close());
    EXPECT_EQ(inode(file), first);
    EXPECT_LT(QFile(QString::fromStdString(file)).size(), before);

    ZipArchive check;
    ASSERT_TRUE(check.open(file, ZipArchive::OpenExisting)) << check.errorString();
    EXPECT_EQ(check.entryNames(), (std::vector<std::string>{"i/1.svg", "i/2.svg"}));
    check.close();
    EXPECT_EQ(entry(file, "i/1.svg"), "short");
    EXPECT_EQ(entry(file, "i/2.svg"), QByteArray(2000, 'c'));
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
