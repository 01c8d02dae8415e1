#include "model/MetaModel.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

namespace {

struct BadDocument {
    const char* what;
    std::string xml;
    const char* expectedInMessage;
};

const std::string header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<tdlb-manifest format=\"1\" signature=\"82d9731addc98524506a2f8fd4ee71ca\">\n";

std::string load(const std::string& body, Model& model)
{
    ErrorHolder errors;
    const bool ok = model.loadFromBytes(QByteArray::fromStdString(body), errors);
    EXPECT_EQ(ok, !errors.hasError());
    return ok ? std::string() : errors.message();
}

} // namespace

// Every structural fault ends in the error holder, and the nodes read before
// it stay.
TEST(SerializerBadInput, EveryStructuralFaultEndsInTheErrorHolder)
{
    const BadDocument cases[] = {
        {"truncated", header + "<BlockImpl id=\"1\" name=\"Ga", "Premature end of document"},
        {"unclosed root", header + "<BlockImpl id=\"1\"/>", "Premature end of document"},
        {"unknown node type", header + "<WidgetImpl id=\"1\"/></tdlb-manifest>", "Unknown node type 'WidgetImpl'"},
        {"abstract node type", header + "<TandrilObjectImpl id=\"1\"/></tdlb-manifest>", "Unknown node type"},
        {"unknown property", header + "<BlockImpl id=\"1\" colour=\"red\"/></tdlb-manifest>",
         "Unknown property 'colour'"},
        {"missing id", header + "<BlockImpl name=\"Gain\"/></tdlb-manifest>", "without an id"},
        {"repeated id", header + "<BlockImpl id=\"1\"/><BlockImpl id=\"1\"/></tdlb-manifest>", "repeated node id"},
        {"non-numeric id", header + "<BlockImpl id=\"one\"/></tdlb-manifest>", "node id 'one'"},
        {"wrong root", "<?xml version=\"1.0\"?><catalogue/>", "root element is 'catalogue'"},
        {"empty", "", "<manifest data>"},
        {"text", "just some text", "<manifest data>"},
    };
    for (const BadDocument& c : cases) {
        SCOPED_TRACE(c.what);
        ModelPtr model = Model::createModel();
        const std::string message = load(c.xml, *model);
        EXPECT_NE(message.find(c.expectedInMessage), std::string::npos) << message;
    }
    // A fault keeps the nodes read before it.
    ModelPtr model = Model::createModel();
    EXPECT_FALSE(load(header + "<BlockImpl id=\"1\" name=\"Gain\"/><BlockImpl id=\"2\" name=\"Sum\"/>"
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
            QByteArray::fromStdString(header + c.xml
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

// Numbers are read as stream input reads them, and a file record as far as it
// goes; references that lead nowhere are no fault.
TEST(SerializerBadInput, ValuesAreReadAsFarAsTheyGo)
{
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
    EXPECT_EQ(library->getModelFileSize(), 12);
    EXPECT_EQ(library->getPosition(), QRectF(1, 2, 3, 4));
    const FileInfoVector expected{{"a", "b", 0, 0}, {"short,x", "y", 0, 1}, {"notes, v2.txt", "7", 8, 9}};
    EXPECT_EQ(library->getFileDependencies(), expected);

    // Dangling or mistyped references bind to null, silently.
    model = Model::createModel();
    EXPECT_EQ(load(header + "<LibraryImpl id=\"4\" product=\"7\" dependencies=\"[4,9]\"/></tdlb-manifest>",
                   *model),
              "");
    auto* dangling = dynamic_cast<LibraryImpl*>(model->getNodes().get(0));
    ASSERT_NE(dangling, nullptr);
    EXPECT_EQ(dangling->getProduct(), nullptr);
    ASSERT_EQ(dangling->getDependencies().size(), 1) << "the unknown id is dropped, the known one kept";
    EXPECT_EQ(dangling->getDependencies().get(0), dangling);

    // A node of the wrong class is no error, only no reference.
    EXPECT_EQ(load(header + "<BlockImpl id=\"1\"/><LibraryImpl id=\"2\" product=\"1\"/></tdlb-manifest>",
                   *model),
              "");
    EXPECT_EQ(static_cast<LibraryImpl*>(model->getNodes().get(1))->getProduct(), nullptr);
}
