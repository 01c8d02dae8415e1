// The quick insert: typing on a model's drawing, the popup's keys, the
// favourites and the recently used blocks it starts with.

#include "BlockActionsFixture.h"

#include "ModelWindows.h"
#include "gui/BlockHistory.h"
#include "gui/BrowserPreferences.h"
#include "gui/GuiBlock.h"
#include "gui/QuickInsertPopup.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsView>
#include <QLineEdit>
#include <QScreen>
#include <QTest>

namespace LibraryBrowser::Testing {
namespace {

const std::string pid = "Kinetics/Continuous/PID Controller";

class QuickInsertTest : public BlockActionsFixture {
protected:
    void SetUp() override
    {
        BlockActionsFixture::SetUp();
        openOn("Kinetics");
        session().host().modelWindows()->setTypingHandler(
            [this](const std::string& system, const QPoint& global, const QString& text) {
                browser().openQuickInsert(system, global, text);
            });
    }
    void TearDown() override
    {
        session().host().modelWindows()->setTypingHandler(nullptr);
        BlockActionsFixture::TearDown();
    }

    QuickInsertPopup* popup()
    {
        QuickInsertPopup* shown = browser().quickInsertPopup();
        return shown && shown->isVisible() ? shown : nullptr;
    }
    QStringList rows()
    {
        QStringList paths;
        if (QuickInsertPopup* shown = popup())
            for (const RankedBlock& row : shown->rows().rows())
                paths.append(QString::fromStdString(row.block.getDisplayPath()));
        return paths;
    }
    void keys(const QString& text)
    {
        QTest::keyClicks(popup()->queryEdit(), text);
        settle();
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(popup()->queryEdit(), which, modifiers);
        settle();
    }
};

// A letter typed on the drawing opens the popup where the mouse is, kept on
// the screen, but not on a locked library's; Enter puts the first match into
// that model with its corner exactly at that point. (The real-display journey
// takes the same road with a person's keys, the favourite and the restart.)
TEST_F(QuickInsertTest, TypingOnAModelInsertsTheBestMatchAtTheMouse)
{
    ASSERT_TRUE(call("open_system", {HostValue::string("kinetics")}).ok);
    ASSERT_TRUE(session().host().systems().current()->locked);
    QTest::keyClick(modelWindow("kinetics")->findChild<QGraphicsView*>(), Qt::Key_P);
    settle();
    EXPECT_EQ(popup(), nullptr);
    const std::string model = newSystem("Model");
    Host::ModelWindow* window = modelWindow(model);
    ASSERT_NE(window, nullptr);
    placeBesideBrowser(window);
    auto* drawing = window->findChild<QGraphicsView*>();
    const QPoint at = window->viewport()->mapToGlobal(QPoint(150, 90));
    QCursor::setPos(at);
    QTest::keyClick(drawing, Qt::Key_P);
    settle();
    ASSERT_NE(popup(), nullptr);
    // At the mouse, moved only as far as keeps it on the screen.
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(popup()->pos(), QPoint(std::min(at.x(), screen.right() + 1 - popup()->width()), at.y()));
    keys("id");
    ASSERT_FALSE(rows().isEmpty());
    EXPECT_EQ(rows().front().toStdString(), pid);
    key(Qt::Key_Return);
    EXPECT_EQ(popup(), nullptr);
    const auto& blocks = session().host().systems().find(model)->document.blocks;
    ASSERT_EQ(blocksOf(model), QStringList{"PID Controller"});
    EXPECT_EQ(QPointF(blocks[0].position.left, blocks[0].position.top), window->toModel(at));

    // Shortcuts and a lone space keep their meaning on the drawing.
    QTest::keyClick(drawing, Qt::Key_Space);
    QTest::keyClick(drawing, Qt::Key_A, Qt::ControlModifier);
    settle();
    EXPECT_EQ(popup(), nullptr);
}

// Arrows stop at the ends, Ctrl+Enter inserts and stays, Ctrl+D marks a
// favourite, which the empty query then lists before the recently used
// blocks; Escape closes; a favourite that no longer exists goes quietly.
TEST_F(QuickInsertTest, KeysMoveInsertMarkFavouritesAndClose)
{
    const std::string model = newSystem("Model");
    {
        BrowserPreferences prefs(preferencesFile());
        prefs.setStringList(PrefKey::LBFavoriteBlocks, {"kinetics/No Such Block"});
        ASSERT_TRUE(prefs.save());
    }
    closeWindow();
    openOn("Kinetics");
    browser().openQuickInsert(std::string(), std::nullopt, QString());
    settle();
    ASSERT_NE(popup(), nullptr);
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_TRUE(BrowserPreferences(preferencesFile()).getStringList(PrefKey::LBFavoriteBlocks).isEmpty());

    // Subsystems stand for libraries: a model takes none. "gain" matches
    // three blocks and three subsystems.
    keys("gain");
    EXPECT_EQ(rows() << popup()->footerText(), (QStringList{"Arithmetica/Basic Operations/Gain", "Kinetics/Continuous/Zero-Pole",
                                                           "Kinetics/Continuous/\u00dcbertragungsglied PT1", "3 matching blocks"}));
    popup()->queryEdit()->clear();
    keys("delay");
    ASSERT_GE(rows().size(), 3);
    key(Qt::Key_Up);
    const int top = popup()->rows().current();
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    EXPECT_EQ(std::make_pair(top, popup()->rows().current()), std::make_pair(0, 2));
    const QString third = rows()[2];
    const std::string thirdPath = popup()->rows().currentBlock()->block.getPath();
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_NE(popup(), nullptr);
    EXPECT_EQ(std::make_pair(blocksOf(model).size(), popup()->rows().current()), std::make_pair(qsizetype(1), 2));

    key(Qt::Key_Up);
    const std::string favourite = popup()->rows().currentBlock()->block.getPath();
    key(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(BrowserPreferences(preferencesFile()).getStringList(PrefKey::LBFavoriteBlocks),
              QStringList{QString::fromStdString(favourite)});
    EXPECT_TRUE(popup()->rows().currentBlock()->favourite && popup()->rows().currentBlock()->block.getPath() == favourite);

    // Added last, a block after the other in the tree comes first among the recents.
    popup()->queryEdit()->clear();
    keys("pulse train");
    ASSERT_EQ(rows().value(0), "Kinetics/Test Signals/Pulse Train");
    key(Qt::Key_Return, Qt::ControlModifier);
    popup()->queryEdit()->clear();
    settle();
    ASSERT_EQ(rows().size(), 3);
    EXPECT_EQ(std::make_tuple(popup()->rows().rows()[0].block.getPath(), rows()[1], rows()[2],
                              popup()->rows().rows()[2].block.getPath()),
              std::make_tuple(favourite, QString("Kinetics/Test Signals/Pulse Train"), third, thirdPath));

    key(Qt::Key_Escape);
    EXPECT_EQ(popup(), nullptr);
    EXPECT_EQ(blocksOf(model).size(), 2);
}

// The context menu's entry after the design's, the recents' bound, and a
// history whose file can't be written.
TEST_F(QuickInsertTest, TheContextMenuMarksFavouritesAndRecentsKeepTheLastTwenty)
{
    closeWindow();
    openOn("Kinetics/Continuous");
    browser().selectBlockByName(pid);
    settle();
    const auto menuOf = [this](GuiBlock* tile) {
        return menuOpenedBy([&] { browser().internalShowBlockContextMenu(tile, QPoint(100, 100)); });
    };
    const QStringList menu = menuOf(tile(pid));
    ASSERT_EQ(menu.value(menu.size() - 1), "Add to Favorites");
    // The menu was closed without a choice; the entry acts through the history.
    BlockHistory& history = browser().blockHistory();
    const std::string path = tile(pid)->getPath();
    history.setFavourite(path, true);
    EXPECT_EQ(menuOf(tile(pid)).value(menu.size() - 1), "Remove from Favorites");

    for (int i = 0; i < 25; ++i)
        history.noteAdded("lib/Block " + std::to_string(i));
    history.noteAdded("lib/Block 22");
    BrowserPreferences again(preferencesFile());
    const QStringList recents = again.getStringList(PrefKey::LBRecentBlocks);
    EXPECT_EQ((QStringList{recents.value(0), recents.value(1), recents.value(19), recents.value(20)}),
              (QStringList{"lib/Block 22", "lib/Block 24", "lib/Block 5", ""}));
    EXPECT_EQ(again.getStringList(PrefKey::LBFavoriteBlocks), QStringList{QString::fromStdString(path)});

    // A preferences file that can't be written: the history works on for the
    // session and says so.
    const QString blocker = QDir(QFileInfo(preferencesFile()).absolutePath()).filePath("not-a-directory");
    writeFile(blocker.toStdString(), "");
    BrowserPreferences prefs(blocker + "/LibraryBrowser.ini");
    BlockHistory lost(prefs);
    EXPECT_FALSE(lost.noteAdded("lib/Gain") || lost.setFavourite("lib/Gain", true));
    EXPECT_TRUE(lost.isFavourite("lib/Gain") && lost.recents() == QStringList{"lib/Gain"});
    EXPECT_TRUE(lost.saveFailureMessage().contains(blocker)) << lost.saveFailureMessage().toStdString();
    QFile::remove(blocker);
}

TEST(QuickInsertRowsTest, BoldRunsCountCharactersAndTheRestIsEscaped)
{
    EXPECT_EQ(QuickInsertRows::highlighted(QString::fromUtf8("R\u00e9sonateur <2>"), {{1, 3}, {12, 1}}),
              QString::fromUtf8("R<b>\u00e9so</b>nateur &lt;<b>2</b>&gt;"));
    // A character beyond sixteen bits counts once.
    EXPECT_EQ(QuickInsertRows::highlighted(QString::fromUtf8("\U0001D714 Gain"), {{2, 4}}),
              QString::fromUtf8("\U0001D714 <b>Gain</b>"));
    EXPECT_EQ(QuickInsertRows::libraryPath("Kinetics/Continuous/PID Controller", "PID Controller"),
              "Kinetics/Continuous");
    QuickInsertRows rows;
    rows.move(1);
    EXPECT_TRUE(rows.current() == -1 && !rows.currentBlock());
}

} // namespace
} // namespace LibraryBrowser::Testing
