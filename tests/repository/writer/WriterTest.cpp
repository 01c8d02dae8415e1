#include "repository/StoreFixture.h"

#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "platform/FileFaults.h"
#include "repository/TandrilObjectIterator.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace LibraryBrowser {
namespace {

using Names = std::vector<std::string>;
using Testing::ScriptedBlock;

using WriterTest = Testing::StoreFixture;

// Icons large enough that the archive is closed and opened again while it is
// filled (four of 3 MiB pass the bound once, after the third): what was added
// before a reopening stays, and so does what follows.
TEST_F(WriterTest, IconsAddedAcrossAReopeningAllReadBack)
{
    std::vector<ScriptedBlock> large;
    for (const char* name : {"A", "B", "C", "D"})
        large.push_back({name, "Block", "", {}, "", "", 3 << 20});
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", large);
    generate();
    ASSERT_EQ(entries("Alpha", "icons").size(), 4u);
    const auto reader = openReader();
    for (const ScriptedBlock& block : large) {
        const QByteArray svg = reader->getIcon(reader->getTandrilObject("Alpha/" + block.name))->svg();
        EXPECT_TRUE(svg.contains("Alpha/" + QByteArray::fromStdString(block.name))) << block.name;
        EXPECT_GT(svg.size(), 3 << 20) << block.name;
    }
}

// Names whose path form differs from the shown one. A manifest can't keep a
// control character: refused, never stored altered.
TEST_F(WriterTest, EveryBlockReadsBackWithItsIconAndPathForms)
{
    std::vector<ScriptedBlock> alpha = blocks("A", 250);
    alpha.insert(alpha.end(), {{"In//Out"}, {"Two\nLines"}, {"Bell\a"}});
    libraries.setProducts({{"Alpha Library", "Alpha"}, {"Beta\x01Library", "Beta"}});
    libraries.setLibrary("Alpha", alpha);
    libraries.setLibrary("Beta", blocks("B", 1));
    generate();
    EXPECT_TRUE(logged(*report, "??? **Error**   Invalid block name Alpha/Bell\\x07: it holds a control character"));
    EXPECT_TRUE(logged(*report, "**Warning**   The product Beta\\x01Library of Beta is left out: its name holds a "
                                "control character."));
    EXPECT_EQ(entries("Alpha", "icons").size(), 252u);
    EXPECT_EQ(childNames("Alpha").size(), 252u);
    const auto reader = openReader();
    EXPECT_FALSE(reader->getTandrilObject("Beta").isValid());
    EXPECT_TRUE(reader->getIcon(reader->getTandrilObject("Alpha/A0"))->svg().contains("Alpha/A0"));
    const TandrilObject inOut = reader->getTandrilObject("Alpha/In//Out");
    EXPECT_EQ(inOut.getDisplayName(), "In/Out");
    EXPECT_EQ(static_cast<const BlockImpl*>(inOut.getImpl())->getDisplayPath(), "Alpha Library/In/Out");
    EXPECT_TRUE(reader->getTandrilObject("Alpha/Two Lines").isValid());
}

// References to one library make one dependency, an unresolvable one is
// warned of and still stored. Shrinking the product step by step, a library
// it no longer references leaves its archives, and a product left without
// blocks has none.
TEST_F(WriterTest, ReferencedLibrariesComeAndGoWithTheirReferences)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", {{"R1", "LibraryRef", "", {}, "Shared", "Sub"},
                                   {"R2", "LibraryRef", "", {}, "Shared", "Sub"},
                                   {"R3", "LibraryRef", "", {}, "Nowhere", "Deep"}});
    libraries.setLibrary("Shared", {{"Sub", "SubSystem", "", {{"X"}, {"Y"}}}});
    generate();
    EXPECT_TRUE(logged(*report, "**Warning**   Unable to resolve library reference Alpha Library/R3 to Nowhere/Deep"));
    auto top = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(top->load(topLevelFile(store()), errors));
    Names shared;
    for (TandrilObjectImpl* node : top->getNodes())
        if (auto* library = dynamic_cast<LibraryImpl*>(node); library && library->getPath() == "Shared")
            shared.push_back(library->getUniquePath().str() + (library->getIsProduct() ? " product" : ""));
    EXPECT_EQ(shared, Names{"Alpha-Shared"});
    EXPECT_EQ(childNames("Alpha/R1"), (Names{"X", "Y"}));
    EXPECT_EQ(childNames("Alpha"), (Names{"R1", "R2", "R3"}));

    libraries.setLibrary("Alpha", {{"G"}});
    generate();
    EXPECT_TRUE(logged(*report, "Library Shared is no longer used. Removing it from the archive"));
    EXPECT_EQ(entries("Alpha", "icons").size(), 1u);
    EXPECT_FALSE(openReader()->getTandrilObject("Alpha-Shared").isValid());
    libraries.setLibrary("Alpha", {});
    generate(GenerationMode::IgnoreTimestamp);
    EXPECT_FALSE(exists(archive("Alpha", "icons")));
    EXPECT_FALSE(exists(archive("Alpha", "manifests")));
    EXPECT_TRUE(openReader()->getProduct("Alpha").getIsEmpty());
}

// The top-level manifest is put in place again only when its bytes change,
// and it always ends up holding the model as it stands. A store of another
// schema is generated anew; an archive that cannot be copied skips its
// product, which keeps what it had, and the verb goes on to the next.
TEST_F(WriterTest, TheTopLevelManifestAndTheStoreRecoverFromWhatTheyFind)
{
    setAlphaAndBeta(3, 2);
    generate();
    const std::string top = topLevelFile(store());
    const QByteArray generated = readFile(top);
    const QDateTime old = QDateTime::fromSecsSinceEpoch(946684800);
    const auto updateAged = [&] {
        QFile file(QString::fromStdString(top));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(old, QFileDevice::FileModificationTime));
        file.close();
        report = RepositoryReport::create();
        XMLRepositoryWriter(store(), report).updateProducts();
    };
    const auto modified = [&] { return QFileInfo(QString::fromStdString(top)).lastModified(); };
    updateAged();
    EXPECT_EQ(modified(), old) << "the same bytes are not written again";
    EXPECT_EQ(readFile(top), generated);
    // Same length, other bytes: what the store holds no longer matches.
    QByteArray tampered = generated;
    tampered[tampered.indexOf("Alpha Library")] = 'X';
    writeFile(top, tampered);
    updateAged();
    EXPECT_NE(modified(), old);
    EXPECT_EQ(readFile(top), generated);
    libraries.setProducts({{"Alpha Renamed", "Alpha"}, {"Beta Library", "Beta"}});
    updateAged();
    EXPECT_NE(modified(), old);
    EXPECT_EQ(openReader()->getProduct("Alpha").getDisplayName(), "Alpha Renamed");

    QByteArray bytes = readFile(top);
    bytes.replace(QByteArray::fromStdString(Signature::manifestSchema().toString()), "0123456789abcdef0123456789abcdef");
    writeFile(top, bytes);
    setAlphaAndBeta(3, 2);
    generate();
    EXPECT_EQ(openReader()->getVersion(), Signature::manifestSchema().toString());
    EXPECT_EQ(childNames("Alpha"), (Names{"A0", "A1", "A2"}));

    // The copy of Alpha's sound icons archive into the temporary directory fails.
    setAlphaAndBeta(4, 3);
    const std::string icons = "/" + QFileInfo(QString::fromStdString(archive("Alpha", "icons"))).fileName().toStdString();
    FileFaults::setHook([&](FileFaults::Operation operation, const std::string& path) {
        return operation == FileFaults::Copy && path.size() > icons.size()
               && path.compare(path.size() - icons.size(), icons.size(), icons) == 0 && path.rfind(store(), 0) != 0;
    });
    generate(GenerationMode::IgnoreTimestamp);
    FileFaults::setHook(nullptr);
    EXPECT_TRUE(logged(*report, "??? **Error**   Unable to access one or more archives. Skipping product"));
    EXPECT_EQ(childNames("Beta"), (Names{"B0", "B1", "B2"}));
    EXPECT_EQ(childNames("Alpha"), (Names{"A0", "A1", "A2"}));
}

// Faults in the host's product list are warned of, and generation goes on:
// a doubled name keeps the first, an unknown type is left out, not guessed
// at, and a palette listing itself is generated.
TEST_F(WriterTest, ADoubledProductNameKeepsTheFirstAndAPaletteListingItselfIsGenerated)
{
    setAlphaAndBeta(1);
    libraries.setProducts({{"Alpha Library", "Alpha"},
                           {"Alpha Library", "Beta"},
                           {"Gadgets", "Beta", "Gadget"},
                           {"Tools", "Tools", "Palette", {"Tools", "Alpha", "Tools"}}});
    generate();
    EXPECT_TRUE(logged(*report, "The product Gadgets has the unknown type 'Gadget' and is left out."));
    EXPECT_TRUE(logged(*report, "The product name Alpha Library appeared in more than one tdblocks "
                                "file. The first one that was found on the path will be used."));
    const auto& warnings = report->getWarnings();
    EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(),
                            [](const auto& w) { return w.id == "Tandril:LibraryBrowser:CycleInPalette"; }),
              2);
    const auto reader = openReader();
    EXPECT_FALSE(reader->getProduct("Beta").isValid());
    EXPECT_FALSE(reader->getProduct("Gadgets").isValid());
    const Library tools = reader->getProduct("Tools");
    EXPECT_FALSE(tools.getIsEmpty());
    EXPECT_EQ(reader->getChildrenIterator(tools).size(), 1);
}

} // namespace
} // namespace LibraryBrowser
