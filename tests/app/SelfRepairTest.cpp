// A store whose data is damaged repairs itself: the next update finds the
// damage, says so in one warning, generates the product again, and every
// object is found as before. A damaged shipped store is never written.

#include "TdlbProcess.h"

#include "model/LibraryImpl.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "platform/ZipArchive.h"
#include "support/Files.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <functional>

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
        everything = tdlb.run({"tree"});
        ASSERT_EQ(everything.exitCode, 0) << qPrintable(everything.err);
        ASSERT_TRUE(everything.out.contains("wavecraft/Sources")) << qPrintable(everything.out);
        ASSERT_FALSE(storeFile(writableStore(), "lb_wavecraft_manifests_repos.rps").empty());
    }

    QString shippedStore() const { return tdlb.root() + "/toolbox/tandril/tandril/private/td_library_browser_repos"; }
    QString writableStore() const { return tdlb.preferences() + "/td_library_browser_repos"; }

    // The one file below the store whose name ends so.
    std::string storeFile(const QString& store, const QString& ending) const
    {
        std::string found;
        for (const auto& [file, bytes] : snapshot(store.toStdString()))
            if (file.endsWith(ending))
                found = (store + "/" + file).toStdString();
        EXPECT_FALSE(found.empty()) << qPrintable(ending);
        return found;
    }

    // Runs update and checks that it repaired the store, naming the damage
    // in a warning, and counting the product repaired unless the whole
    // store was seeded anew.
    void expectRepairedByUpdate(bool productRepaired = true)
    {
        const TdlbResult update = ok({"update"});
        EXPECT_TRUE(update.out.contains("is damaged and will be")) << qPrintable(update.out);
        EXPECT_EQ(update.out.contains("Repaired product"), productRepaired) << qPrintable(update.out);
        EXPECT_EQ(update.out.contains(", 1 repaired\n"), productRepaired) << qPrintable(update.out);
        const TdlbResult tree = ok({"tree"});
        EXPECT_EQ(tree.out, everything.out);
        EXPECT_FALSE(tree.err.contains("rror")) << qPrintable(tree.err);
        // The edited text, also where another product references it: never
        // the shipped store's older copy.
        for (const char* block : {"wavecraft/Sources/Sine Wave", "kinetics/Test Signals/Sine Wave"}) {
            const QString text = tdlb.run({"show", "--json", block}).json()["description"].toString();
            EXPECT_TRUE(text.startsWith("Makes a sinusoid")) << block << ": " << qPrintable(text);
        }
        const TdlbResult again = tdlb.run({"update"});
        EXPECT_FALSE(again.out.contains("damaged")) << "repaired for good: " << qPrintable(again.out);
    }

    TdlbResult everything;
};

QByteArray randomBytes(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(11);
    generator.fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
    return bytes;
}

// Changes one byte in the middle of the stored data of every entry but the
// one whose name ends so (the product's own manifest, which a cheaper check
// finds): the zip directory stays as it was, so only a read of the entry
// finds the damage, by its checksum.
void changeBytesInsideEntries(const std::string& archivePath, const std::string& spared)
{
    QByteArray bytes = readFile(archivePath);
    const auto field = [&](int at, int size) {
        quint32 value = 0;
        for (int i = size - 1; i >= 0; --i)
            value = (value << 8) | quint8(bytes[at + i]);
        return int(value);
    };
    const auto endsWith = [](const std::string& name, const std::string& end) {
        return name.size() >= end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0;
    };
    int changed = 0;
    int at = bytes.indexOf("PK\x03\x04");
    while (at >= 0) {
        const int nameSize = field(at + 26, 2);
        const int dataSize = field(at + 18, 4);
        const int data = at + 30 + nameSize + field(at + 28, 2);
        if (dataSize > 0 && !endsWith(bytes.mid(at + 30, nameSize).toStdString(), spared)) {
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
    ASSERT_FALSE(entry.empty());
    ZipArchive archive;
    ASSERT_TRUE(archive.open(archivePath, ZipArchive::OpenExisting)) << archive.errorString();
    QByteArray bytes;
    ASSERT_TRUE(archive.read(archive.find(entry), bytes));
    ASSERT_TRUE(bytes.contains("signature=\"82d9731a"));
    ASSERT_TRUE(archive.add(entry, bytes.replace("signature=\"82d9731a", "signature=\"0000731a")));
    ASSERT_TRUE(archive.close());
}

TEST_F(TdlbSelfRepairTest, DamagedDataOfTheWritableStoreIsGeneratedAgainByTheNextUpdate)
{
    const std::function<void()> damages[] = {
        [this] {
            const std::string file = storeFile(writableStore(), "lb_wavecraft_manifests_repos.rps");
            writeFile(file, readFile(file).left(200));
        },
        [this] {
            writeFile(storeFile(writableStore(), "lb_wavecraft_icons_repos.rps"), randomBytes(4000));
        },
        [this] {
            QFile::remove(QString::fromStdString(storeFile(writableStore(), "lb_wavecraft_manifests_repos.rps")));
        },
        [this] {
            QFile::remove(QString::fromStdString(storeFile(writableStore(), "lb_kinetics_manifests_repos.rps")));
        },
        [this] {
            foreignRootManifest(storeFile(writableStore(), "lb_wavecraft_manifests_repos.rps"),
                                storeFile(writableStore(), "lbtoplevelmanifest.xml"));
        },
        [this] {
            QDir(QFileInfo(QString::fromStdString(storeFile(writableStore(), "lb_wavecraft_icons_repos.rps")))
                     .absolutePath())
                .removeRecursively();
        },
        [this] {
            const std::string file = storeFile(writableStore(), "lbtoplevelmanifest.xml");
            writeFile(file, readFile(file).left(300));
        },
    };
    for (std::size_t i = 0; i < std::size(damages); ++i) {
        SCOPED_TRACE("damage " + std::to_string(i));
        damages[i]();
        // A damaged top level is made anew with the store, not a product repaired.
        expectRepairedByUpdate(i + 1 != std::size(damages));
    }
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
    } cases[] = {{writableStore(), "lb_wavecraft_manifests_repos.rps", {"tree", "wavecraft"}},
                 {writableStore(), "lb_wavecraft_icons_repos.rps", {"show", "wavecraft/Sources/Sine Wave"}},
                 {shippedStore(), "lb_arithmetica_manifests_repos.rps", {"tree", "arithmetica"}}};
    for (const auto& damage : cases) {
        SCOPED_TRACE(qPrintable(damage.archive));
        const bool shipped = damage.store == shippedStore();
        const std::string archive = storeFile(damage.store, damage.archive);
        // Size and date kept: damage that no stamp shows, which only the
        // read of the entry meets.
        const QDateTime modified = QFileInfo(QString::fromStdString(archive)).lastModified();
        changeBytesInsideEntries(archive, shipped ? "lbarithmeticamanifest.xml" : "lbwavecraftmanifest.xml");
        setModified(archive, modified);
        const auto shippedBefore = snapshot(shippedStore().toStdString());

        const TdlbResult read = ok(damage.read);
        EXPECT_TRUE(read.err.contains("??? **Error**")) << qPrintable(read.err);
        EXPECT_TRUE(read.err.contains("shown above")) << qPrintable(read.err);

        const TdlbResult update = ok({"update"});
        const TdlbResult tree = tdlb.run({"tree"});
        EXPECT_EQ(tree.out, everything.out);
        EXPECT_FALSE(tree.err.contains("rror")) << qPrintable(tree.err);
        EXPECT_TRUE(snapshot(shippedStore().toStdString()) == shippedBefore) << "the shipped store is never written";
    }

    // With no read between, the update itself finds the changed archive.
    changeBytesInsideEntries(storeFile(writableStore(), "lb_wavecraft_icons_repos.rps"), "lbwavecraftmanifest.xml");
    const TdlbResult update = tdlb.run({"update"});
    EXPECT_TRUE(update.out.contains("Repaired product Wavecraft Signals")) << qPrintable(update.out);
    const TdlbResult show = tdlb.run({"show", "wavecraft/Sources/Sine Wave"});
    EXPECT_FALSE(show.err.contains("rror")) << qPrintable(show.err);
}

TEST_F(TdlbSelfRepairTest, ADamagedShippedTopLevelManifestIsNeverWrittenAndTheWritableStoreServes)
{
    const std::string top = storeFile(shippedStore(), "lbtoplevelmanifest.xml");
    writeFile(top, readFile(top).left(400));
    ASSERT_TRUE(QDir(writableStore()).removeRecursively());
    const auto shipped = snapshot(shippedStore().toStdString());

    // The damage stays, and so does its error: the root is never repaired here.
    const TdlbResult update = tdlb.run({"update"});
    EXPECT_TRUE(update.out.contains("The shipped top level manifest")) << qPrintable(update.out);
    EXPECT_TRUE(update.err.contains("The top level manifest file looks corrupted")) << qPrintable(update.err);
    EXPECT_EQ(tdlb.run({"tree"}).out, everything.out);
    EXPECT_TRUE(snapshot(shippedStore().toStdString()) == shipped);
}

TEST_F(TdlbSelfRepairTest, ADamagedShippedArchiveIsNeverWrittenAndItsProductMovesToTheWritableStore)
{
    writeFile(storeFile(shippedStore(), "lb_arithmetica_manifests_repos.rps"), randomBytes(3000));
    const auto shipped = snapshot(shippedStore().toStdString());
    expectRepairedByUpdate();
    EXPECT_TRUE(snapshot(shippedStore().toStdString()) == shipped);
    EXPECT_FALSE(storeFile(writableStore(), "lb_arithmetica_manifests_repos.rps").empty());
}

} // namespace
} // namespace LibraryBrowser::Testing
