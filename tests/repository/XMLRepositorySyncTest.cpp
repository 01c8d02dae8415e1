#include "StoreFixture.h"
#include "ReadOnlyPath.h"

#include "platform/ErrorHolder.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace LibraryBrowser {
namespace {

using Messages = std::vector<std::string>;

class XMLRepositorySyncTest : public Testing::StoreFixture {
protected:
    void SetUp() override
    {
        StoreFixture::SetUp();
        makeShippedStore({"Alpha", "Beta"});
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

// The first open, on the host's default stores, seeds the writable store from
// the shipped one; a stale token, or one without a writable manifest,
// reseeds it; a valid one keeps it as it is, compared with the host's
// products. A shipped store of another schema is regenerated.
TEST_F(XMLRepositorySyncTest, FirstOpenSeedsTheWritableStoreFromTheShippedOne)
{
    QFile::setPermissions(QString::fromStdString(topLevelFile(shipped())), QFile::ReadOwner | QFile::ReadUser);
    auto repository = std::dynamic_pointer_cast<XMLRepository>(Repository::open());
    ASSERT_NE(repository, nullptr);
    EXPECT_EQ(repository->shippedDirectory(), shipped());
    EXPECT_EQ(repository->writableDirectory(), writable());
    expectSeeded();
    EXPECT_TRUE(QFile::permissions(QString::fromStdString(topLevelFile(writable()))) & QFile::WriteOwner);
    EXPECT_TRUE(repository->exists());
    EXPECT_FALSE(repository->getRepositoryReport()->hasError() || repository->getRepositoryReport()->hasWarning());

    // A token without a writable manifest; a second line marks the token
    // file, which a rewritten token lacks.
    QFile::remove(QString::fromStdString(topLevelFile(writable())));
    writeFile(tokenFile(writable()), QByteArray::fromStdString(currentToken() + "\nmarker\n"));
    openRepository();
    expectSeeded();

    // The writable store as a user's work leaves it: its own product list and archives.
    const auto diverge = [&] {
        auto model = Model::createModel();
        addProduct(*model, "Alpha", "writable-2", "shipped-1");
        addProduct(*model, "Gamma", "writable-2");
        saveManifest(*model, topLevelFile(writable()));
        for (const char* product : {"Alpha", "Gamma"})
            for (const char* kind : {"icons", "manifests"})
                writeFile(archive(writable(), product, kind), QByteArray(product) + " " + kind);
    };
    const std::string good = currentToken();
    std::string changedLast = good;
    changedLast.back() = changedLast.back() == '1' ? '2' : '1';
    const auto tokenSays = [this](const std::string& token) {
        return [this, token] { writeFile(tokenFile(writable()), QByteArray::fromStdString(token)); };
    };
    const std::vector<std::pair<std::string, std::function<void()>>> staleness{
        {"last character changed", tokenSays(changedLast)},
        {"first character changed", tokenSays("X" + good.substr(1))},
        {"longer", tokenSays(good + "0")},
        {"empty", tokenSays("")},
        {"a new shipped store", [&] { setModified(topLevelFile(shipped()), shippedDate.addSecs(1)); }},
    };
    for (const auto& [what, makeStale] : staleness) {
        SCOPED_TRACE(what);
        diverge();
        makeStale();
        openRepository();
        expectSeeded();
    }

    diverge();
    writeFile(tokenFile(writable()), QByteArray::fromStdString(currentToken() + "\n"));
    repository = openRepository();
    // Kept, but compared with the host's products: Gamma is no longer
    // announced and goes with its archives, Beta is announced and comes.
    EXPECT_EQ(productPaths(topLevelFile(writable())), (Messages{"Alpha", "Beta"}));
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "icons")), "Alpha icons");
    EXPECT_FALSE(exists(archive(writable(), "Gamma", "icons")));
    EXPECT_EQ(readFile(tokenFile(writable())).toStdString(), currentToken() + "\n");
    EXPECT_FALSE(repository->getRepositoryReport()->hasError());

    QByteArray bytes = readFile(topLevelFile(shipped()));
    const QByteArray current = QByteArray::fromStdString(Signature::manifestSchema().toString());
    ASSERT_TRUE(bytes.contains(current));
    writeFile(topLevelFile(shipped()), bytes.replace(current, "00000000000000000000000000000001"));
    XMLRepository another(writable(), shipped(), {});
    EXPECT_EQ(another.shippedReader()->getVersion(), "00000000000000000000000000000001");
    another.updateProducts();
    EXPECT_FALSE(logged(*another.getRepositoryReport(), "Unable to generate the numora repository."));
    EXPECT_EQ(another.shippedReader()->getVersion(), current.toStdString());
    // The development-tree path throws the unusable store away before it
    // generates a new one; the host knows no blocks, so no archive is made.
    EXPECT_FALSE(exists(archive(shipped(), "Alpha", "icons")));
    EXPECT_EQ(productPaths(topLevelFile(shipped())), (Messages{"Alpha", "Beta"}));
}

// An unwritable token is an error and the next open tries again; a shipped
// store that cannot be regenerated stops the sync.
TEST_F(XMLRepositorySyncTest, AnUnwritableTokenOrShippedStoreIsAnErrorAndNothingMore)
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

    for (const std::string& directory : {hostRoot(), writable()})
        QDir(QString::fromStdString(directory)).removeRecursively();
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(hostRoot())));
    Testing::ReadOnlyPath locked(hostRoot());
    auto repository = openRepository();
    EXPECT_FALSE(repository->exists());
    const Messages errors = errorMessages(*repository->getRepositoryReport());
    ASSERT_FALSE(errors.empty());
    EXPECT_EQ(errors.back(), "Unable to generate the numora repository.");
    // No token work and nothing below the host root. The writable store's
    // product list is still compared with the host's.
    EXPECT_FALSE(exists(tokenFile(writable())));
    EXPECT_EQ(productPaths(topLevelFile(writable())), (Messages{"Alpha", "Beta"}));
    EXPECT_TRUE(QDir(QString::fromStdString(hostRoot())).isEmpty());
}

} // namespace
} // namespace LibraryBrowser
