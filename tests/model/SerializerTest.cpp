#include "model/ManifestScanner.h"
#include "model/Model.h"
#include "model/Serializer.h"
#include "model/Signature.h"
#include "model/ValueText.h"
#include "platform/ErrorHolder.h"
#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace LibraryBrowser;

namespace {

// A model with every node class and every property type set away from its default.
ModelPtr everyKindOfNode()
{
    ModelPtr model = Model::createModel();
    LibraryImpl* product = model->createLibraryImpl();
    product->setUniquePath(StringId("Signals"));
    product->setName("Signals");
    product->setDisplayName("Signals");
    product->setIsTopLevel(true);
    product->setIsFlat(false);
    product->setIsEmpty(false);
    product->setModelFileSpec("signals/signals.tdlib.json");
    product->setModelFileCheckSum("21224611816915623195173422101240114182");
    product->setModelFileSize(std::int64_t(1) << 40);
    product->setModelFileDate(-1700000000);
    product->setLastModified("Sun Nov 22 21:00:00 2026");
    product->setChildren({"Sine Wave", "Filters", "Scope (2D)"});
    product->setFileDependencies({{"signals/tdblocks.json", "1762132", 1763800000, 512},
                                  {"signals/icons/sine.svg", "", std::uint64_t(-1), 0}});

    PaletteImpl* palette = model->createPaletteImpl();
    palette->setUniquePath(StringId("Favourites"));
    palette->setIsProduct(false);
    palette->setProduct(product);

    LibraryImpl* other = model->createLibraryImpl();
    other->setUniquePath(StringId("Math"));
    LibraryImplList deps;
    deps.append(product);
    deps.append(other);
    palette->setDependencies(deps);

    BlockImpl* block = model->createBlockImpl();
    block->setUniquePath(StringId("Signals/Sine Wave"));
    block->setName("Sine\r\nWave");
    block->setDisplayName("Sine \u00b7 Wave \U0001F600");
    block->setDescription("Generates y = A\u00b7sin(\u03c9t + \u03c6).\n\tTabs, <angle> & \"quotes\" survive.");
    block->setPosition(QRectF(-12.5, 1e-7, 1234567.0, 0.000123456789));
    block->setIsInvalid(true);
    block->setIconFileSpec("icons/Signals/Sine_20Wave.svg");
    block->setTreeIcon("tree.png");
    block->setPanelIcon("panel.png");
    block->setProductName("Signals");
    block->setReposDirectorySpec("Signals");
    block->setReposManifestsArchiveSpec("Signals/manifests.rps");
    block->setReposIconsArchiveSpec("Signals/icons.rps");
    block->setPath("signals/Sine//Cosine");
    block->setDisplayPath("signals/Sine/Cosine");

    SubSystemImpl* filters = model->createSubSystemImpl();
    filters->setUniquePath(StringId("Signals/Filters"));
    filters->setDirectorySpec("Signals/Filters");
    filters->setManifestFileSpec("Signals/Filters/manifest.xml");

    LibraryRefImpl* ref = model->createLibraryRefImpl();
    ref->setUniquePath(StringId("Signals/Math link"));
    ref->setLibraryRefName("Math");
    ref->setLibraryRefPath("math/Operators");
    ref->setLibraryRefUniquePath("Math/Operators");
    return model;
}

void expectSameNodes(const Model& expected, const Model& actual)
{
    ASSERT_EQ(actual.nodeCount(), expected.nodeCount());
    for (int i = 0; i < expected.nodeCount(); ++i) {
        const TandrilObjectImpl* e = expected.getNodes().get(i);
        const TandrilObjectImpl* a = actual.getNodes().get(i);
        ASSERT_EQ(a->getTypeName(), e->getTypeName());
        for (const auto& property : e->metaNode().properties())
            EXPECT_EQ(property->getPropAsString(*a), property->getPropAsString(*e))
                << e->getTypeName().str() << "." << property->name().str();
    }
}

} // namespace

// The writer's plain form goes through the quick scanner; the full reader
// must read it alike. Both give back every value and bind references, ahead
// and behind, to the loaded nodes.
TEST(Serializer, RoundTripKeepsEveryNodeAndPropertyOnBothReaders)
{
    ModelPtr original = everyKindOfNode();
    for (int option : {int(Model::Compact), int(Model::Indented)}) {
        SCOPED_TRACE(option);
        const QByteArray bytes = original->saveToBytes(option);
        ModelPtr scanned = Model::createModel();
        ASSERT_TRUE(ManifestScanner::scan(*scanned, bytes));
        EXPECT_EQ(scanned->saveToBytes(option), bytes);
        // A comment is beyond the plain form: the full reader takes the document.
        QByteArray commented = bytes;
        commented.insert(commented.indexOf('\n') + 1, "<!-- full reader -->");
        ModelPtr parsed = Model::createModel();
        ErrorHolder errors;
        ASSERT_FALSE(ManifestScanner::scan(*parsed, commented));
        ASSERT_TRUE(parsed->loadFromBytes(commented, errors)) << errors.message();
        for (const ModelPtr& loaded : {scanned, parsed}) {
            expectSameNodes(*original, *loaded);
            auto* palette = dynamic_cast<PaletteImpl*>(loaded->getNodes().get(1));
            ASSERT_NE(palette, nullptr);
            EXPECT_EQ(palette->getProduct(), loaded->getNodes().get(0));
            ASSERT_EQ(palette->getDependencies().size(), 2);
            EXPECT_EQ(palette->getDependencies().get(1), loaded->getNodes().get(2));
        }
    }
}

// Rects keep six significant digits; file records and containers have text
// forms of their own, in which one empty name is not the empty list.
TEST(Serializer, RectsFilesAndContainersInTheirTextForms)
{
    ModelPtr model = Model::createModel();
    model->createBlockImpl()->setPosition(QRectF(1.23456789, 100.5, 1234567.0, 0.5));
    model->createLibraryImpl()->setChildren({""});
    ModelPtr loaded = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(loaded->loadFromBytes(model->saveToBytes(), errors));
    EXPECT_EQ(static_cast<BlockImpl*>(loaded->getNodes().get(0))->getPosition(), QRectF(1.23457, 100.5, 1.23457e6, 0.5));
    EXPECT_EQ(static_cast<LibraryImpl*>(loaded->getNodes().get(1))->getChildren(), StringVector{""});

    FileInfoVector files{{"x", "y", 1, 1}};
    ASSERT_TRUE(ValueText::fromText("", files));
    EXPECT_TRUE(files.empty()) << "the empty text reads as the empty vector";
    ASSERT_TRUE(ValueText::fromText("[a/b.json|12|3|4,c||0|0]\nignored second line", files));
    EXPECT_EQ(files, (FileInfoVector{{"a/b.json", "12", 3, 4}, {"c", "", 0, 0}}));
    EXPECT_EQ(ValueText::firstLevelStrings("[a,[b,c],d]"), (StringVector{"a", "[b,c]", "d"}));
}

TEST(Serializer, SignatureIsReadWithoutLoadingAndFromForeignDocuments)
{
    // The schema's signature is pinned: a change of schema goes with a new one.
    EXPECT_EQ(Signature::manifestSchema().toString(), "82d9731addc98524506a2f8fd4ee71ca");
    ErrorHolder errors;
    EXPECT_EQ(Serializer::getModelSignatureFromByteArray(everyKindOfNode()->saveToBytes(), errors),
              Signature::manifestSchema());

    const QByteArray foreign = "<?xml version=\"1.0\"?>\n<catalogue signature=\"00112233445566778899AABBCCDDEEFF\">"
                               "<Widget id=\"1\" colour=\"blue\"/></catalogue>";
    EXPECT_EQ(Serializer::getModelSignatureFromByteArray(foreign, errors).toString(),
              "00112233445566778899aabbccddeeff");
    EXPECT_FALSE(errors.hasError());

    EXPECT_TRUE(Serializer::getModelSignatureFromByteArray("<manifest/>", errors).isNull());
    EXPECT_TRUE(errors.hasError());
    errors.clear();
    EXPECT_TRUE(Serializer::getModelSignatureFromByteArray("", errors).isNull());
    EXPECT_TRUE(errors.hasError());
}

TEST(Serializer, FilesRoundTripAndLoadReplacesTheModelsNodes)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath(QStringLiteral("m\u00e4nifest with space.xml")).toStdString();
    ErrorHolder errors;
    ASSERT_TRUE(everyKindOfNode()->save(path, errors)) << errors.message();

    ModelPtr model = Model::createModel();
    model->createBlockImpl()->setName("left over");
    ASSERT_TRUE(model->load(path, errors)) << errors.message();
    expectSameNodes(*everyKindOfNode(), *model);

    model->createBlockImpl();
    EXPECT_FALSE(model->load(dir.filePath(QStringLiteral("missing.xml")).toStdString(), errors));
    EXPECT_EQ(model->nodeCount(), 0) << "the nodes go before the load, even one that fails";
    EXPECT_NE(errors.message().find("missing.xml"), std::string::npos);

    const std::string garbage = dir.filePath(QStringLiteral("garbage.xml")).toStdString();
    Testing::writeFile(garbage, "<?xml version=\"1.0\"?>\n\x01\x02 not a manifest");
    errors.clear();
    EXPECT_FALSE(model->load(garbage, errors));
    EXPECT_NE(errors.message().find("garbage.xml"), std::string::npos) << "a fault names the file";
}
