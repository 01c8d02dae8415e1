// A store whose data is damaged repairs itself: the next update finds the
// damage, says so in one warning, generates the product again, and every
// object is found as before. A damaged shipped store is never written.

#include "TdlbProcess.h"

#include "model/LibraryImpl.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "platform/ZipArchive.h"
#include "support/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QtEndian>

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
    EXPECT_EQ(tdlb.run({"tree"}).out, everything.out);
    EXPECT_TRUE(snapshot(shipped.toStdString()) == shippedBefore);
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

} // namespace
} // namespace LibraryBrowser::Testing
