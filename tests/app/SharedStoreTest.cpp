// One writable store shared by several tdlb processes, as two host sessions
// of one user share it: writers take turns through the store's lock, readers
// answer right or fail loudly, and what the environment refuses (a
// preferences directory that can't be made, a full disk) is said with its
// reason and repaired by the next run.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QProcess>
#include <QSysInfo>

#include <memory>
#include <set>
#include <vector>

#include <sys/mount.h>
#include <unistd.h>

namespace LibraryBrowser::Testing {
namespace {

const QStringList Libraries{"wavecraft/wavecraft", "kinetics/kinetics", "arithmetica/arithmetica"};
const QString Marker = "Zqx";

class TdlbSharedStoreTest : public UpdatedTdlbTest {
protected:
    QString writableStore() const { return tdlb.preferences() + "/td_library_browser_repos"; }

    // Adds a block named by the round to each library, dated a minute ahead
    // so that the store's date test can't miss it.
    std::set<QString> addMarkers(int round, std::set<QString> names = {})
    {
        for (const QString& library : Libraries) {
            const std::string file = (tdlb.root() + "/toolbox/" + library + ".tdlib.json").toStdString();
            const QString name = QString("%1 %2 %3").arg(Marker).arg(round).arg(library.section('/', 0, 0));
            QByteArray text = readFile(file);
            const QByteArray block = "{\"name\": \"" + name.toUtf8() + "\", \"type\": \"Block\"},";
            text.replace("\"blocks\": [", "\"blocks\": [" + block);
            writeFile(file, text);
            setModified(file, QDateTime::currentDateTime().addSecs(60 * (round + 1)));
            names.insert(name);
        }
        return names;
    }

    static std::set<QString> hitNames(const TdlbResult& search)
    {
        std::set<QString> names;
        for (const QJsonValue& product : search.json()["products"].toArray())
            for (const QJsonValue& hit : product["hits"].toArray())
                names.insert(hit["path"].toString().section('/', -1));
        return names;
    }
};

// Three updates after library edits, started together, take turns: each
// ends well and the store holds every edit, round after round.
TEST_F(TdlbSharedStoreTest, UpdatesStartedTogetherAllSucceedAndKeepEveryEdit)
{
    std::set<QString> expected;
    for (int round = 0; round < 4; ++round) {
        expected = addMarkers(round, expected);
        std::vector<std::unique_ptr<QProcess>> updates;
        for (int n = 0; n < 3; ++n)
            updates.push_back(TdlbProcess::start(tdlb.withRoot({"update"}), TdlbProcess::environment()));
        for (auto& process : updates) {
            const TdlbResult update = TdlbProcess::finish(*process);
            EXPECT_FALSE(update.crashed);
            EXPECT_EQ(update.exitCode, 0) << "round " << round << ": " << qPrintable(update.err);
        }
        const TdlbResult search = ok({"search", "--json", Marker});
        EXPECT_EQ(hitNames(search), expected) << "round " << round;
    }
}

// A process that finds the store locked says whose lock it waits for, and
// goes on once it is free; the lock of a process that was killed is free.
TEST_F(TdlbSharedStoreTest, AWaiterNamesTheOwnerAndAKilledOwnersLockIsFree)
{
    const QString lockPath = writableStore() + "/.lbstore.lock";
    const auto holder = [&](const QString& seconds) {
        auto process = std::make_unique<QProcess>();
        process->start("/usr/bin/python3",
                       {"-c", "import fcntl, os, sys, time\n"
                              "f = open(sys.argv[1], 'a+')\n"
                              "fcntl.flock(f, fcntl.LOCK_EX)\n"
                              "f.write('process %d (python3) of user u on host h' % os.getpid()); f.flush()\n"
                              "print('held', flush=True)\n"
                              "time.sleep(float(sys.argv[2]))\n",
                        lockPath, seconds});
        EXPECT_TRUE(process->waitForReadyRead(10000));
        EXPECT_EQ(process->readLine().trimmed(), "held");
        return process;
    };
    {
        auto owner = holder("2");
        QElapsedTimer waited;
        waited.start();
        const TdlbResult update = ok({"update"});
        EXPECT_EQ(update.err.count(QString("Waiting for the repository store %1, locked by process %2 (python3)")
                                       .arg(QFileInfo(writableStore()).canonicalFilePath())
                                       .arg(owner->processId())),
                  1)
            << qPrintable(update.err);
        EXPECT_GE(waited.elapsed(), 1500) << "the update must have waited for the owner";
        owner->waitForFinished();
    }
    auto killed = holder("60");
    killed->kill();
    killed->waitForFinished();
    const TdlbResult update = ok({"update"});
    EXPECT_FALSE(update.err.contains("Waiting")) << qPrintable(update.err);
}

// Preferences that can't be made: every command reads the shipped store as
// it is, says once that nothing can be written, and writes nothing.
TEST_F(TdlbSharedStoreTest, PreferencesThatCantBeMadeReadTheShippedStore)
{
    const TdlbResult shippedList = tdlb.run({"list", "--json"});
    const std::string blocker = (tdlb.preferences() + "/a file").toStdString();
    writeFile(blocker, "not a directory");
    const QStringList where{"--root", tdlb.root(), "--prefdir", QString::fromStdString(blocker) + "/prefs"};

    const TdlbResult list = TdlbProcess::runRaw(where + QStringList{"list", "--json"});
    EXPECT_EQ(list.exitCode, 0) << qPrintable(list.err);
    EXPECT_EQ(list.json()["products"], shippedList.json()["products"]);
    EXPECT_EQ(list.err.count("can't be written"), 1) << qPrintable(list.err);

    const TdlbResult search = TdlbProcess::runRaw(where + QStringList{"search", "Sine"});
    EXPECT_EQ(search.exitCode, 0) << qPrintable(search.err);
    EXPECT_TRUE(search.out.contains("Sine Wave")) << qPrintable(search.out);

    const TdlbResult update = TdlbProcess::runRaw(where + QStringList{"update"});
    EXPECT_EQ(update.exitCode, 0) << qPrintable(update.err);
    EXPECT_EQ((update.out + update.err).count("can't be written"), 1) << qPrintable(update.out);
    const TdlbResult generate = TdlbProcess::runRaw(where + QStringList{"generate", "--mode", "Regenerate"});
    EXPECT_EQ(generate.exitCode, 1);
    EXPECT_TRUE(generate.err.contains("Nothing can be written")) << qPrintable(generate.err);
    EXPECT_EQ(readFile(blocker), "not a directory");
}

// A full disk: the failed run names the system's reason; once there is room
// the next update completes the store without a regeneration by hand.
TEST_F(TdlbSharedStoreTest, AFullDiskGivesTheReasonAndTheNextUpdateRepairs)
{
    QTemporaryDir mountPoint;
    ASSERT_TRUE(mountPoint.isValid());
    const QByteArray target = QFile::encodeName(mountPoint.path());
    if (::geteuid() != 0 || ::mount("tdlbfull", target.constData(), "tmpfs", 0, "size=2m") != 0)
        GTEST_SKIP() << "cannot mount a small file system here (root needed)";
    const QStringList where{"--root", tdlb.root(), "--prefdir", mountPoint.path() + "/prefs"};
    const auto cleanup = std::shared_ptr<void>(nullptr, [&](void*) { ::umount2(target.constData(), MNT_DETACH); });

    ASSERT_EQ(TdlbProcess::runRaw(where + QStringList{"update"}).exitCode, 0);
    const std::set<QString> expected = addMarkers(0);
    // All but a few kilobytes taken.
    const std::string filler = (mountPoint.path() + "/filler").toStdString();
    {
        QFile file(QString::fromStdString(filler));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const QByteArray block(4096, 'x');
        while (file.write(block) == block.size() && file.flush()) {
        }
    }
    const TdlbResult full = TdlbProcess::runRaw(where + QStringList{"update"});
    EXPECT_NE(full.exitCode, 0);
    EXPECT_TRUE(full.err.contains("No space left on device") || full.out.contains("No space left on device"))
        << qPrintable(full.out) << qPrintable(full.err);

    QFile::remove(QString::fromStdString(filler));
    const TdlbResult repaired = TdlbProcess::runRaw(where + QStringList{"update"});
    EXPECT_EQ(repaired.exitCode, 0) << qPrintable(repaired.err);
    const TdlbResult search = TdlbProcess::runRaw(where + QStringList{"search", "--json", Marker});
    EXPECT_EQ(search.exitCode, 0) << qPrintable(search.err);
    EXPECT_EQ(hitNames(search), expected);
}

} // namespace
} // namespace LibraryBrowser::Testing
