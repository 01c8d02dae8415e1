#include "platform/HostValue.h"
#include "platform/PlainXmlCheck.h"
#include "platform/ShutdownRegistry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace LibraryBrowser;

// Two values the host passes are the same only when kind, shape and every
// element agree: scripts compare what a call gave back with what they sent.
TEST(HostValue, ValuesAreEqualOnlyInKindShapeAndEveryElement)
{
    EXPECT_EQ(HostValue::cellOfStrings({"a", "b"}), HostValue::cellOfStrings({"a", "b"}));
    EXPECT_EQ(HostValue::doubleMatrix(1, 2, {1, 2}), HostValue::doubleMatrix(1, 2, {1, 2}));
    const std::pair<HostValue, HostValue> different[] = {
        {HostValue::string("a"), HostValue::string("b")}, {HostValue::doubleScalar(1), HostValue::doubleScalar(2)},
        {HostValue::logicalScalar(true), HostValue::logicalScalar(false)},
        {HostValue::doubleMatrix(1, 2, {1, 2}), HostValue::doubleMatrix(2, 1, {1, 2})},
        {HostValue::string("1"), HostValue::cellOfStrings({"1"})},
        {HostValue::cellOfStrings({"a", "b"}), HostValue::cellOfStrings({"a", "c"})},
    };
    for (const auto& [left, right] : different)
        EXPECT_TRUE(left != right && right != left) << left.toString();
}

namespace {
struct Probe : ShutdownObject {
    Probe(std::string name, std::vector<std::string>& log, bool ok = true)
        : ShutdownObject(std::move(name)), m_log(log), m_ok(ok) {}
    ~Probe() override { m_log.push_back("destroyed " + name()); }
    bool isOkToExit() override { return m_ok; }
    bool prepareToExit() override { m_log.push_back("prepare " + name()); return true; }
    void terminate() override { m_log.push_back("terminate " + name()); }
    std::vector<std::string>& m_log;
    bool m_ok;
};
} // namespace

TEST(ShutdownRegistry, RunsStagesInOrderAndHonoursAVeto)
{
    std::vector<std::string> log;
    {
        ShutdownRegistry registry;
        registry.registerObject(std::make_unique<Probe>("a", log));
        registry.registerObject(std::make_unique<Probe>("b", log));
        EXPECT_TRUE(registry.runExitSequence());
        registry.unregisterObject("a");
        EXPECT_EQ(log, (std::vector<std::string>{"prepare a", "prepare b", "terminate a", "terminate b", "destroyed a"}));
        EXPECT_FALSE(registry.contains("a"));
        registry.unregisterObject("never registered");
        EXPECT_EQ(registry.size(), 1u);

        log.clear();
        registry.registerObject(std::make_unique<Probe>("veto", log, false));
        EXPECT_FALSE(registry.runExitSequence());
        EXPECT_TRUE(log.empty()) << "nothing is prepared when an object vetoes the exit";
    }
    EXPECT_EQ(log.size(), 2u) << "the registry destroys what it still owns";
}

namespace {

bool quick(const QByteArray& bytes) { return PlainXmlCheck::check(bytes, "svg") == PlainXmlCheck::Verdict::WellFormed; }

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
