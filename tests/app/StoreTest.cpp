// A store whose data is damaged repairs itself: the next update finds the
// damage, says so in one warning, generates the product again, and every
// object is found as before. A damaged shipped store is never written.
// One writable store shared by several tdlb processes, as two host sessions
// of one user share it: writers take turns through the store's lock, readers
// answer right or fail loudly, and a preferences directory that can't be
// made leaves the shipped store to answer.

#include "TdlbProcess.h"

#include "model/LibraryImpl.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "platform/ZipArchive.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QtEndian>

#include <functional>
#include <set>

namespace LibraryBrowser::Testing {
namespace {

class TdlbSelfRepairTest : public UpdatedTdlbTest {
protected:
    void SetUp() override
    {
        UpdatedTdlbTest::SetUp();
        // Wavecraft changes after the shipped store was made: the writable
        // store takes it over, and the shipped copy is out of date.
        const std::string library = (tdlb.root() + "/toolbox/wavecraft/wavecraft.tdlib.json").toStdString();
        writeFile(library, readFile(library).replace("Produces a sinusoid", "Makes a sinusoid"));
        setModified(library, QDateTime::currentDateTime().addSecs(60));
        ok({"update"});
        everything = ok({"tree"});
        ASSERT_TRUE(everything.out.contains("wavecraft/Sources")) << qPrintable(everything.out);
    }

    // The one file below the store, the writable one unless named, whose name ends so.
    std::string file(const QString& ending, QString store = {}) const
    {
        store = store.isEmpty() ? writable : store;
        std::string found;
        for (const auto& [path, bytes] : snapshot(store.toStdString()))
            if (path.endsWith(ending))
                found = (store + "/" + path).toStdString();
        EXPECT_FALSE(found.empty()) << qPrintable(ending);
        return found;
    }

    // The tree is whole again and reads without an error, the shipped store untouched.
    void expectWholeTree(const std::map<QString, QByteArray>& shippedBefore) const
    {
        const TdlbResult tree = ok({"tree"});
        EXPECT_TRUE(tree.out == everything.out && !tree.err.contains("rror")) << qPrintable(tree.out + tree.err);
        EXPECT_TRUE(snapshot(shipped.toStdString()) == shippedBefore) << "the shipped store is never written";
    }

    const QString shipped = tdlb.root() + "/toolbox/tandril/tandril/private/td_library_browser_repos";
    const QString writable = tdlb.preferences() + "/td_library_browser_repos";
    TdlbResult everything;
};

// Changes one byte in the middle of the stored data of every entry but the
// one whose name ends so (the product's own manifest, which a cheaper check
// finds): the zip directory stays as it was, so only a read of the entry
// finds the damage, by its checksum.
void changeBytesInsideEntries(const std::string& archivePath, const std::string& spared)
{
    QByteArray bytes = readFile(archivePath);
    const auto field = [&](int at) { return int(qFromLittleEndian<quint16>(bytes.constData() + at)); };
    int changed = 0;
    for (int at = bytes.indexOf("PK\x03\x04"); at >= 0;) {
        const int nameSize = field(at + 26);
        const int dataSize = int(qFromLittleEndian<quint32>(bytes.constData() + at + 18));
        const int data = at + 30 + nameSize + field(at + 28);
        if (dataSize > 0 && !bytes.mid(at + 30, nameSize).endsWith(spared.c_str())) {
            bytes[data + dataSize / 2] = char(bytes[data + dataSize / 2] ^ 0x55);
            ++changed;
        }
        at = bytes.indexOf("PK\x03\x04", data + dataSize);
    }
    ASSERT_GT(changed, 0);
    writeFile(archivePath, bytes);
}

// The product's own manifest entry, made a document of another schema.
void foreignRootManifest(const std::string& archivePath, const std::string& topLevelPath)
{
    const ModelPtr topLevel = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(topLevel->load(topLevelPath, errors)) << errors.message();
    std::string entry;
    for (TandrilObjectImpl* node : topLevel->getNodes())
        if (auto* library = dynamic_cast<LibraryImpl*>(node);
            library && library->getIsProduct() && library->getPath() == "wavecraft")
            entry = library->getManifestFileSpec();
    ZipArchive archive;
    ASSERT_TRUE(archive.open(archivePath, ZipArchive::OpenExisting)) << archive.errorString();
    QByteArray bytes;
    ASSERT_TRUE(archive.read(archive.find(entry), bytes)) << entry;
    ASSERT_TRUE(bytes.contains("signature=\"82d9731a"));
    ASSERT_TRUE(archive.add(entry, bytes.replace("signature=\"82d9731a", "signature=\"0000731a")));
    ASSERT_TRUE(archive.close());
}

TEST_F(TdlbSelfRepairTest, DamagedDataOfEitherStoreIsGeneratedAgainByTheNextUpdate)
{
    const auto remove = [](const std::string& path) { QFile::remove(QString::fromStdString(path)); };
    const auto truncate = [](const std::string& path, int size) { writeFile(path, readFile(path).left(size)); };
    // Each with whether the update counts a product repaired: a damaged top level is made anew with the store.
    const std::pair<std::function<void()>, bool> damages[] = {
        {[&] { truncate(file("lb_wavecraft_manifests_repos.rps"), 200); }, true},
        {[&] { writeFile(file("lb_wavecraft_icons_repos.rps"), QByteArray(4000, '\x5a')); }, true},
        {[&] { remove(file("lb_wavecraft_manifests_repos.rps")); }, true},
        {[&] { remove(file("lb_kinetics_manifests_repos.rps")); }, true},
        {[&] { foreignRootManifest(file("lb_wavecraft_manifests_repos.rps"), file("lbtoplevelmanifest.xml")); }, true},
        {[&] { QDir(QFileInfo(file("lb_wavecraft_icons_repos.rps").c_str()).path()).removeRecursively(); }, true},
        {[&] { truncate(file("lbtoplevelmanifest.xml"), 300); }, false},
        // A damaged shipped archive is never written: its product moves to the writable store.
        {[&] { writeFile(file("lb_arithmetica_manifests_repos.rps", shipped), QByteArray(3000, '\x5a')); }, true},
    };
    for (std::size_t i = 0; i < std::size(damages); ++i) {
        SCOPED_TRACE("damage " + std::to_string(i));
        damages[i].first();
        const auto shippedBefore = snapshot(shipped.toStdString());
        const QString update = ok({"update"}).out;
        EXPECT_TRUE(update.contains("is damaged and will be")) << qPrintable(update);
        const bool repaired = damages[i].second;
        EXPECT_TRUE(update.contains("Repaired product") == repaired && update.contains(", 1 repaired\n") == repaired)
            << qPrintable(update);
        expectWholeTree(shippedBefore);
        // The edited text, also where another product references it: never the shipped store's older copy.
        for (const char* block : {"wavecraft/Sources/Sine Wave", "kinetics/Test Signals/Sine Wave"}) {
            const QString text = tdlb.run({"show", "--json", block}).json()["description"].toString();
            EXPECT_TRUE(text.startsWith("Makes a sinusoid")) << block << ": " << qPrintable(text);
        }
        EXPECT_FALSE(tdlb.run({"update"}).out.contains("damaged")) << "repaired for good";
    }
    EXPECT_FALSE(file("lb_arithmetica_manifests_repos.rps").empty());

    // A damaged shipped top level stays, and so does its error: the root is never repaired here.
    truncate(file("lbtoplevelmanifest.xml", shipped), 400);
    ASSERT_TRUE(QDir(writable).removeRecursively());
    const auto shippedBefore = snapshot(shipped.toStdString());
    expectRuns(tdlb.withRoot({}),
               {{{"update"}, 1, {"The shipped top level manifest"}, {"The top level manifest file looks corrupted"}}});
    EXPECT_TRUE(tdlb.run({"tree"}).out == everything.out && snapshot(shipped.toStdString()) == shippedBefore);
}

// Bytes changed inside an entry, the archive's directory intact: a read of
// that entry finds it and says so; the next update, which also reads whole
// every archive whose size or date changed since it was written or read,
// repairs the product in the writable store, whichever store was damaged.
TEST_F(TdlbSelfRepairTest, AnEntryChangedInsideItsArchiveIsToldByTheReadAndRepaired)
{
    // Each with a read that meets the damage: the product's tree, or an icon.
    const struct {
        QString store;
        QString archive;
        QStringList read;
    } cases[] = {{writable, "lb_wavecraft_manifests_repos.rps", {"tree", "wavecraft"}},
                 {writable, "lb_wavecraft_icons_repos.rps", {"show", "wavecraft/Sources/Sine Wave"}},
                 {shipped, "lb_arithmetica_manifests_repos.rps", {"tree", "arithmetica"}}};
    for (const auto& damage : cases) {
        SCOPED_TRACE(qPrintable(damage.archive));
        const std::string archive = file(damage.archive, damage.store);
        // Size and date kept: damage that no stamp shows, which only the read of the entry meets.
        const QDateTime modified = QFileInfo(QString::fromStdString(archive)).lastModified();
        changeBytesInsideEntries(archive,
                                 damage.store == shipped ? "lbarithmeticamanifest.xml" : "lbwavecraftmanifest.xml");
        setModified(archive, modified);
        const auto shippedBefore = snapshot(shipped.toStdString());
        expectRuns(tdlb.withRoot({}), {{damage.read, 0, {}, {"??? **Error**", "shown above"}}, {{"update"}}});
        expectWholeTree(shippedBefore);
    }
    // With no read between, the update itself finds the changed archive.
    changeBytesInsideEntries(file("lb_wavecraft_icons_repos.rps"), "lbwavecraftmanifest.xml");
    EXPECT_TRUE(tdlb.run({"update"}).out.contains("Repaired product Wavecraft Signals"));
    EXPECT_FALSE(tdlb.run({"show", "wavecraft/Sources/Sine Wave"}).err.contains("rror"));
}

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

// A process that finds the store locked says whose lock it waits for, and
// goes on once it is free; the lock of a process that was killed is free;
// updates started together take turns.
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

    // Three updates after library edits, started together, take turns: each
    // ends well and the store holds every edit, round after round.
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

} // namespace
} // namespace LibraryBrowser::Testing
