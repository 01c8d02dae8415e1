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

TEST(SerializerBadInput, EveryFaultEndsInTheErrorHolder)
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
        {"non-numeric bool", "<BlockImpl id=\"1\" isInvalid=\"yes\"/></tdlb-manifest>", "'isInvalid'"},
        {"bool out of range", "<SubSystemImpl id=\"1\" isFlat=\"2\"/></tdlb-manifest>", "'isFlat'"},
        {"non-numeric size", "<LibraryImpl id=\"1\" modelFileSize=\"12abc\"/></tdlb-manifest>", "'modelFileSize'"},
        {"date beyond 32 bits", "<LibraryImpl id=\"1\" modelFileDate=\"99999999999\"/></tdlb-manifest>",
         "'modelFileDate'"},
        {"short rect", "<BlockImpl id=\"1\" position=\"1,2,3\"/></tdlb-manifest>", "'position'"},
        {"bad file record", "<LibraryImpl id=\"1\" fileDependencies=\"[a|b|c|d]\"/></tdlb-manifest>",
         "'fileDependencies'"},
        {"bad reference", "<LibraryImpl id=\"1\" product=\"first\"/></tdlb-manifest>", "'product'"},
        {"dangling reference", "<LibraryImpl id=\"1\" product=\"7\"/></tdlb-manifest>", "unknown node id 7"},
        {"dangling list element", "<LibraryImpl id=\"1\" dependencies=\"[1,9]\"/></tdlb-manifest>",
         "unknown node id 9"},
    };
    for (const BadDocument& c : cases) {
        SCOPED_TRACE(c.what);
        ModelPtr model = Model::createModel();
        const std::string message = load(std::string(header) + c.xml, *model);
        EXPECT_NE(message.find(c.expectedInMessage), std::string::npos) << message;
    }
}

TEST(SerializerBadInput, DanglingOrMistypedReferencesBindToNull)
{
    ModelPtr model = Model::createModel();
    load(std::string(header) + "<LibraryImpl id=\"4\" product=\"7\" dependencies=\"[4,9]\"/></tdlb-manifest>", *model);
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
