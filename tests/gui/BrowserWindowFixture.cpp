#include "BrowserWindowFixture.h"

#include "SyntheticRootGenerator.h"
#include "frame/MessageCatalogue.h"
#include "gui/BlocksPanel.h"
#include "gui/GuiBlock.h"
#include "gui/LibraryBlocksPage.h"
#include "platform/MessageService.h"
#include "support/Files.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QMenu>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QWindow>

namespace LibraryBrowser::Testing {

ExampleRootSession::ExampleRootSession() : ExampleRootSession(Host::HostOptions::bundledRoot()) {}

ExampleRootSession::ExampleRootSession(const QString& sourceRoot)
{
    MessageService::instance().addPrimaryTable(MessageCatalogue::table());
    for (const auto& [file, bytes] : snapshot(sourceRoot.toStdString()))
        writeFile(root() + "/" + file.toStdString(), bytes);
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    options.root = m_root.path();
    options.preferencesDirectory = m_prefs.path();
    m_host = std::make_unique<Host::EmbeddedHost>(options);
    m_host->install();
    m_repository = Repository::open();
}

std::unique_ptr<ExampleRootSession> ExampleRootSession::synthetic(int products, int blocksPerProduct)
{
    Host::SyntheticRootGenerator::Settings settings;
    settings.products = products;
    settings.blocksPerProduct = blocksPerProduct;
    settings.depth = 1;
    settings.crossReferences = false;
    settings.referenceShare = 0;
    QTemporaryDir source;
    QString error;
    if (!Host::SyntheticRootGenerator(settings).write(source.path(), error)) {
        ADD_FAILURE() << error.toStdString();
        return nullptr;
    }
    return std::make_unique<ExampleRootSession>(source.path());
}

ExampleRootSession::~ExampleRootSession()
{
    m_repository.reset();
    m_host.reset();
}

TandrilObject ExampleRootSession::object(const std::string& path)
{
    const TandrilObject found = m_repository->getTandrilObject(path);
    EXPECT_TRUE(found.isValid()) << path;
    return found;
}

std::unique_ptr<StandaloneBrowser> showBrowser(const RepositoryPtr& repository, const std::shared_ptr<QStringList>& texts)
{
    std::unique_ptr<StandaloneBrowser> browser = StandaloneBrowser::create(repository);
    QObject::connect(browser->window()->statusBar(), &QStatusBar::messageChanged, browser->window(),
                     [texts](const QString& text) {
                         if (!text.isEmpty())
                             texts->append(text);
                     });
    browser->showBrowser();
    return browser;
}

ExampleRootSession* BrowserWindowFixture::s_session = nullptr;

StandaloneBrowser& BrowserWindowFixture::open()
{
    m_browser = showBrowser(s_session->repositoryPtr(), m_statusTexts);
    settle();
    return *m_browser;
}

void BrowserWindowFixture::settle(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    do
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    while (clock.elapsed() < milliseconds);
}

QStringList BrowserWindowFixture::menuOpenedBy(const std::function<void()>& action)
{
    QStringList entries;
    QTimer closer;
    closer.setInterval(0);
    QObject::connect(&closer, &QTimer::timeout, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        for (const QAction* entry : menu->actions())
            if (!entry->isSeparator())
                entries.append(entry->text());
        menu->close();
    });
    closer.start();
    action();
    settle();
    closer.stop();
    return entries;
}

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
