// One writable store shared by several tdlb processes, as two host sessions
// of one user share it: writers take turns through the store's lock, readers
// answer right or fail loudly, and what the environment refuses (a
// preferences directory that can't be made, a full disk) is said with its
// reason and repaired by the next run.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>

#include <set>

#include <sys/mount.h>
#include <unistd.h>

namespace LibraryBrowser::Testing {
namespace {

const QString Marker = "Zqx";

class TdlbSharedStoreTest : public UpdatedTdlbTest {
protected:
    // Adds a block named by the round to each library, dated a minute ahead
    // so that the store's date test can't miss it.
    std::set<QString> addMarkers(int round, std::set<QString> names = {})
    {
        for (const QString library : {"wavecraft/wavecraft", "kinetics/kinetics", "arithmetica/arithmetica"}) {
            const std::string file = (tdlb.root() + "/toolbox/" + library + ".tdlib.json").toStdString();
            const QString name = QString("%1 %2 %3").arg(Marker).arg(round).arg(library.section('/', 0, 0));
            const QByteArray block = "{\"name\": \"" + name.toUtf8() + "\", \"type\": \"Block\"},";
            writeFile(file, readFile(file).replace("\"blocks\": [", "\"blocks\": [" + block));
            setModified(file, QDateTime::currentDateTime().addSecs(60 * (round + 1)));
            names.insert(name);
        }
        return names;
    }

    // The names of the blocks a search finds, with where + search --json Marker.
    static std::set<QString> markersFound(const QStringList& where)
    {
        const TdlbResult search = TdlbProcess::runRaw(where + QStringList{"search", "--json", Marker});
        EXPECT_EQ(search.exitCode, 0) << qPrintable(search.err);
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
        std::unique_ptr<QProcess> updates[3];
        for (auto& process : updates)
            process = TdlbProcess::start(tdlb.withRoot({"update"}));
        for (auto& process : updates) {
            const TdlbResult update = TdlbProcess::finish(*process);
            EXPECT_TRUE(!update.crashed && update.exitCode == 0) << "round " << round << ": " << qPrintable(update.err);
        }
        EXPECT_EQ(markersFound(tdlb.withRoot({})), expected) << "round " << round;
    }
}

// A process that finds the store locked says whose lock it waits for, and
// goes on once it is free; the lock of a process that was killed is free.
TEST_F(TdlbSharedStoreTest, AWaiterNamesTheOwnerAndAKilledOwnersLockIsFree)
{
    const QString store = tdlb.preferences() + "/td_library_browser_repos";
    const auto holder = [&](const QString& seconds) {
        auto process = std::make_unique<QProcess>();
        const char* script = "import fcntl, os, sys, time; f = open(sys.argv[1], 'a+'); fcntl.flock(f, fcntl.LOCK_EX); "
                             "f.write('process %d (python3) of user u on host h' % os.getpid()); f.flush(); "
                             "print('held', flush=True); time.sleep(float(sys.argv[2]))";
        process->start("/usr/bin/python3", {"-c", script, store + "/.lbstore.lock", seconds});
        EXPECT_TRUE(process->waitForReadyRead(10000) && process->readLine().trimmed() == "held");
        return process;
    };
    auto owner = holder("2");
    QElapsedTimer waited;
    waited.start();
    const QString waiting = QString("Waiting for the repository store %1, locked by process %2 (python3)")
                                .arg(QFileInfo(store).canonicalFilePath()).arg(owner->processId());
    EXPECT_EQ(ok({"update"}).err.count(waiting), 1) << qPrintable(waiting);
    EXPECT_GE(waited.elapsed(), 1500) << "the update must have waited for the owner";
    owner->waitForFinished();
    auto killed = holder("60");
    killed->kill();
    killed->waitForFinished();
    EXPECT_FALSE(ok({"update"}).err.contains("Waiting"));
}

// Preferences that can't be made: every command reads the shipped store as
// it is, says once that nothing can be written, and writes nothing.
TEST_F(TdlbSharedStoreTest, PreferencesThatCantBeMadeReadTheShippedStore)
{
    const std::string blocker = (tdlb.preferences() + "/a file").toStdString();
    writeFile(blocker, "not a directory");
    const QStringList where{"--root", tdlb.root(), "--prefdir", QString::fromStdString(blocker) + "/prefs"};
    const TdlbResult list = TdlbProcess::runRaw(where + QStringList{"list", "--json"});
    const TdlbResult update = TdlbProcess::runRaw(where + QStringList{"update"});
    EXPECT_EQ(list.json()["products"], tdlb.run({"list", "--json"}).json()["products"]);
    EXPECT_TRUE(update.exitCode == 0 && list.err.count("can't be written") == 1 &&
                (update.out + update.err).count("can't be written") == 1)
        << qPrintable(list.err + update.out + update.err);
    expectRuns(where, {{{"search", "Sine"}, 0, {"Sine Wave"}},
                       {{"generate", "--mode", "Regenerate"}, 1, {}, {"Nothing can be written"}}});
    EXPECT_EQ(readFile(blocker), "not a directory");
}

// A full disk: the failed run names the system's reason; once there is room
// the next update completes the store without a regeneration by hand.
TEST_F(TdlbSharedStoreTest, AFullDiskGivesTheReasonAndTheNextUpdateRepairs)
{
    QTemporaryDir mountPoint;
    const QByteArray target = QFile::encodeName(mountPoint.path());
    if (::geteuid() != 0 || ::mount("tdlbfull", target.constData(), "tmpfs", 0, "size=2m") != 0)
        GTEST_SKIP() << "cannot mount a small file system here (root needed)";
    const auto cleanup = std::shared_ptr<void>(nullptr, [&](void*) { ::umount2(target.constData(), MNT_DETACH); });
    const QStringList where{"--root", tdlb.root(), "--prefdir", mountPoint.path() + "/prefs"};
    ASSERT_EQ(TdlbProcess::runRaw(where + QStringList{"update"}).exitCode, 0);
    const std::set<QString> expected = addMarkers(0);
    // All but a few kilobytes taken.
    QFile filler(mountPoint.path() + "/filler");
    ASSERT_TRUE(filler.open(QIODevice::WriteOnly));
    while (filler.write(QByteArray(4096, 'x')) == 4096 && filler.flush()) {
    }
    filler.close();
    const TdlbResult full = TdlbProcess::runRaw(where + QStringList{"update"});
    EXPECT_TRUE(full.exitCode != 0 && (full.out + full.err).contains("No space left on device"))
        << qPrintable(full.out + full.err);
    filler.remove();
    expectRuns(where, {{{"update"}}});
    EXPECT_EQ(markersFound(where), expected);
}

} // namespace
} // namespace LibraryBrowser::Testing
