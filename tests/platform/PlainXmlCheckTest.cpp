#include "platform/PlainXmlCheck.h"

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

bool quick(const QByteArray& bytes)
{
    return PlainXmlCheck::check(bytes, "svg") == PlainXmlCheck::Verdict::WellFormed;
}

const QByteArray Icon = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 120 80\">\n"
                        "  <rect x='4' y='4' width=\"112\" height=\"72\" rx=\"6\" fill=\"#f7f8f4\"/>\n"
                        "  <g stroke=\"#1f5fa8\"><line x1=\"10\" y1=\"40\" x2=\"11.02\" y2=\"46.6\"/></g>\n"
                        "  <text x=\"60\" y=\"44\" text-anchor=\"middle\">Gain &amp; Offset &lt;1&gt;</text >\n"
                        "</svg>\n";

// What our writers make passes without the full parser; anything broken or
// outside the plain form is left to the full parser. That nothing it passes
// is rejected by the full parser is the plain_xml fuzz target's check.
TEST(PlainXmlCheckTest, OnlyThePlainFormPassesWithoutTheFullParser)
{
    EXPECT_TRUE(quick(Icon));
    EXPECT_TRUE(quick("<svg/>"));
    EXPECT_TRUE(quick("  \r\n<svg a=\"x > y\"></svg>\t"));
    const QByteArray leftToParser[] = {
        "", "<svg>", "<svg><g></svg></g>", "<svg></svg><svg/>", "<svg></svg>tail", "lead<svg/>", "<g/>",
        "<svg a=\"1\" a=\"2\"/>", "<svg a=\"1\"b=\"2\"/>", "<svg a=1/>", "<svg a=\"<\"/>", "<svg>&nbsp;</svg>",
        "<svg>&amp</svg>", "<svg>]]></svg>", "<svg></ svg>", "<svg/ >", "<?xml version=\"1.0\"?><svg/>",
        "<!-- c --><svg/>", "<svg><![CDATA[x]]></svg>", "<svg xmlns:x=\"urn:x\"><x:g/></svg>",
        "<svg>caf\xc3\xa9</svg>", "<svg>\x01</svg>", "<svg><1a/></svg>", "xsvg/>",
    };
    for (const QByteArray& bytes : leftToParser)
        EXPECT_FALSE(quick(bytes)) << bytes.constData();
}

} // namespace
} // namespace LibraryBrowser
