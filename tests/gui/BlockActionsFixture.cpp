#include "BlockActionsFixture.h"

#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QMainWindow>
#include <QMenu>
#include <QTest>
#include <QWindow>

namespace LibraryBrowser::Testing {

void BlockActionsFixture::SetUp()
{
    BrowserWindowFixture::SetUp();
    session().host().showWindows();
    std::vector<std::string> open;
    for (const Host::OpenSystem& system : session().host().systems().systems())
        open.push_back(system.name);
    for (const std::string& name : open)
        ASSERT_TRUE(call("close_system", {HostValue::string(name)}).ok) << name;
    call("private_td_close_block_dialogs");
    settle();
}

std::string BlockActionsFixture::newSystem(const char* type)
{
    const auto result = call("private_td_new_system", {HostValue::string(type)}, 1);
    EXPECT_TRUE(result.ok) << result.errorMessage;
    return result.ok ? result.outputs.front().toString() : std::string();
}

QStringList BlockActionsFixture::blocksOf(const std::string& system)
{
    QStringList names;
    if (const Host::OpenSystem* open = session().host().systems().find(system))
        for (const Host::BlockRecord& block : open->document.blocks)
            names.append(QString::fromStdString(block.name));
    return names;
}

StandaloneBrowser& BlockActionsFixture::openOn(const std::string& node)
{
    StandaloneBrowser& window = open();
    window.setPosition(QRect(20, 20, 520, 480));
    // A nested node is found by opening the tree down to it.
    if (node.find('/') == std::string::npos)
        window.selectTreeNodeByName(node);
    else
        window.internalOpenSubsystemInTree(node);
    settle();
    EXPECT_EQ(window.getCurrentTreeNode(), node);
    return window;
}

GuiBlock* BlockActionsFixture::tile(const std::string& displayPath)
{
    GuiBlock* found = browser().libraryPage()->getBlockByPathName(displayPath);
    EXPECT_NE(found, nullptr) << displayPath;
    return found;
}

QStringList BlockActionsFixture::commandsSinceMark()
{
    QStringList commands;
    const auto& entries = session().host().commandLog().entries();
    for (std::size_t i = m_commandMark; i < entries.size(); ++i)
        commands.append(QString::fromStdString(entries[i].command));
    return commands;
}

void BlockActionsFixture::drag(GuiBlock* tile, Qt::MouseButton button, const QPoint& global)
{
    // The user scrolls to the tile first.
    browser().selectBlockByName(tile->getDisplayPath());
    settle();
    QWindow* handle = browser().window()->windowHandle();
    const QPoint start = tile->getPanel()->mapTo(browser().window(), tile->geometry().center());
    QCursor::setPos(handle->mapToGlobal(start));
    QTest::mousePress(handle, button, {}, start);
    QTest::mouseMove(handle, start + QPoint(12, 6));
    const QPoint end = handle->mapFromGlobal(global);
    QCursor::setPos(global);
    QTest::mouseMove(handle, end);
    QTest::mouseRelease(handle, button, {}, end);
    settle();
}

BlockActionsFixture::MenuEntry BlockActionsFixture::editMenuAddEntry()
{
    QAction* add = browser().action(BrowserAction::AddBlock);
    QMenu* edit = nullptr;
    for (QObject* owner : add->associatedObjects())
        if (auto* menu = qobject_cast<QMenu*>(owner))
            edit = menu;
    EXPECT_NE(edit, nullptr);
    if (!edit)
        return {};
    edit->popup(browser().window()->mapToGlobal(QPoint(10, 30)));
    settle();
    const MenuEntry entry{add->text(), add->isEnabled()};
    edit->hide();
    settle();
    return entry;
}

} // namespace LibraryBrowser::Testing
