#include "model/ManifestScanner.h"
#include "model/Model.h"

#include <gtest/gtest.h>

using namespace LibraryBrowser;

namespace {

const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const std::string root = "<tdlb-manifest format=\"1\" signature=\"82d9731addc98524506a2f8fd4ee71ca\">\n";
const std::string rootEnd = "</tdlb-manifest>\n";

QByteArray document(const std::string& body)
{
    return QByteArray::fromStdString(declaration + root + body + rootEnd);
}

} // namespace

TEST(ManifestScanner, ReadsWhatXmlAllowsAroundThePlainForm)
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
        {"character references", declaration + root + "<BlockImpl id=\"1\" name=\"&#65;&#x42;&#xe9;&apos;\"/>"
                                     + rootEnd,
         "AB\u00e9'"},
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
}

TEST(ManifestScanner, DeclinesAnythingBeyondThePlainFormAndLeavesTheModelAsItWas)
{
    struct Case {
        const char* what;
        QByteArray bytes;
    };
    const Case cases[] = {
        {"empty", QByteArray()},
        {"comment", document("<!-- note --><BlockImpl id=\"1\"/>")},
        {"doctype", QByteArray::fromStdString(declaration + "<!DOCTYPE x>" + root + rootEnd)},
        {"processing instruction", document("<?pi data?><BlockImpl id=\"1\"/>")},
        {"other encoding", QByteArray::fromStdString("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + root + rootEnd)},
        {"byte order mark", QByteArray::fromStdString("\xEF\xBB\xBF" + declaration + root + rootEnd)},
        {"other root", QByteArray::fromStdString(declaration + "<manifest>" + "</manifest>")},
        {"unknown entity", document("<BlockImpl id=\"1\" name=\"a&nbsp;b\"/>")},
        {"unterminated reference", document("<BlockImpl id=\"1\" name=\"a&amp b\"/>")},
        {"reference to a character XML forbids", document("<BlockImpl id=\"1\" name=\"a&#0;b\"/>")},
        {"hexadecimal reference with a capital X", document("<BlockImpl id=\"1\" name=\"&#X43;\"/>")},
        {"reference past Unicode", document("<BlockImpl id=\"1\" name=\"&#x110000;\"/>")},
        {"literal line break in a value", document("<BlockImpl id=\"1\" name=\"a\nb\"/>")},
        {"literal tab in a value", document("<BlockImpl id=\"1\" name=\"a\tb\"/>")},
        {"less-than in a value", document("<BlockImpl id=\"1\" name=\"a<b\"/>")},
        {"broken UTF-8", document("<BlockImpl id=\"1\" name=\"a\xC3(b\"/>")},
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
        {"no id", document("<BlockImpl name=\"a\"/>")},
        {"id zero", document("<BlockImpl id=\"0\"/>")},
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

TEST(ManifestScanner, NumbersNodesOnAfterThoseTheModelHadAndBindsReferencesWithinTheDocument)
{
    ModelPtr model = Model::createModel();
    model->createBlockImpl();
    ASSERT_TRUE(ManifestScanner::scan(
        *model, document("<PaletteImpl id=\"1\" product=\"2\" dependencies=\"[2,9]\"/><LibraryImpl id=\"2\"/>")));
    ASSERT_EQ(model->nodeCount(), 3);
    const auto* palette = dynamic_cast<const PaletteImpl*>(model->getNodes().get(1));
    const auto* library = model->getNodes().get(2);
    ASSERT_NE(palette, nullptr);
    EXPECT_EQ(palette->id(), 2u);
    EXPECT_EQ(library->id(), 3u);
    EXPECT_EQ(palette->getProduct(), library);
    // An id the document never defined drops out of a list.
    ASSERT_EQ(palette->getDependencies().size(), 1);
    EXPECT_EQ(palette->getDependencies().get(0), library);
}
