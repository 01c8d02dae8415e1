#include "PageTestSupport.h"

#include "SyntheticRootGenerator.h"
#include "frame/MessageCatalogue.h"
#include "gui/GuiBlock.h"
#include "platform/MessageService.h"
#include "support/Files.h"

#include <gtest/gtest.h>

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

int FakePageHost::addNode(const TandrilObject& object)
{
    const int uid = int(m_nodes.size()) + 1;
    m_nodes[uid] = object.toBlock();
    return uid;
}

Block FakePageHost::getTreeNodeBlock(int uid) const
{
    const auto found = m_nodes.find(uid);
    return found == m_nodes.end() ? Block() : found->second;
}

void FakePageHost::internalUpdateDescription(GuiBlock* tile) { description = tile ? tile->getDisplayPath() : ""; }

void FakePageHost::internalShowBlockContextMenu(GuiBlock* tile, const QPoint&)
{
    menus.push_back(tile->getDisplayName());
}

} // namespace LibraryBrowser::Testing
