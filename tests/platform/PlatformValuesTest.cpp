#include "platform/SharedText.h"
#include "platform/ShutdownRegistry.h"
#include "platform/StringId.h"

#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

using namespace LibraryBrowser;

TEST(StringId, EqualTextGivesIdenticalIdAndHash)
{
    const std::string text = "Tandril/Sources/Sine Wave";
    StringId a(text);
    StringId b(std::string("Tandril/Sources/") + "Sine Wave");
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.c_str(), b.c_str()) << "interned ids share one text";
    EXPECT_EQ(a.hash(), b.hash());
    EXPECT_NE(a, StringId("Tandril/Sources/Sine wave"));
    std::unordered_set<StringId> set{a, b, StringId("other")};
    EXPECT_EQ(set.size(), 2u);

    EXPECT_TRUE(StringId().isEmpty());
    EXPECT_EQ(StringId(), StringId(""));
    EXPECT_EQ(StringId(static_cast<const char*>(nullptr)), StringId());
}

TEST(StringId, IdsSurviveTheTableGrowingAndCountEachTextOnce)
{
    // Enough new texts to grow the table several times over, with texts
    // that differ only late and some that differ only in length.
    const std::size_t before = StringId::internedCount();
    std::vector<StringId> ids;
    std::vector<const char*> addresses;
    for (int i = 0; i < 20000; ++i) {
        ids.emplace_back("StringIdGrowth/Subsystem/Block " + std::to_string(i));
        addresses.push_back(ids.back().c_str());
    }
    EXPECT_EQ(StringId::internedCount(), before + 20000);
    for (int i = 0; i < 20000; ++i) {
        const StringId again("StringIdGrowth/Subsystem/Block " + std::to_string(i));
        ASSERT_EQ(again, ids[std::size_t(i)]) << i;
        ASSERT_EQ(again.c_str(), addresses[std::size_t(i)]) << "an id's text never moves";
        ASSERT_EQ(again.str(), "StringIdGrowth/Subsystem/Block " + std::to_string(i));
    }
    EXPECT_EQ(StringId::internedCount(), before + 20000) << "looking up interns nothing new";
    EXPECT_NE(StringId(std::string("a\0b", 3)), StringId("a")) << "text after a zero byte counts";
}

TEST(SharedText, HoldersOfEqualTextShareOneCopyAndReadAsText)
{
    const std::string name = "toolbox/Signals/lb_Signals_icons_repos.rps";
    const SharedText a(name);
    const SharedText b = std::string("toolbox/Signals/") + "lb_Signals_icons_repos.rps";
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.c_str(), b.c_str()) << "one copy for every holder";
    EXPECT_NE(a, SharedText("toolbox/Signals/lb_Signals_manifests_repos.rps"));
    EXPECT_EQ("/store/" + a + ".bak", "/store/" + name + ".bak");
    EXPECT_EQ(SharedText(), SharedText(""));
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
        EXPECT_EQ(log, (std::vector<std::string>{"prepare a", "prepare b", "terminate a", "terminate b"}));

        log.clear();
        registry.unregisterObject("a");
        EXPECT_EQ(log, std::vector<std::string>{"destroyed a"});
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
