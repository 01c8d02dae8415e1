#include "platform/ZipArchive.h"
#include "platform/ZipEntryIndex.h"
#include "support/Files.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

using namespace LibraryBrowser;
using Testing::readFile;
using Testing::writeFile;

namespace {

class ZipArchiveTest : public ::testing::Test {
protected:
    std::string path(const char* name) const { return m_dir.filePath(QString::fromUtf8(name)).toStdString(); }

    // A new archive of the entries, in the order given.
    std::string archiveOf(const char* name, const std::vector<std::pair<std::string, QByteArray>>& entries)
    {
        ZipArchive archive;
        EXPECT_TRUE(archive.open(path(name), ZipArchive::CreateNew));
        for (const auto& [entryName, bytes] : entries)
            EXPECT_TRUE(archive.add(entryName, bytes));
        EXPECT_TRUE(archive.close()) << archive.errorString();
        return path(name);
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

ino_t inode(const std::string& file)
{
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? status.st_ino : 0;
}

} // namespace

// Adding, replacing (an empty entry is a real one), removing, and the
// writer's close and reopen every 100 additions: what is written reads back.
// A close writes into the file it opened rather than a new one renamed over
// it (freeing an inode at each reopening made generation slow on a file
// system without a journal), and an archive dropped unclosed changes nothing.
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
    ASSERT_TRUE(archive.close());
    const ino_t first = inode(file);
    const qint64 size = QFile(QString::fromStdString(file)).size();
    ASSERT_TRUE(archive.open(file, ZipArchive::OpenExisting));
    EXPECT_TRUE(archive.remove(archive.find("m/7.xml")));
    EXPECT_FALSE(archive.exists("m/7.xml"));
    EXPECT_TRUE(archive.add("icons/Signals/Sine_20Wave.svg", QByteArray())) << "adding replaces";
    ASSERT_TRUE(archive.close());
    EXPECT_FALSE(archive.isOpened());
    EXPECT_NE(first, ino_t(0));
    EXPECT_EQ(inode(file), first);
    EXPECT_LT(QFile(QString::fromStdString(file)).size(), size) << "changes at the front shrink the file";

    ASSERT_TRUE(archive.open(file, ZipArchive::ReadOnly));
    const std::vector<std::string> names = archive.entryNames();
    ASSERT_EQ(names.size(), 252u);
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.begin() + 4),
              (std::vector<std::string>{"icons/Signals/Sine_20Wave.svg", "icons/Gr\u00f6\u00dfe.svg", "icons/none.svg",
                                        "m/0.xml"}));
    archive.close();
    EXPECT_EQ(entry(file, "icons/Gr\u00f6\u00dfe.svg"), QByteArray(5000, 'x'));
    EXPECT_TRUE(entry(file, "icons/none.svg").isEmpty() && entry(file, "icons/Signals/Sine_20Wave.svg").isEmpty());
    EXPECT_EQ(entry(file, "m/0.xml") + entry(file, "m/249.xml"), "0249") << "entries added before a reopen remain";
    QByteArray bytes;
    std::string error;
    EXPECT_FALSE(ZipArchive::readEntry(file, "m/7.xml", bytes, error));
    EXPECT_NE(error.find("m/7.xml"), std::string::npos);

    const QByteArray before = readFile(file);
    {
        ZipArchive dropped;
        ASSERT_TRUE(dropped.open(file, ZipArchive::OpenExisting));
        dropped.add("lost", "2");
    }
    EXPECT_EQ(readFile(file), before) << "dropped without a close";
}

TEST_F(ZipArchiveTest, DamagedOrMissingFilesLeaveItClosedAndHarmless)
{
    ZipArchive archive;
    EXPECT_FALSE(archive.open(path("missing.rps"), ZipArchive::OpenExisting));
    EXPECT_FALSE(archive.errorString().empty());

    // Everything on a closed archive answers "nothing".
    EXPECT_FALSE(archive.add("x", "1"));
    QByteArray bytes("left over");
    EXPECT_FALSE(archive.read(archive.find("x"), bytes));
    EXPECT_TRUE(bytes.isEmpty());
    EXPECT_FALSE(archive.remove(archive.find("x")) || archive.close());

    // Reopening what the same object has just written skips the consistency
    // check, but only while the file holds exactly those bytes: the first
    // local header names "a.xml" right after its 30 fixed bytes, while the
    // central directory still says "a.xml".
    const std::string damaged = path("damaged.rps");
    ASSERT_TRUE(archive.open(damaged, ZipArchive::CreateNew));
    archive.add("a.xml", "<a/>");
    archive.add("b.xml", "<b/>");
    ASSERT_TRUE(archive.close());
    QByteArray changed = readFile(damaged);
    ASSERT_EQ(changed.mid(30, 5), "a.xml");
    changed[30] = 'x';
    writeFile(damaged, changed);
    EXPECT_FALSE(archive.open(damaged, ZipArchive::OpenExisting));
    EXPECT_FALSE(archive.errorString().empty());
    EXPECT_EQ(readFile(damaged), changed) << "a failed open leaves the file alone";
}

namespace {

// Sets the uncompressed size that the local and the central header of the
// archive's only entry claim.
QByteArray claimingSize(QByteArray zip, quint32 size)
{
    for (const qsizetype at : {zip.indexOf("PK\x03\x04") + 22, zip.indexOf("PK\x01\x02") + 24})
        for (int i = 0; i < 4; ++i)
            zip[at + i] = char((size >> (8 * i)) & 0xff);
    return zip;
}

// Reads the archive's only entry in every way the store does; true if any
// of them gave bytes.
bool anyReadSucceeds(const std::string& file)
{
    bool read = false;
    for (ZipArchive::OpenMode mode : {ZipArchive::ReadOnly, ZipArchive::OpenExisting}) {
        ZipArchive archive;
        QByteArray bytes;
        if (archive.open(file, mode))
            read = archive.read(archive.find("manifest.xml"), bytes) || !bytes.isEmpty() || read;
    }
    return read;
}

} // namespace

// Found by fuzzing: the size an entry's header claims was allocated before
// a byte was read, so a few kilobytes claiming 4 GiB took 4 GiB.
TEST_F(ZipArchiveTest, AnEntryIsReadOnlyAsFarAsItsBytesReallyGo)
{
    const std::string file = archiveOf("claims.rps", {{"manifest.xml", QByteArray(5000, 'm')}});
    const QByteArray honest = readFile(file);
    writeFile(file, claimingSize(honest, 0xfffffff0u));
    EXPECT_FALSE(anyReadSucceeds(file)) << "an entry shorter than it claims is refused";

    // Where an allocation of the claimed size fails, it ends the process; so
    // the read runs in a child whose address space is held to a gigabyte above
    // what it uses. Sanitizers reserve their shadow memory up front and cannot
    // run so.
#if !defined(__SANITIZE_ADDRESS__)
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto boundedRead = [&] {
        long pages = 0;
        QFile statm(QStringLiteral("/proc/self/statm"));
        if (statm.open(QIODevice::ReadOnly))
            pages = statm.readAll().split(' ').value(0).toLong();
        const rlim_t limit = rlim_t(pages) * rlim_t(sysconf(_SC_PAGESIZE)) + (rlim_t(1) << 30);
        const struct rlimit bound = {limit, limit};
        setrlimit(RLIMIT_AS, &bound);
        return anyReadSucceeds(file);
    };
    EXPECT_EXIT(std::exit(boundedRead() ? 1 : 0), ::testing::ExitedWithCode(0), "");
#endif

    writeFile(file, claimingSize(honest, 10));
    EXPECT_FALSE(anyReadSucceeds(file)) << "an entry longer than it claims is refused";
    writeFile(file, honest);
    EXPECT_TRUE(anyReadSucceeds(file));
}

// The index of an archive's entries (the small ones stored, the others
// deflated), as libzip wrote it and with a comment
// behind the directory's end, as a hand-made archive may have; files that are
// no archive fail to load with a reason; and each byte of the archive damaged
// in turn: the index either refuses the file, or every read gives the entry's
// true bytes or fails with a reason. Never wrong bytes, never a crash.
TEST_F(ZipArchiveTest, TheEntryIndexReadsTrueBytesOrRefusesWithAReason)
{
    QByteArray noise(3000, Qt::Uninitialized);
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    const std::vector<std::pair<std::string, QByteArray>> entries{
        {"Alpha/lbAlphamanifest.xml", QByteArray("<tdlb-manifest/>").repeated(200)},
        {"icons/Gain \u00fc.svg", "<svg/>"}, {"empty", ""}, {"noise.bin", noise}};
    const std::string file = archiveOf("archive.rps", entries);
    const QByteArray whole = readFile(file);
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

    const std::pair<const char*, QByteArray> noArchive[] = {
        {"empty file", ""},
        {"text", "this is no zip archive"},
        {"cut before the directory's end", whole.left(whole.size() - 10)},
        {"directory offset beyond the end", whole.left(whole.size() - 6) + QByteArray("\xff\xff\xff\x7f\0\0", 6)},
    };
    for (const auto& [what, bytes] : noArchive) {
        SCOPED_TRACE(what);
        writeFile(file, bytes);
        ZipEntryIndex index;
        std::string error, checkError;
        EXPECT_FALSE(index.load(file, error) || index.isLoaded() || index.size() || error.empty());
        EXPECT_FALSE(ZipEntryIndex::check(file, checkError));
        EXPECT_EQ(checkError, error);
    }
    std::string error;
    EXPECT_FALSE(ZipEntryIndex().load(path("missing.rps"), error));
    EXPECT_NE(error.find("Can't open file"), std::string::npos) << error;

    int refused = 0, failedReads = 0;
    for (qsizetype at = 0; at < whole.size(); ++at) {
        QByteArray damaged = whole;
        damaged[at] = char(damaged[at] ^ 0x5a);
        writeFile(file, damaged);
        ZipEntryIndex index;
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
