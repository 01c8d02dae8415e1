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
        ASSERT_EQ(tdlb.run({"update"}).exitCode, 0);
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

    // Runs update and checks that it repaired the store; damage, unlike a
    // missing file, is named in a warning.
    void expectRepairedByUpdate(bool damaged = true)
    {
        const TdlbResult update = tdlb.run({"update"});
        EXPECT_EQ(update.exitCode, 0) << qPrintable(update.err);
        EXPECT_EQ(update.out.contains("is damaged and will be"), damaged) << qPrintable(update.out);
        const TdlbResult tree = tdlb.run({"tree"});
        EXPECT_EQ(tree.exitCode, 0);
        EXPECT_EQ(tree.out, everything.out);
        EXPECT_FALSE(tree.err.contains("rror")) << qPrintable(tree.err);
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
            foreignRootManifest(storeFile(writableStore(), "lb_wavecraft_manifests_repos.rps"),
                                storeFile(writableStore(), "lbtoplevelmanifest.xml"));
        },
        [this] {
            const std::string file = storeFile(writableStore(), "lbtoplevelmanifest.xml");
            writeFile(file, readFile(file).left(300));
        },
    };
    for (std::size_t i = 0; i < std::size(damages); ++i) {
        SCOPED_TRACE("damage " + std::to_string(i));
        damages[i]();
        expectRepairedByUpdate(i != 2);
    }
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
