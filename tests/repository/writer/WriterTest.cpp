#include "WriterFixture.h"

#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "platform/FileFaults.h"
#include "repository/TandrilObjectIterator.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace LibraryBrowser {
namespace {

using Names = std::vector<std::string>;
using Testing::ScriptedBlock;
using Testing::ScriptedProduct;

class WriterTest : public Testing::WriterFixture {};

// Icons large enough that the archive is closed and opened again while it is
// filled: what was added before a reopening stays, and so does what follows.
TEST_F(WriterTest, IconsAddedAcrossAReopeningAllReadBack)
{
    // Four icons of 3 MiB pass the bound once, after the third.
    std::vector<ScriptedBlock> large;
    for (const char* name : {"A", "B", "C", "D"})
        large.push_back({name, "Block", "", {}, "", "", 3 << 20});
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", large);
    generate();
    ASSERT_EQ(entries("Alpha", "icons").size(), 4u);
    const auto reader = makeReader();
    for (const ScriptedBlock& block : large) {
        const QByteArray svg = reader->getIcon(reader->getTandrilObject("Alpha/" + block.name))->svg();
        EXPECT_TRUE(svg.contains("Alpha/" + QByteArray::fromStdString(block.name))) << block.name;
        EXPECT_GT(svg.size(), 3 << 20) << block.name;
    }
}

// Names whose path form differs from the shown one.
TEST_F(WriterTest, EveryBlockReadsBackWithItsIconAndPathForms)
{
    std::vector<ScriptedBlock> alpha = blocks("A", 250);
    alpha.push_back({"In//Out"});
    alpha.push_back({"Two\nLines"});
    // A manifest can't keep a control character: refused, never stored altered.
    alpha.push_back({"Bell\a"});
    libraries.setProducts({{"Alpha Library", "Alpha"}, {"Beta\x01Library", "Beta"}});
    libraries.setLibrary("Alpha", alpha);
    libraries.setLibrary("Beta", blocks("B", 1));
    generate();
    EXPECT_TRUE(logged(*report, "??? **Error**   Invalid block name Alpha/Bell\\x07: it holds a control character"));
    EXPECT_TRUE(logged(*report, "**Warning**   The product Beta\\x01Library of Beta is left out: its name holds a "
                                "control character."));
    EXPECT_EQ(entries("Alpha", "icons").size(), 252u);
    EXPECT_EQ(childNames("Alpha").size(), 252u);
    const auto reader = makeReader();
    EXPECT_FALSE(reader->getTandrilObject("Beta").isValid());
    EXPECT_TRUE(reader->getIcon(reader->getTandrilObject("Alpha/A0"))->svg().contains("Alpha/A0"));
    const TandrilObject inOut = reader->getTandrilObject("Alpha/In//Out");
    ASSERT_TRUE(inOut.isValid());
    EXPECT_EQ(inOut.getDisplayName(), "In/Out");
    EXPECT_EQ(static_cast<const BlockImpl*>(inOut.getImpl())->getDisplayPath(), "Alpha Library/In/Out");
    EXPECT_TRUE(reader->getTandrilObject("Alpha/Two Lines").isValid());
}

// Shrinking a product step by step: a library it no longer references
// leaves its archives, and a product left without blocks has none.
TEST_F(WriterTest, WhatAProductNoLongerHoldsLeavesItsArchives)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", {{"G"}, {"R", "LibraryRef", "", {}, "Shared", ""}});
    libraries.setLibrary("Shared", {{"S1"}, {"S2"}});
    generate();
    EXPECT_EQ(entries("Alpha", "icons").size(), 4u);

    libraries.setLibrary("Alpha", {{"G"}});
    generate();
    EXPECT_TRUE(logged(*report, "Library Shared is no longer used. Removing it from the archive"));
    EXPECT_EQ(entries("Alpha", "icons").size(), 1u);
    EXPECT_FALSE(makeReader()->getTandrilObject("Alpha-Shared").isValid());

    libraries.setLibrary("Alpha", {});
    generate(GenerationMode::IgnoreTimestamp);
    EXPECT_FALSE(exists(archive("Alpha", "icons")));
    EXPECT_FALSE(exists(archive("Alpha", "manifests")));
    EXPECT_TRUE(makeReader()->getProduct("Alpha").getIsEmpty());
}

// The top-level manifest is put in place again only when its bytes change,
// and it always ends up holding the model as it stands.
TEST_F(WriterTest, TheTopLevelManifestIsReplacedOnlyWhenItsBytesChange)
{
    setAlphaAndBeta(3, 2);
    generate();
    const std::string top = topLevelFile(store());
    const QByteArray generated = readFile(top);
    const QDateTime old = QDateTime::fromSecsSinceEpoch(946684800);
    const auto ageFile = [&] {
        QFile file(QString::fromStdString(top));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(old, QFileDevice::FileModificationTime));
    };
    const auto modified = [&] { return QFileInfo(QString::fromStdString(top)).lastModified(); };
    ageFile();
    const auto updateProducts = [&] {
        report = RepositoryReport::create();
        XMLRepositoryWriter(store(), report).updateProducts();
    };

    updateProducts();
    EXPECT_EQ(modified(), old) << "the same bytes are not written again";
    EXPECT_EQ(readFile(top), generated);

    // Same length, other bytes: what the store holds no longer matches.
    QByteArray tampered = generated;
    const int at = tampered.indexOf("Alpha Library");
    ASSERT_GE(at, 0);
    tampered[at] = 'X';
    writeFile(top, tampered);
    ageFile();
    updateProducts();
    EXPECT_NE(modified(), old);
    EXPECT_EQ(readFile(top), generated);

    libraries.setProducts({{"Alpha Renamed", "Alpha"}, {"Beta Library", "Beta"}});
    ageFile();
    updateProducts();
    EXPECT_NE(modified(), old);
    EXPECT_EQ(makeReader()->getProduct("Alpha").getDisplayName(), "Alpha Renamed");
}

TEST_F(WriterTest, ReferencesToOneLibraryMakeOneDependencyAndAnUnresolvableOneIsWarnedOf)
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
    int shared = 0;
    for (TandrilObjectImpl* node : top->getNodes())
        if (auto* library = dynamic_cast<LibraryImpl*>(node); library && library->getPath() == "Shared") {
            ++shared;
            EXPECT_FALSE(library->getIsProduct());
            EXPECT_EQ(library->getUniquePath().str(), "Alpha-Shared");
        }
    EXPECT_EQ(shared, 1);
    EXPECT_EQ(childNames("Alpha/R1"), (Names{"X", "Y"}));
    // The unresolvable reference is still stored, beside the others.
    EXPECT_EQ(childNames("Alpha"), (Names{"R1", "R2", "R3"}));
}

// Faults in the host's product list are warned of, and generation goes on.
TEST_F(WriterTest, ADoubledProductNameKeepsTheFirstAndAPaletteListingItselfIsGenerated)
{
    setAlphaAndBeta(1);
    libraries.setProducts({{"Alpha Library", "Alpha"},
                           {"Alpha Library", "Beta"},
                           {"Gadgets", "Beta", "Gadget"},
                           {"Tools", "Tools", "Palette", {"Tools", "Alpha", "Tools"}}});
    generate();
    // A type other than Product or Palette: the entry is skipped, not guessed at.
    EXPECT_TRUE(logged(*report, "The product Gadgets has the unknown type 'Gadget' and is left out."));
    EXPECT_TRUE(logged(*report, "The product name Alpha Library appeared in more than one tdblocks "
                                "file. The first one that was found on the path will be used."));
    EXPECT_EQ(std::count_if(report->getWarnings().begin(), report->getWarnings().end(),
                            [](const RepositoryReport::Issue& w) {
                                return w.id == "Tandril:LibraryBrowser:CycleInPalette";
                            }),
              2);
    const auto reader = makeReader();
    EXPECT_FALSE(reader->getProduct("Beta").isValid());
    EXPECT_FALSE(reader->getProduct("Gadgets").isValid());
    const Library tools = reader->getProduct("Tools");
    EXPECT_FALSE(tools.getIsEmpty());
    EXPECT_EQ(reader->getChildrenIterator(tools).size(), 1);
}

TEST_F(WriterTest, AStoreOfAnotherSchemaIsDestroyedAndGeneratedAnew)
{
    setAlphaAndBeta(3);
    generate();
    QByteArray bytes = readFile(topLevelFile(store()));
    bytes.replace(QByteArray::fromStdString(Signature::manifestSchema().toString()), "0123456789abcdef0123456789abcdef");
    writeFile(topLevelFile(store()), bytes);

    generate();
    EXPECT_EQ(makeReader()->getVersion(), Signature::manifestSchema().toString());
    EXPECT_EQ(childNames("Alpha"), (Names{"A0", "A1", "A2"}));
}

TEST_F(WriterTest, AnArchiveThatCannotBeCopiedLeavesTheGenerationOnClosedArchives)
{
    setAlphaAndBeta(2, 2);
    generate();
    setAlphaAndBeta(3, 3);
    // The copy of Alpha's sound icons archive into the temporary directory fails.
    const std::string icons = "/" + std::string(QFileInfo(QString::fromStdString(archive("Alpha", "icons")))
                                                    .fileName()
                                                    .toStdString());
    FileFaults::setHook([&](FileFaults::Operation operation, const std::string& path) {
        return operation == FileFaults::Copy && path.size() > icons.size()
               && path.compare(path.size() - icons.size(), icons.size(), icons) == 0
               && path.rfind(store(), 0) != 0;
    });
    generate(GenerationMode::IgnoreTimestamp);
    FileFaults::setHook(nullptr);
    EXPECT_TRUE(logged(*report, "??? **Error**   Unable to access one or more archives. Skipping product"));
    EXPECT_EQ(childNames("Beta"), (Names{"B0", "B1", "B2"})) << "the verb goes on to the next product";
    EXPECT_EQ(childNames("Alpha"), (Names{"A0", "A1"})) << "the store keeps what it had";
}

} // namespace
} // namespace LibraryBrowser
