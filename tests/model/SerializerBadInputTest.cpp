#include "model/MetaModel.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace LibraryBrowser;

namespace {

struct BadDocument {
    const char* what;
    const char* xml;
    const char* expectedInMessage;
};

const char* header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                     "<tdlb-manifest format=\"1\" signature=\"82d9731addc98524506a2f8fd4ee71ca\">\n";

std::string load(const std::string& body, Model& model)
{
    ErrorHolder errors;
    const bool ok = model.loadFromBytes(QByteArray::fromStdString(body), errors);
    EXPECT_EQ(ok, !errors.hasError());
    return ok ? std::string() : errors.message();
}

} // namespace

TEST(SerializerBadInput, EveryStructuralFaultEndsInTheErrorHolder)
{
    const BadDocument cases[] = {
        {"truncated", "<BlockImpl id=\"1\" name=\"Ga", "Premature end of document"},
        {"unclosed root", "<BlockImpl id=\"1\"/>", "Premature end of document"},
        {"unknown node type", "<WidgetImpl id=\"1\"/></tdlb-manifest>", "Unknown node type 'WidgetImpl'"},
        {"abstract node type", "<TandrilObjectImpl id=\"1\"/></tdlb-manifest>", "Unknown node type"},
        {"unknown property", "<BlockImpl id=\"1\" colour=\"red\"/></tdlb-manifest>", "Unknown property 'colour'"},
        {"missing id", "<BlockImpl name=\"Gain\"/></tdlb-manifest>", "without an id"},
        {"repeated id", "<BlockImpl id=\"1\"/><BlockImpl id=\"1\"/></tdlb-manifest>", "repeated node id"},
        {"non-numeric id", "<BlockImpl id=\"one\"/></tdlb-manifest>", "node id 'one'"},
    };
    for (const BadDocument& c : cases) {
        SCOPED_TRACE(c.what);
        ModelPtr model = Model::createModel();
        const std::string message = load(std::string(header) + c.xml, *model);
        EXPECT_NE(message.find(c.expectedInMessage), std::string::npos) << message;
    }
}

TEST(SerializerBadInput, AFaultKeepsTheNodesReadBeforeIt)
{
    ModelPtr model = Model::createModel();
    EXPECT_FALSE(load(std::string(header) + "<BlockImpl id=\"1\" name=\"Gain\"/><BlockImpl id=\"2\" name=\"Sum\"/>"
                      "<WidgetImpl id=\"3\"/><BlockImpl id=\"4\" name=\"Lost\"/></tdlb-manifest>",
                      *model)
                     .empty());
    ASSERT_EQ(model->nodeCount(), 2);
    EXPECT_EQ(static_cast<BlockImpl*>(model->getNodes().get(0))->getName(), "Gain");
    EXPECT_EQ(static_cast<BlockImpl*>(model->getNodes().get(1))->getName(), "Sum");
}

// A value that holds nothing of its type costs that value only: the property
// keeps its default, one warning names it, and the rest of the node and of
// the document loads.
TEST(SerializerBadInput, AnUnreadableValueKeepsItsDefaultWithOneWarning)
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
            QByteArray::fromStdString(std::string(header) + c.xml
                                      + " name=\"Kept\"/><BlockImpl id=\"2\" name=\"Next\"/></tdlb-manifest>"),
            errors));
        EXPECT_FALSE(errors.hasError());
        ASSERT_EQ(errors.warnings().size(), 1u);
        EXPECT_NE(errors.warnings().front().find(c.expectedInMessage), std::string::npos) << errors.warnings().front();
        ASSERT_EQ(model->nodeCount(), 2);
        const auto* node = static_cast<const TandrilObjectImpl*>(model->getNodes().get(0));
        EXPECT_EQ(static_cast<const BlockImpl*>(node)->getName(), "Kept");
        const MetaNode& meta = node->metaNode();
        for (const auto& property : meta.properties()) {
            if (property->name() != StringId("name")) {
                EXPECT_TRUE(property->hasDefaultValue(*node)) << property->name().str();
            }
        }
    }
}

// Numbers are read as stream input reads them, and a file record as far as it goes.
TEST(SerializerBadInput, ValuesAreReadAsFarAsTheyGo)
{
    ModelPtr model = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(model->loadFromBytes(
        QByteArray::fromStdString(std::string(header)
                                  + "<LibraryImpl id=\"1\" modelFileSize=\" 12abc\" position=\"1;2;3;4 and more\""
                                    " fileDependencies=\"[a|b|c|d,short,x|y|z|1|2,notes, v2.txt|7|8|9]\"/>"
                                    "</tdlb-manifest>"),
        errors));
    EXPECT_TRUE(errors.warnings().empty());
    const auto* library = static_cast<const LibraryImpl*>(model->getNodes().get(0));
    EXPECT_EQ(library->getModelFileSize(), 12);
    EXPECT_EQ(library->getPosition(), QRectF(1, 2, 3, 4));
    const FileInfoVector expected{{"a", "b", 0, 0}, {"short,x", "y", 0, 1}, {"notes, v2.txt", "7", 8, 9}};
    EXPECT_EQ(library->getFileDependencies(), expected);
}

TEST(SerializerBadInput, DanglingOrMistypedReferencesBindToNullSilently)
{
    ModelPtr model = Model::createModel();
    EXPECT_EQ(load(std::string(header) + "<LibraryImpl id=\"4\" product=\"7\" dependencies=\"[4,9]\"/></tdlb-manifest>",
                   *model),
              "");
    auto* library = dynamic_cast<LibraryImpl*>(model->getNodes().get(0));
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->getProduct(), nullptr);
    ASSERT_EQ(library->getDependencies().size(), 1) << "the unknown id is dropped, the known one kept";
    EXPECT_EQ(library->getDependencies().get(0), library);

    // A node of the wrong class is no error, only no reference.
    EXPECT_EQ(load(std::string(header) + "<BlockImpl id=\"1\"/><LibraryImpl id=\"2\" product=\"1\"/></tdlb-manifest>",
                   *model),
              "");
    EXPECT_EQ(static_cast<LibraryImpl*>(model->getNodes().get(1))->getProduct(), nullptr);
}

TEST(SerializerBadInput, WrongRootAndEmptyInput)
{
    ModelPtr model = Model::createModel();
    EXPECT_NE(load("<?xml version=\"1.0\"?><catalogue/>", *model).find("root element is 'catalogue'"),
              std::string::npos);
    EXPECT_NE(load("", *model).find("<manifest data>"), std::string::npos);
    EXPECT_FALSE(load("just some text", *model).empty());
}

TEST(SerializerBadInput, TenMegabytesOfGarbageFailsCleanly)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("garbage.xml"));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        QByteArray chunk(1 << 20, '\0');
        QRandomGenerator generator(42);
        for (int i = 0; i < 10; ++i) {
            generator.fillRange(reinterpret_cast<quint32*>(chunk.data()), chunk.size() / 4);
            file.write(chunk);
        }
    }
    ModelPtr model = Model::createModel();
    ErrorHolder errors;
    EXPECT_FALSE(model->load(path.toStdString(), errors));
    EXPECT_TRUE(errors.hasError());
    EXPECT_NE(errors.message().find("garbage.xml"), std::string::npos) << errors.message();
}
