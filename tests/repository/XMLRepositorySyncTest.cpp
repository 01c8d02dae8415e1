#include "XMLRepositoryFixture.h"
#include "ReadOnlyPath.h"

#include "platform/ErrorHolder.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;

class XMLRepositorySyncTest : public Testing::XMLRepositoryFixture {
protected:
    void SetUp() override
    {
        XMLRepositoryFixture::SetUp();
        makeShippedStore({"Alpha", "Beta"});
    }

    // The writable store as a user's work leaves it: its own product list
    // and archives.
    void divergeWritableStore()
    {
        auto model = Model::createModel();
        addProduct(*model, "Alpha", "writable-2", "shipped-1");
        addProduct(*model, "Gamma", "writable-2");
        saveManifest(*model, topLevelFile(writable()));
        writeFile(archive(writable(), "Alpha", "icons"), "writable icons");
        writeFile(archive(writable(), "Alpha", "manifests"), "writable manifests");
        writeFile(archive(writable(), "Gamma", "icons"), "gamma icons");
        writeFile(archive(writable(), "Gamma", "manifests"), "gamma manifests");
    }

    // The products a top-level manifest lists, by path, in its order.
    static Messages productPaths(const std::string& file)
    {
        Messages paths;
        auto model = Model::createModel();
        ErrorHolder errors;
        model->load(file, errors);
        for (TandrilObjectImpl* node : model->getNodes())
            if (auto* library = dynamic_cast<LibraryImpl*>(node); library && library->getIsProduct())
                paths.push_back(library->getPath());
        return paths;
    }

    // Seeded from the shipped list; the writer has then compared it with the
    // host's, which announces the same products.
    void expectSeeded()
    {
        EXPECT_EQ(productPaths(topLevelFile(writable())), (Messages{"Alpha", "Beta"}));
        EXPECT_EQ(productPaths(topLevelFile(shipped())), (Messages{"Alpha", "Beta"}));
        EXPECT_EQ(readFile(tokenFile(writable())).toStdString(), currentToken());
        EXPECT_FALSE(exists(archive(writable(), "Alpha", "icons")));
        EXPECT_FALSE(exists(archive(writable(), "Gamma", "manifests")));
        EXPECT_TRUE(tempEntries().isEmpty()) << tempEntries().join(",").toStdString();
    }
};

TEST_F(XMLRepositorySyncTest, FirstOpenSeedsTheWritableStoreFromTheShippedOne)
{
    QFile::setPermissions(QString::fromStdString(topLevelFile(shipped())), QFile::ReadOwner | QFile::ReadUser);
    auto repository = openRepository();

    expectSeeded();
    EXPECT_TRUE(QFile::permissions(QString::fromStdString(topLevelFile(writable()))) & QFile::WriteOwner);
    EXPECT_TRUE(repository->exists());
    const auto report = repository->getRepositoryReport();
    EXPECT_FALSE(report->hasError() || report->hasWarning());
}

TEST_F(XMLRepositorySyncTest, AStaleTokenDestroysAndReseedsTheWritableStore)
{
    openRepository();
    const std::string good = currentToken();
    std::string changedLast = good;
    changedLast.back() = changedLast.back() == '1' ? '2' : '1';
    std::string changedFirst = good;
    changedFirst.front() = 'X';
    const auto tokenSays = [this](const std::string& token) {
        return [this, token] { writeFile(tokenFile(writable()), QByteArray::fromStdString(token)); };
    };
    const std::vector<std::pair<std::string, std::function<void()>>> staleness{
        {"last character changed", tokenSays(changedLast)},
        {"first character changed", tokenSays(changedFirst)},
        {"longer", tokenSays(good + "0")},
        {"empty", tokenSays("")},
        {"a new shipped store", [&] { setModified(topLevelFile(shipped()), shippedDate.addSecs(1)); }},
    };
    for (const auto& [what, makeStale] : staleness) {
        SCOPED_TRACE(what);
        divergeWritableStore();
        makeStale();
        openRepository();
        expectSeeded();
    }
}

TEST_F(XMLRepositorySyncTest, ATokenWithoutAWritableManifestIsRemovedAndTheStoreReseeded)
{
    openRepository();
    QFile::remove(QString::fromStdString(topLevelFile(writable())));
    // A second line marks this token file: a rewritten token lacks it.
    writeFile(tokenFile(writable()), QByteArray::fromStdString(currentToken() + "\nmarker\n"));
    openRepository();
    expectSeeded();
}

TEST_F(XMLRepositorySyncTest, AValidTokenKeepsTheWritableStoreAsItIs)
{
    openRepository();
    divergeWritableStore();
    writeFile(tokenFile(writable()), QByteArray::fromStdString(currentToken() + "\n"));

    auto repository = openRepository();
    // Kept, but compared with the host's products: Gamma is no longer
    // announced and goes with its archives, Beta is announced and comes.
    EXPECT_EQ(productPaths(topLevelFile(writable())), (Messages{"Alpha", "Beta"}));
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "icons")), "writable icons");
    EXPECT_FALSE(exists(archive(writable(), "Gamma", "icons")));
    EXPECT_EQ(readFile(tokenFile(writable())).toStdString(), currentToken() + "\n");
    EXPECT_FALSE(repository->getRepositoryReport()->hasError());
}

TEST_F(XMLRepositorySyncTest, AnUnwritableTokenIsAnErrorAndTheNextOpenTriesAgain)
{
    const std::string blocks = writable() + "/toolbox/tandril/blocks";
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(blocks)));
    {
        Testing::ReadOnlyPath locked(blocks);
        if (!locked.active())
            GTEST_SKIP() << "cannot make a path read-only here";
        auto repository = openRepository();
        EXPECT_THAT(errorMessages(*repository->getRepositoryReport()),
                    ::testing::IsSupersetOf(std::vector<::testing::Matcher<std::string>>{
                         ::testing::StartsWith("Unable to copy " + topLevelFile(shipped()) + " to "
                                               + topLevelFile(writable()) + ": "),
                         ::testing::Eq("Unable to open token file " + tokenFile(writable()))}));
        EXPECT_FALSE(exists(tokenFile(writable())));
    }
    openRepository();
    expectSeeded();
}

TEST_F(XMLRepositorySyncTest, AShippedStoreThatCannotBeRegeneratedStopsTheSync)
{
    QDir(QString::fromStdString(hostRoot())).removeRecursively();
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(hostRoot())));
    Testing::ReadOnlyPath locked(hostRoot());
    if (!locked.active())
        GTEST_SKIP() << "cannot make a path read-only here";
    auto repository = openRepository();
    const auto report = repository->getRepositoryReport();

    EXPECT_FALSE(repository->exists());
    const Messages errors = errorMessages(*report);
    ASSERT_FALSE(errors.empty());
    EXPECT_EQ(errors.back(), "Unable to generate the numora repository.");

    // No token work and nothing below the host root. The writable store's
    // product list is still compared with the host's.
    EXPECT_FALSE(exists(tokenFile(writable())));
    EXPECT_EQ(productPaths(topLevelFile(writable())), (Messages{"Alpha", "Beta"}));
    EXPECT_TRUE(QDir(QString::fromStdString(hostRoot())).isEmpty());
}

TEST_F(XMLRepositorySyncTest, AShippedStoreOfAnotherSchemaIsRegenerated)
{
    QByteArray bytes = readFile(topLevelFile(shipped()));
    const QByteArray current = QByteArray::fromStdString(Signature::manifestSchema().toString());
    ASSERT_TRUE(bytes.contains(current));
    bytes.replace(current, "00000000000000000000000000000001");
    writeFile(topLevelFile(shipped()), bytes);

    XMLRepository repository(writable(), shipped(), {});
    EXPECT_EQ(repository.shippedReader()->getVersion(), "00000000000000000000000000000001");
    repository.updateProducts();
    EXPECT_FALSE(logged(*repository.getRepositoryReport(), "Unable to generate the numora repository."));
    EXPECT_EQ(repository.shippedReader()->getVersion(), current.toStdString());
    // The development-tree path throws the unusable store away before it
    // generates a new one; the host knows no blocks, so no archive is made.
    EXPECT_FALSE(exists(archive(shipped(), "Alpha", "icons")));
    EXPECT_EQ(productPaths(topLevelFile(shipped())), (Messages{"Alpha", "Beta"}));
}

TEST_F(XMLRepositorySyncTest, DefaultStoresComeFromTheHost)
{
    auto repository = std::dynamic_pointer_cast<XMLRepository>(Repository::open());
    ASSERT_NE(repository, nullptr);
    EXPECT_EQ(repository->shippedDirectory(), shipped());
    EXPECT_EQ(repository->writableDirectory(), writable());
    expectSeeded();
}

} // namespace
} // namespace LibraryBrowser
