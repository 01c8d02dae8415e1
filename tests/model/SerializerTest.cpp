#include "model/ManifestScanner.h"

#include "model/MetaModel.h"
#include "model/Model.h"
#include "model/NodeMap.h"
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

struct BadDocument {
    const char* what;
    std::string xml;
    const char* expectedInMessage;
};

const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const std::string root = "<tdlb-manifest format=\"1\" signature=\"82d9731addc98524506a2f8fd4ee71ca\">\n";
const std::string rootEnd = "</tdlb-manifest>\n";
const std::string header = declaration + root;

QByteArray document(const std::string& body)
{
    return QByteArray::fromStdString(declaration + root + body + rootEnd);
}

std::string load(const std::string& body, Model& model)
{
    ErrorHolder errors;
    const bool ok = model.loadFromBytes(QByteArray::fromStdString(body), errors);
    EXPECT_EQ(ok, !errors.hasError());
    return ok ? std::string() : errors.message();
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
        const auto* product = static_cast<const LibraryImpl*>(original->getNodes().get(0));
        for (const ModelPtr& loaded : {scanned, parsed}) {
            expectSameNodes(*original, *loaded);
            // Text forms that lose a part alike on both sides still compare equal; the values don't.
            const auto* read = static_cast<const LibraryImpl*>(loaded->getNodes().get(0));
            EXPECT_EQ(std::make_pair(read->getFileDependencies(), read->getChildren()),
                      std::make_pair(product->getFileDependencies(), product->getChildren()));
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
TEST(Serializer, RectsFilesAndContainersInTheirTextFormsAndFilesRoundTrip)
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
    for (const char* list : {"[a,[b,c],d]", "a,[b,c],d"}) // the brackets around the whole are optional
        EXPECT_EQ(ValueText::firstLevelStrings(list), (StringVector{"a", "[b,c]", "d"})) << list;

    // A load replaces the model's nodes, even one that fails; a fault names the file.
    QTemporaryDir dir;
    Testing::writeFile(dir.filePath(QStringLiteral("garbage.xml")).toStdString(),
                       "<?xml version=\"1.0\"?>\n\x01\x02 not a manifest");
    ModelPtr fromFile = Model::createModel();
    for (const char* name : {"missing.xml", "garbage.xml"}) {
        SCOPED_TRACE(name);
        fromFile->createBlockImpl();
        ErrorHolder fileErrors;
        EXPECT_FALSE(fromFile->load(dir.filePath(QString::fromUtf8(name)).toStdString(), fileErrors));
        EXPECT_EQ(fromFile->nodeCount(), 0) << "the nodes go before the load, even one that fails";
        EXPECT_NE(fileErrors.message().find(name), std::string::npos);
    }
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

// Every structural fault ends in the error holder. (That the nodes read before
// it stay is ReadCacheFaultTest's corrupt manifest entry.)
TEST(SerializerBadInput, EveryStructuralFaultEndsInTheErrorHolder)
{
    const BadDocument cases[] = {
        {"truncated", header + "<BlockImpl id=\"1\" name=\"Ga", "Premature end of document"},
        {"unclosed root", header + "<BlockImpl id=\"1\"/>", "Premature end of document"},
        {"unknown node type", header + "<WidgetImpl id=\"1\"/></tdlb-manifest>", "Unknown node type 'WidgetImpl'"},
        {"abstract node type", header + "<TandrilObjectImpl id=\"1\"/></tdlb-manifest>", "Unknown node type"},
        {"unknown property", header + "<BlockImpl id=\"1\" colour=\"red\"/></tdlb-manifest>", "Unknown property 'colour'"},
        {"missing id", header + "<BlockImpl name=\"Gain\"/></tdlb-manifest>", "without an id"},
        {"repeated id", header + "<BlockImpl id=\"1\"/><BlockImpl id=\"1\"/></tdlb-manifest>", "repeated node id"},
        {"non-numeric id", header + "<BlockImpl id=\"one\"/></tdlb-manifest>", "node id 'one'"},
        {"wrong root", "<?xml version=\"1.0\"?><catalogue/>", "root element is 'catalogue'"},
        {"empty", "", "<manifest data>"}, {"text", "just some text", "<manifest data>"},
    };
    for (const BadDocument& c : cases) {
        SCOPED_TRACE(c.what);
        ModelPtr model = Model::createModel();
        const std::string message = load(c.xml, *model);
        EXPECT_NE(message.find(c.expectedInMessage), std::string::npos) << message;
    }
}

// A value that holds nothing of its type costs that value only: the property
// keeps its default, one warning names it, and the rest of the node and of
// the document loads.
TEST(SerializerBadInput, AnUnreadableValueKeepsItsDefaultWithOneWarningAndValuesAreReadAsFarAsTheyGo)
{
    const BadDocument cases[] = {
        {"non-numeric bool", "<BlockImpl id=\"1\" isInvalid=\"yes\"", "'isInvalid'"},
        {"bool out of range", "<SubSystemImpl id=\"1\" isFlat=\"2\"", "'isFlat'"},
        {"non-numeric size", "<LibraryImpl id=\"1\" modelFileSize=\"abc\"", "'modelFileSize'"},
        {"date beyond 32 bits", "<LibraryImpl id=\"1\" modelFileDate=\"99999999999\"", "'modelFileDate'"},
        {"short rect", "<BlockImpl id=\"1\" position=\"1,2,3\"", "'position'"},
        {"reference that is no id", "<LibraryImpl id=\"1\" product=\"first\"", "'product'"},
        {"list of no ids", "<LibraryImpl id=\"1\" dependencies=\"[1,x]\"", "'dependencies'"},
    };
    for (const BadDocument& c : cases) {
        SCOPED_TRACE(c.what);
        ModelPtr model = Model::createModel();
        ErrorHolder errors;
        EXPECT_TRUE(model->loadFromBytes(
            QByteArray::fromStdString(header + c.xml
                                      + " name=\"Kept\"/><BlockImpl id=\"2\" name=\"Next\"/></tdlb-manifest>"),
            errors));
        EXPECT_FALSE(errors.hasError());
        ASSERT_EQ(errors.warnings().size(), 1u);
        EXPECT_NE(errors.warnings().front().find(c.expectedInMessage), std::string::npos) << errors.warnings().front();
        ASSERT_EQ(model->nodeCount(), 2);
        const auto* node = static_cast<const TandrilObjectImpl*>(model->getNodes().get(0));
        EXPECT_EQ(static_cast<const BlockImpl*>(node)->getName(), "Kept");
        for (const auto& property : node->metaNode().properties())
            EXPECT_TRUE(property->name() == StringId("name") || property->hasDefaultValue(*node)) << property->name().str();
    }

    // Numbers are read as stream input reads them, and a file record as far as it goes.
    ModelPtr model = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(model->loadFromBytes(
        QByteArray::fromStdString(header
                                  + "<LibraryImpl id=\"1\" modelFileSize=\" 12abc\" position=\"1;2;3;4 and more\""
                                    " fileDependencies=\"[a|b|c|d,short,x|y|z|1|2,notes, v2.txt|7|8|9]\"/>"
                                    "</tdlb-manifest>"),
        errors));
    EXPECT_TRUE(errors.warnings().empty());
    const auto* library = static_cast<const LibraryImpl*>(model->getNodes().get(0));
    EXPECT_EQ(std::make_tuple(library->getModelFileSize(), library->getPosition(), library->getFileDependencies()),
              std::make_tuple(std::int64_t(12), QRectF(1, 2, 3, 4),
                              FileInfoVector{{"a", "b", 0, 0}, {"short,x", "y", 0, 1}, {"notes, v2.txt", "7", 8, 9}}));
}

TEST(ManifestScanner, ReadsWhatXmlAllowsAroundThePlainFormNumbersNodesOnAndBindsReferences)
{
    struct Case {
        const char* what;
        std::string bytes;
        const char* name;
    };
    const Case cases[] = {
        {"no declaration", root + "<BlockImpl id=\"1\" name=\"Gain\"/>" + rootEnd, "Gain"},
        {"single quotes", declaration + root + "<BlockImpl id='1' name='Say \"hi\"'/>" + rootEnd, "Say \"hi\""},
        {"blanks around the equals sign", declaration + root + "<BlockImpl id = \"1\"\n\tname =\t'Gain' />" + rootEnd,
         "Gain"},
        {"character references", declaration + root + "<BlockImpl id=\"1\" name=\"Block name &#65;&#x42;&#xe9;&apos;\"/>"
                                     + rootEnd,
         "Block name AB\u00e9'"},
        {"end tag with a blank", declaration + root + "<BlockImpl id=\"1\" name=\"Gain\"/></tdlb-manifest >",
         "Gain"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ModelPtr model = Model::createModel();
        ASSERT_TRUE(ManifestScanner::scan(*model, QByteArray::fromStdString(c.bytes)));
        ASSERT_EQ(model->nodeCount(), 1);
        EXPECT_EQ(static_cast<const BlockImpl*>(model->getNodes().get(0))->getName(), c.name);
    }
    ModelPtr empty = Model::createModel();
    EXPECT_TRUE(ManifestScanner::scan(*empty, QByteArray::fromStdString(declaration + "<tdlb-manifest format=\"1\"/>")));
    EXPECT_EQ(empty->nodeCount(), 0);

    // Nodes are numbered on after those the model had; references bind within the document, ahead
    // or behind; an id it never defined, or a node of the wrong class, binds to null and drops out
    // of a list.
    ModelPtr numbered = Model::createModel();
    numbered->createBlockImpl();
    ASSERT_TRUE(ManifestScanner::scan(
        *numbered, document("<PaletteImpl id=\"1\" product=\"2\" dependencies=\"[2,9]\"/><LibraryImpl id=\"2\" product=\"7\"/>"
                         "<BlockImpl id=\"3\"/><LibraryImpl id=\"4\" product=\"3\" dependencies=\"[3,4]\"/>")));
    ASSERT_EQ(numbered->nodeCount(), 5);
    const auto* palette = dynamic_cast<const PaletteImpl*>(numbered->getNodes().get(1));
    const auto* library = static_cast<const LibraryImpl*>(numbered->getNodes().get(2));
    const auto* last = static_cast<const LibraryImpl*>(numbered->getNodes().get(4));
    ASSERT_NE(palette, nullptr);
    EXPECT_EQ(std::make_tuple(palette->id(), library->id()), std::make_tuple(2u, 3u));
    EXPECT_EQ(palette->getProduct(), library);
    ASSERT_EQ(palette->getDependencies().size(), 1);
    EXPECT_EQ(palette->getDependencies().get(0), library);
    EXPECT_TRUE(library->getProduct() == nullptr && last->getProduct() == nullptr);
    ASSERT_EQ(last->getDependencies().size(), 1) << "the block is dropped, the library kept";
    EXPECT_EQ(last->getDependencies().get(0), last);
}

TEST(ManifestScanner, DeclinesAnythingBeyondThePlainFormAndLeavesTheModelAsItWas)
{
    struct Case {
        const char* what;
        QByteArray bytes;
    };
    const Case cases[] = {
        {"empty", QByteArray()}, {"comment", document("<!-- note --><BlockImpl id=\"1\"/>")},
        {"doctype", QByteArray::fromStdString(declaration + "<!DOCTYPE x>" + root + rootEnd)},
        {"processing instruction", document("<?pi data?><BlockImpl id=\"1\"/>")},
        {"other encoding", QByteArray::fromStdString("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + root + rootEnd)},
        {"byte order mark", QByteArray::fromStdString("\xEF\xBB\xBF" + declaration + root + rootEnd)},
        {"other root", QByteArray::fromStdString(declaration + "<manifest>" + "</manifest>")},
        {"unknown entity", document("<BlockImpl id=\"1\" name=\"a long name&nbsp;b and more text\"/>")},
        {"unterminated reference", document("<BlockImpl id=\"1\" name=\"a&amp b\"/>")},
        {"reference to a character XML forbids", document("<BlockImpl id=\"1\" name=\"a&#0;b\"/>")},
        {"hexadecimal reference with a capital X", document("<BlockImpl id=\"1\" name=\"&#X43;\"/>")},
        {"reference past Unicode", document("<BlockImpl id=\"1\" name=\"&#x110000;\"/>")},
        {"literal line break in a value", document("<BlockImpl id=\"1\" name=\"a long name\nb and more text\"/>")},
        {"literal tab in a value", document("<BlockImpl id=\"1\" name=\"a long name\tb and more text\"/>")},
        {"less-than in a value", document("<BlockImpl id=\"1\" name=\"a long name<b and more text\"/>")},
        {"broken UTF-8", document("<BlockImpl id=\"1\" name=\"a long name\xC3(b and more text\"/>")},
        {"overlong UTF-8", document("<BlockImpl id=\"1\" name=\"\xC0\xAF\"/>")},
        {"encoded surrogate", document("<BlockImpl id=\"1\" name=\"\xED\xA0\x80\"/>")},
        {"non-character", document("<BlockImpl id=\"1\" name=\"\xEF\xBF\xBE\"/>")},
        {"repeated attribute", document("<BlockImpl id=\"1\" name=\"a\" name=\"b\"/>")},
        {"repeated id attribute", document("<BlockImpl id=\"1\" id=\"2\"/>")},
        {"repeated root attribute", QByteArray::fromStdString(declaration + "<tdlb-manifest a=\"1\" a=\"2\">" + rootEnd)},
        {"attributes without a blank", document("<BlockImpl id=\"1\"name=\"a\"/>")},
        {"unknown property", document("<BlockImpl id=\"1\" colour=\"red\"/>")},
        {"unknown node class", document("<WidgetImpl id=\"1\"/>")},
        {"abstract node class", document("<TandrilObjectImpl id=\"1\"/>")},
        {"element with content", document("<BlockImpl id=\"1\"></BlockImpl>")},
        {"text between elements", document("text<BlockImpl id=\"1\"/>")},
        {"no id", document("<BlockImpl name=\"a\"/>")}, {"id zero", document("<BlockImpl id=\"0\"/>")},
        {"id with a sign", document("<BlockImpl id=\"+1\"/>")},
        {"id used twice", document("<BlockImpl id=\"1\"/><BlockImpl id=\"1\"/>")},
        {"value that doesn't read", document("<BlockImpl id=\"1\" isInvalid=\"yes\"/>")},
        {"reference that doesn't read", document("<LibraryImpl id=\"1\" product=\"x\"/>")},
        {"truncated", QByteArray::fromStdString(declaration + root + "<BlockImpl id=\"1\" name=\"Ga")},
        {"no end tag", QByteArray::fromStdString(declaration + root + "<BlockImpl id=\"1\"/>")},
        {"text after the end", document("<BlockImpl id=\"1\"/>") + "trailing"},
        {"wrong end tag", QByteArray::fromStdString(declaration + root + "</manifest>")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ModelPtr model = Model::createModel();
        BlockImpl* kept = model->createBlockImpl();
        kept->setName("kept");
        model->removeNode(model->createBlockImpl());
        EXPECT_FALSE(ManifestScanner::scan(*model, c.bytes));
        ASSERT_EQ(model->nodeCount(), 1);
        EXPECT_EQ(model->getNodes().get(0), kept);
        EXPECT_EQ(kept->getName(), "kept");
        // The next node gets the id it would have had without the attempt.
        EXPECT_EQ(model->createdCount(), 2u);
        EXPECT_EQ(model->createBlockImpl()->id(), 3u);
    }
}

// A non-structural copy keeps the target's references, a full one takes the
// source's, one from a more general class what the two have in common, and a
// clone stands outside any model. Swizzling rebinds mapped references and
// drops the rest.
TEST(NodeCopies, NonStructuralCopyKeepsTheTargetsReferences)
{
    ModelPtr model = Model::createModel();
    LibraryImpl* productA = model->createLibraryImpl();
    LibraryImpl* productB = model->createLibraryImpl();
    LibraryImpl* source = model->createLibraryImpl();
    source->setName("Sources");
    source->setChildren({"Sine Wave", "Step"});
    source->setFileDependencies({{"sources/tdblocks.json", "1234", 7, 8}});
    source->setProduct(productA);
    LibraryImplList deps;
    deps.append(productA);
    source->setDependencies(deps);
    EXPECT_TRUE(source->getDependencies().sharesDataWith(deps)) << "setting a list shares its data";
    LibraryImpl* target = model->createLibraryImpl();
    target->setProduct(productB);
    LibraryImplList targetDeps;
    targetDeps.append(productB);
    target->setDependencies(targetDeps);

    target->copyNonStructuralPropertiesFromNode(static_cast<const Node*>(source));
    EXPECT_EQ(std::make_tuple(target->getName(), target->getChildren(), target->getFileDependencies(),
                              target->getProduct(), target->getDependencies().get(0)),
              std::make_tuple(std::string("Sources"), source->getChildren(), source->getFileDependencies(), productB,
                              productB));
    target->copyPropertiesFromNode(static_cast<const Node*>(source));
    EXPECT_EQ(std::make_pair(target->getProduct(), target->getDependencies().get(0)), std::make_pair(productA, productA));
    BlockImpl* block = model->createBlockImpl();
    block->setName("Gain");
    target->copyPropertiesFromNode(static_cast<const Node*>(block));
    EXPECT_EQ(std::make_pair(target->getName(), target->getChildren()), std::make_pair(std::string("Gain"), source->getChildren()));
    std::unique_ptr<Node> copy = source->clone();
    auto* clone = dynamic_cast<LibraryImpl*>(copy.get());
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(std::make_tuple(clone->getModel(), clone->getName(), clone->getProduct()),
              std::make_tuple(static_cast<Model*>(nullptr), std::string("Sources"), productA));

    LibraryImpl* unmapped = model->createLibraryImpl();
    deps.append(unmapped);
    source->setDependencies(deps);
    ModelPtr to = Model::createModel();
    NodeMap map;
    LibraryImpl* productCopy = to->createLibraryImpl();
    map.insert(productA->id(), productCopy->id());
    LibraryImpl* moved = to->createLibraryImpl();
    moved->copyPropertiesFromNode(source);
    moved->internalSwizzleNodePointers(map);
    EXPECT_EQ(moved->getProduct(), productCopy);
    ASSERT_EQ(moved->getDependencies().size(), 1);
    EXPECT_EQ(moved->getDependencies().get(0), productCopy);
    NodeMap empty;
    moved->internalSwizzleNodePointers(empty);
    EXPECT_EQ(moved->getProduct(), nullptr);
    EXPECT_TRUE(moved->getDependencies().isEmpty());
}
