#include "repository/xmlrepository/TempDirectories.h"
#include "repository/xmlrepository/TempDirectoryOwners.h"

#include "ReadOnlyPath.h"
#include "StoreFixture.h"
#include "repository/RepositoryReport.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStorageInfo>

#include <unistd.h>
#include <utime.h>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;
using TempDirectoriesTest = Testing::StoreFixture;

// Removing what was never made does nothing; numbered directories are named
// by their use; a name keeps its directory across removals; host failures
// and a missing or unwritable system temporary directory are errors.
TEST_F(TempDirectoriesTest, HostFailuresAreErrors)
{
    removeTempDirectory(*report, 9001);
    removeDirectory(*report, path("never made"));
    EXPECT_TRUE(report->getLog().empty());
    EXPECT_TRUE(interpreter.calls().empty());
    EXPECT_TRUE(tempEntries().isEmpty());

    const auto name = [](const std::string& p) { return p.substr(p.rfind('/') + 1); };
    EXPECT_EQ(name(tempDirectory(*report, 41)).substr(0, 10), "LBwriter41");
    EXPECT_EQ(name(cacheTempDirectory(*report, 41)).substr(0, 9), "LBCache41");
    EXPECT_EQ(name(topLevelTempDirectory(*report, 41)).substr(0, 7), "LBTop41");
    EXPECT_EQ(tempEntries().size(), 3);
    removeTempDirectory(*report, 41);
    EXPECT_EQ(tempEntries().size(), 2);
    EXPECT_FALSE(exists(namedTempDirectory(*report, "LBwriter41", false)));

    const std::string first = namedTempDirectory(*report, "LB keep/me", true);
    const QRegularExpression form(QString::fromStdString("^" + tempRoot() + "/LB_20keep_2fme[0-9a-f]{32}$"));
    EXPECT_TRUE(form.match(QString::fromStdString(first)).hasMatch()) << first;
    EXPECT_TRUE(exists(first));
    EXPECT_EQ(namedTempDirectory(*report, "LB keep/me", true), first);
    writeFile(first + "/inner/file.txt", "x");
    const std::size_t calls = interpreter.calls().size();
    removeDirectory(*report, first);
    EXPECT_FALSE(exists(first));
    ASSERT_EQ(interpreter.calls().size(), calls + 1);
    EXPECT_EQ(interpreter.calls().back().inputs,
              (std::vector<HostValue>{HostValue::string("rmdir"), HostValue::string(first), HostValue::string("s")}));
    EXPECT_TRUE(logged(*report, "Action: Removing temporary directory " + first + "\n"));
    EXPECT_EQ(namedTempDirectory(*report, "LB keep/me", false), first);
    EXPECT_FALSE(exists(first)) << "made only when asked";
    EXPECT_EQ(namedTempDirectory(*report, "LB keep/me", true), first);
    EXPECT_TRUE(exists(first));
    EXPECT_FALSE(report->hasError());

    interpreter.fail("tdprivate:rmdir", "Undefined function 'tdprivate'");
    removeDirectory(*report, first);
    interpreter.answer("tdprivate:rmdir", {HostValue::logicalScalar(false), HostValue::string("Permission denied"),
                                           HostValue::string("Host:rmdir:denied")});
    removeDirectory(*report, first);
    EXPECT_TRUE(exists(first));
    qputenv("TMPDIR", QByteArray::fromStdString(path("no such tmp")));
    EXPECT_EQ(namedTempDirectory(*report, "LBgone", true), "");
    EXPECT_FALSE(exists(path("no such tmp")));
    EXPECT_EQ(errorMessages(*report),
              (Messages{"Failed to call 'rmdir' on the temporary directory " + first,
                        "Unable to remove temporary directory. The following error occurred:", "Permission denied",
                        "Unable to find the operating system temporary directory"}));

    qputenv("TMPDIR", QByteArray::fromStdString(tempRoot()));
    report = RepositoryReport::create();
    Testing::ReadOnlyPath locked(tempRoot());
    if (!locked.active())
        GTEST_SKIP() << "cannot make a path read-only here";
    EXPECT_EQ(namedTempDirectory(*report, "LBlocked", true), "");
    EXPECT_EQ(errorMessages(*report), (Messages{"Unable to create a temporary directory"}));
}

// A TMPDIR given is where the directories go. Without one they go to a memory
// file system where the machine has one, never to a directory on the disk,
// however roomy; copies made there are whole.
TEST_F(TempDirectoriesTest, TheBaseIsTheGivenDirectoryElseAMemoryFileSystem)
{
    EXPECT_EQ(privateTempBase().toStdString(), tempRoot());
    const std::string copy = namedTempDirectory(*report, "LBCopy", true) + "/copy.rps";
    writeFile(path("original.rps"), QByteArray(3 << 20, 'z') + "end");
    ASSERT_TRUE(copyToPrivateFile(path("original.rps"), copy));
    EXPECT_EQ(readFile(copy), readFile(path("original.rps")));
    EXPECT_FALSE(copyToPrivateFile(path("missing.rps"), copy));
    EXPECT_FALSE(exists(copy)) << "a failed copy leaves no file";

    const QString disk = QString::fromStdString(path("runtime-on-disk"));
    QDir().mkpath(disk);
    const QByteArray type = QStorageInfo(disk).fileSystemType();
    if (type != "tmpfs" && type != "ramfs") {
        EXPECT_EQ(memoryFileSystemBase({disk, QString::fromStdString(path("missing"))}), QString());
    }
    qunsetenv("TMPDIR");
    const QStorageInfo shm(QStringLiteral("/dev/shm"));
    if (!QFileInfo(QStringLiteral("/dev/shm")).isWritable() || shm.bytesAvailable() < (qint64(1) << 30))
        GTEST_SKIP() << "no memory file system with room here";
    EXPECT_EQ(memoryFileSystemBase({disk, QStringLiteral("/dev/shm")}), QStringLiteral("/dev/shm"));
    const QString base = privateTempBase();
    EXPECT_EQ(QStorageInfo(base).fileSystemType(), QByteArray("tmpfs")) << base.toStdString();
    const std::string made = namedTempDirectory(*report, "LBMemory", true);
    EXPECT_EQ(made.rfind(base.toStdString() + "/LBMemory", 0), 0u) << made;
}

// Left-overs of ended processes go, and unmarked ones after a while; those of
// running ones, our own, other names, new unmarked ones and other users' stay.
TEST_F(TempDirectoriesTest, LeftOversOfEndedProcessesAreRemovedAndNothingElse)
{
    QProcess ended, running;
    ended.start("sleep", {"30"});
    running.start("sleep", {"30"});
    ASSERT_TRUE(ended.waitForStarted() && running.waitForStarted());
    const QString endedPid = QString::number(ended.processId());
    ended.kill();
    ended.waitForFinished();

    const std::string mine = namedTempDirectory(*report, "LBCache7", true);
    const auto makeDirectory = [&](const char* name, const QString& owner) {
        const std::string directory = tempRoot() + "/" + name + std::string(32, 'a');
        writeFile(directory + "/cachedArchive.rps", "bytes");
        if (!owner.isNull())
            writeFile(directory + "/" + TempDirectoryOwners::OwnerFileName, owner.toUtf8());
        return directory;
    };
    const std::string gone = makeDirectory("LBwriter3", endedPid + " 1234\n");
    const std::string reused = makeDirectory("LBTop2", QString::number(getppid()) + " 1\n");
    const std::string alive = makeDirectory("LBCache9", QString::number(running.processId()) + " \n");
    const std::string unowned = makeDirectory("LBCache8", QString());
    // Unmarked for an hour: its process ended between making and marking it.
    const std::string unmarkedLong = makeDirectory("LBCache6", QString());
    const time_t hourAgo = time(nullptr) - 3600;
    const utimbuf times{hourAgo, hourAgo};
    ASSERT_EQ(::utime(unmarkedLong.c_str(), &times), 0);
    const std::string foreign = makeDirectory("LBother", endedPid);
    // Another user's, of an ended process: left to its owner, and no error.
    const std::string othersGone = makeDirectory("LBwriter4", endedPid + " 1234\n");
    const bool othersMade = ::chown(othersGone.c_str(), 65534, 65534) == 0;

    TempDirectoryOwners::removeLeftOvers(*report);
    // A running process of that id that started at another time is another process.
    for (const std::string& removed : {gone, reused, unmarkedLong})
        EXPECT_FALSE(exists(removed)) << removed;
    for (const std::string& kept : {alive, unowned, foreign, mine})
        EXPECT_TRUE(exists(kept)) << kept;
    EXPECT_TRUE(!othersMade || exists(othersGone));
    EXPECT_FALSE(report->hasError());
    running.kill();
    running.waitForFinished();
}

} // namespace
} // namespace LibraryBrowser
