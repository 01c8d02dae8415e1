#include "PageTestSupport.h"

#include "SyntheticRootGenerator.h"
#include "frame/MessageCatalogue.h"
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

} // namespace LibraryBrowser::Testing
