// Typing on a drawing offers the quick insert only where blocks may be put:
// a locked library's drawing takes no typed block.

#include "BlockActionsFixture.h"

#include "ModelWindows.h"

#include <QGraphicsView>
#include <QTest>

namespace LibraryBrowser::Testing {
namespace {

class QuickInsertLockedLibraryTest : public BlockActionsFixture {
protected:
    void SetUp() override
    {
        BlockActionsFixture::SetUp();
        openOn("Kinetics");
        session().host().modelWindows()->setTypingHandler(
            [this](const std::string& system, const QPoint&, const QString&) { m_typedIn.push_back(system); });
    }
    void TearDown() override
    {
        session().host().modelWindows()->setTypingHandler(nullptr);
        BlockActionsFixture::TearDown();
    }
    void typeOn(const std::string& system)
    {
        Host::ModelWindow* window = modelWindow(system);
        ASSERT_NE(window, nullptr) << system;
        QTest::keyClick(window->findChild<QGraphicsView*>(), Qt::Key_P);
        settle();
    }

    std::vector<std::string> m_typedIn;
};

TEST_F(QuickInsertLockedLibraryTest, TypingReachesTheQuickInsertOnAModelButNotOnALockedLibrary)
{
    ASSERT_TRUE(call("open_system", {HostValue::string("kinetics")}).ok);
    ASSERT_TRUE(session().host().systems().current()->locked);
    typeOn("kinetics");
    const std::string model = newSystem("Model");
    typeOn(model);
    EXPECT_EQ(m_typedIn, std::vector<std::string>{model});
}

} // namespace
} // namespace LibraryBrowser::Testing
