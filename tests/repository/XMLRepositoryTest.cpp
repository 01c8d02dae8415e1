#include "StoreFixture.h"

#include "ReadOnlyPath.h"
#include "model/Model.h"
#include "platform/ErrorHolder.h"
#include "repository/ReaderCacheRegistry.h"
#include "repository/RepositoryReader.h"
#include "repository/RepositoryReport.h"
#include "repository/TandrilObjectIterator.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <functional>

namespace LibraryBrowser {
namespace {

using namespace Testing;

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
        EXPECT_FALSE(exists(archive(writable(), "Alpha", "icons")) || exists(archive(writable(), "Gamma", "manifests")));
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
    EXPECT_EQ(std::make_pair(repository->shippedDirectory(), repository->writableDirectory()), std::make_pair(shipped(), writable()));
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

class XMLRepositoryProductsTest : public Testing::StoreFixture {
protected:
    void SetUp() override
    {
        StoreFixture::SetUp();
        makeShippedStore({"Alpha", "Beta", "Delta"});
        repository = openRepository();
        report = repository->getRepositoryReport();
        report->clearWarning();
    }

    // Rewrites a top-level manifest; the writable store's token stays valid.
    void rewrite(const Model& model, const std::string& store)
    {
        saveManifest(model, topLevelFile(store));
        ReaderCacheRegistry::unloadTopLevelCaches(store);
    }
    // A top-level manifest of products: name, lastModified, shadowedLastModified.
    static ModelPtr products(std::initializer_list<std::array<const char*, 3>> rows)
    {
        auto model = Model::createModel();
        for (const auto& [name, lastModified, shadowed] : rows)
            addProduct(*model, name, lastModified, shadowed);
        return model;
    }

    Library shippedProduct(const std::string& name) { return repository->shippedReader()->getProduct(name); }

    // "w:Name" or "s:Name" per handle: the store its node comes from and its name.
    Messages describe(const std::vector<TandrilObject>& objects)
    {
        Messages text;
        for (const TandrilObject& object : objects) {
            const Model* model = object.getImpl()->getModel();
            const bool fromWritable = model == repository->writableReader()->topLevelManifest().get();
            const bool fromShipped = model == repository->shippedReader()->topLevelManifest().get();
            text.push_back(std::string(fromWritable ? "w:" : fromShipped ? "s:" : "?:") + object.getName());
        }
        return text;
    }
    Messages describe(TandrilObjectIterator it)
    {
        std::vector<TandrilObject> objects;
        for (; it.isValidIterator(); it.next())
            objects.push_back(it.current());
        return describe(objects);
    }

    XMLRepositoryPtr repository;
};

// The merge takes the writable copy only while the shipped one is unchanged
// and matches products by unique path; the writable list decides what is listed.
TEST_F(XMLRepositoryProductsTest, MergeTakesTheWritableCopyOnlyWhileTheShippedOneIsUnchanged)
{
    // Alpha took over the current shipped Alpha, Beta an older one, Gamma is
    // only writable and Delta only shipped.
    rewrite(*products({{"Alpha", "writable-2", "shipped-1"}, {"Beta", "writable-2", "shipped-0"},
                       {"Gamma", "writable-2", ""}}), writable());
    EXPECT_EQ(describe(repository->getMergedProducts()), (Messages{"w:Alpha", "s:Beta", "w:Gamma"}));
    // A new shipped Alpha makes the writable copy stale.
    rewrite(*products({{"Alpha", "shipped-2", ""}, {"Beta", "shipped-0", ""}}), shipped());
    EXPECT_EQ(describe(repository->getProductsIterator()), (Messages{"s:Alpha", "w:Beta", "w:Gamma"}));

    // Matched by unique path, not by path: a library Beta depends on is
    // listed under Alpha's path, with dates of its own.
    ModelPtr shippedModel = products({{"Alpha", "shipped-1", ""}, {"Alpha", "shipped-0", ""}});
    auto* dependency = static_cast<LibraryImpl*>(shippedModel->getNodes().get(1));
    dependency->setUniquePath(StringId("Beta-Alpha"));
    dependency->setIsProduct(false);
    rewrite(*shippedModel, shipped());
    rewrite(*products({{"Alpha", "writable-2", "shipped-1"}}), writable());
    EXPECT_EQ(describe(repository->getMergedProducts()), (Messages{"w:Alpha"}));
}

// Archives are copied unless the writable store has both, and never from a
// store of another schema.
TEST_F(XMLRepositoryProductsTest, ArchivesAreCopiedUnlessTheWritableStoreHasBoth)
{
    auto& writableReader = *repository->writableReader();
    auto& shippedReader = *repository->shippedReader();
    // Only one writable archive: both come from the shipped store.
    writeFile(archive(writable(), "Alpha", "icons"), "partial");
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, shippedProduct("Alpha"));
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "icons")), "shipped icons of Alpha");
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "manifests")), "shipped manifests of Alpha");
    // Both there: a base to work on, nothing is copied.
    writeFile(archive(writable(), "Alpha", "icons"), "own icons");
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, shippedProduct("Alpha"));
    EXPECT_EQ(readFile(archive(writable(), "Alpha", "icons")), "own icons");
    // A shipped archive missing: nothing to start from.
    QFile::remove(QString::fromStdString(archive(shipped(), "Beta", "manifests")));
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, shippedProduct("Beta"));
    EXPECT_FALSE(exists(archive(writable(), "Beta", "icons")));
    EXPECT_FALSE(report->hasError() || report->hasWarning());

    report = RepositoryReport::create();
    QFile::remove(QString::fromStdString(archive(writable(), "Alpha", "icons")));
    auto model = Model::createModel();
    LibraryImpl* alpha = addProduct(*model, "Alpha");
    QByteArray bytes = model->saveToBytes();
    bytes.replace(QByteArray::fromStdString(Signature::manifestSchema().toString()), "0123456789abcdef0123456789abcdef");
    writeFile(topLevelFile(shipped()), bytes);
    ReaderCacheRegistry::unloadTopLevelCaches(shipped());
    XMLRepository::copyProductArchives(*report, writableReader, shippedReader, Library(alpha, repository->getCache()));
    EXPECT_FALSE(exists(archive(writable(), "Alpha", "icons")));
    ASSERT_EQ(report->getWarnings().size(), 1u);
    EXPECT_EQ(report->getWarnings().front().message,
              "Unable to use the numoraroot repository. It was generated with an older version of the data model.");
}

using Testing::ScriptedBlock;

using WriterTest = Testing::StoreFixture;

// Every block reads back with its icon, even icons large enough that the
// archive is closed and opened again while it is filled (four of 3 MiB pass
// the bound once, after the third): what was added before a reopening stays,
// and so does what follows. Names whose path form differs from the shown
// one; a manifest can't keep a control character: refused, never stored altered.
TEST_F(WriterTest, EveryBlockReadsBackWithItsIconAndPathFormsAcrossReopenings)
{
    std::vector<ScriptedBlock> alpha = blocks("A", 250);
    alpha.insert(alpha.end(), {{"In//Out"}, {"Two\nLines"}, {"Bell\a"}});
    for (const char* name : {"L0", "L1", "L2", "L3"})
        alpha.push_back({name, "Block", "", {}, "", "", 3 << 20});
    libraries.setProducts({{"Alpha Library", "Alpha"}, {"Beta\x01Library", "Beta"}});
    libraries.setLibrary("Alpha", alpha);
    libraries.setLibrary("Beta", blocks("B", 1));
    generate();
    EXPECT_TRUE(logged(*report, "??? **Error**   Invalid block name Alpha/Bell\\x07: it holds a control character"));
    EXPECT_TRUE(logged(*report, "**Warning**   The product Beta\\x01Library of Beta is left out: its name holds a "
                                "control character."));
    EXPECT_EQ(entries("Alpha", "icons").size(), 256u);
    EXPECT_EQ(childNames("Alpha").size(), 256u);
    const auto reader = openReader();
    EXPECT_FALSE(reader->getTandrilObject("Beta").isValid());
    for (const std::string name : {"A0", "A249", "L0", "L1", "L2", "L3"}) {
        const QByteArray svg = reader->getIcon(reader->getTandrilObject("Alpha/" + name))->svg();
        EXPECT_TRUE(svg.contains("Alpha/" + QByteArray::fromStdString(name))) << name;
        EXPECT_GT(svg.size(), name[0] == 'L' ? 3 << 20 : 0) << name;
    }
    const TandrilObject inOut = reader->getTandrilObject("Alpha/In//Out");
    EXPECT_EQ(inOut.getDisplayName(), "In/Out");
    EXPECT_EQ(static_cast<const BlockImpl*>(inOut.getImpl())->getDisplayPath(), "Alpha Library/In/Out");
    EXPECT_TRUE(reader->getTandrilObject("Alpha/Two Lines").isValid());
}

// References to one library make one dependency, an unresolvable one is
// warned of and still stored. Shrinking the product step by step, a library
// it no longer references leaves its archives, and a product left without
// blocks has none.
TEST_F(WriterTest, ReferencedLibrariesComeAndGoWithTheirReferences)
{
    libraries.setProducts({{"Alpha Library", "Alpha"}});
    libraries.setLibrary("Alpha", {{"R1", "LibraryRef", "", {}, "Shared", "Sub"},
                                   {"R2", "LibraryRef", "", {}, "Shared", "Sub"},
                                   {"R3", "LibraryRef", "", {}, "Nowhere", "Deep"}});
    libraries.setLibrary("Shared", {{"Sub", "SubSystem", "", {{"X"}, {"Y"}}}});
    generate();
    EXPECT_TRUE(logged(*report, "**Warning**   Unable to resolve library reference Alpha Library/R3 to Nowhere/Deep"));
    auto top = Model::createModel();
    ErrorHolder errors;
    ASSERT_TRUE(top->load(topLevelFile(store()), errors));
    Messages shared;
    for (TandrilObjectImpl* node : top->getNodes())
        if (auto* library = dynamic_cast<LibraryImpl*>(node); library && library->getPath() == "Shared")
            shared.push_back(library->getUniquePath().str() + (library->getIsProduct() ? " product" : ""));
    EXPECT_EQ(shared, Messages{"Alpha-Shared"});
    EXPECT_EQ(childNames("Alpha/R1"), (Messages{"X", "Y"}));
    EXPECT_EQ(childNames("Alpha"), (Messages{"R1", "R2", "R3"}));

    libraries.setLibrary("Alpha", {{"G"}});
    generate();
    EXPECT_TRUE(logged(*report, "Library Shared is no longer used. Removing it from the archive"));
    EXPECT_EQ(entries("Alpha", "icons").size(), 1u);
    EXPECT_FALSE(openReader()->getTandrilObject("Alpha-Shared").isValid());
    libraries.setLibrary("Alpha", {});
    generate(GenerationMode::IgnoreTimestamp);
    EXPECT_FALSE(exists(archive("Alpha", "icons")));
    EXPECT_FALSE(exists(archive("Alpha", "manifests")));
    EXPECT_TRUE(openReader()->getProduct("Alpha").getIsEmpty());
}

// The top-level manifest is put in place again only when its bytes change,
// and it always ends up holding the model as it stands. A store of another
// schema is generated anew. (An archive that cannot be copied is
// FileFaultSweepTest's Copy faults.)
TEST_F(WriterTest, TheTopLevelManifestAndTheStoreRecoverFromWhatTheyFind)
{
    setAlphaAndBeta(3, 2);
    generate();
    const std::string top = topLevelFile(store());
    const QByteArray generated = readFile(top);
    const QDateTime old = QDateTime::fromSecsSinceEpoch(946684800);
    const auto updateAged = [&] {
        QFile file(QString::fromStdString(top));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(old, QFileDevice::FileModificationTime));
        file.close();
        report = RepositoryReport::create();
        XMLRepositoryWriter(store(), report).updateProducts();
    };
    const auto modified = [&] { return QFileInfo(QString::fromStdString(top)).lastModified(); };
    updateAged();
    EXPECT_EQ(modified(), old) << "the same bytes are not written again";
    EXPECT_EQ(readFile(top), generated);
    // Same length, other bytes: what the store holds no longer matches.
    QByteArray tampered = generated;
    tampered[tampered.indexOf("Alpha Library")] = 'X';
    writeFile(top, tampered);
    updateAged();
    EXPECT_NE(modified(), old);
    EXPECT_EQ(readFile(top), generated);
    libraries.setProducts({{"Alpha Renamed", "Alpha"}, {"Beta Library", "Beta"}});
    updateAged();
    EXPECT_NE(modified(), old);
    EXPECT_EQ(openReader()->getProduct("Alpha").getDisplayName(), "Alpha Renamed");

    QByteArray bytes = readFile(top);
    bytes.replace(QByteArray::fromStdString(Signature::manifestSchema().toString()), "0123456789abcdef0123456789abcdef");
    writeFile(top, bytes);
    setAlphaAndBeta(3, 2);
    generate();
    EXPECT_EQ(openReader()->getVersion(), Signature::manifestSchema().toString());
    EXPECT_EQ(childNames("Alpha"), (Messages{"A0", "A1", "A2"}));
}

// Faults in the host's product list are warned of, and generation goes on:
// a doubled name keeps the first, an unknown type is left out, not guessed
// at, and a palette listing itself is generated. A block of a type no
// library may hold is left out with an error; its product is generated.
TEST_F(WriterTest, ADoubledProductNameKeepsTheFirstAndAPaletteListingItselfIsGenerated)
{
    setAlphaAndBeta(1);
    libraries.setLibrary("Alpha", {{"A0"}, {"Note", "Annotation"}, {"A1"}});
    libraries.setProducts({{"Alpha Library", "Alpha"},
                           {"Alpha Library", "Beta"},
                           {"Gadgets", "Beta", "Gadget"},
                           {"Tools", "Tools", "Palette", {"Tools", "Alpha", "Tools"}}});
    generate();
    EXPECT_TRUE(logged(*report, "The product Gadgets has the unknown type 'Gadget' and is left out."));
    EXPECT_TRUE(logged(*report, "The product name Alpha Library appeared in more than one tdblocks "
                                "file. The first one that was found on the path will be used."));
    const auto& warnings = report->getWarnings();
    EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(),
                            [](const auto& w) { return w.id == "Tandril:LibraryBrowser:CycleInPalette"; }),
              2);
    EXPECT_TRUE(logged(*report, "??? **Error**   Invalid block type Annotation"));
    EXPECT_EQ(childNames("Alpha"), (Messages{"A0", "A1"}));
    const auto reader = openReader();
    EXPECT_FALSE(reader->getProduct("Beta").isValid());
    EXPECT_FALSE(reader->getProduct("Gadgets").isValid());
    const Library tools = reader->getProduct("Tools");
    EXPECT_FALSE(tools.getIsEmpty());
    EXPECT_EQ(reader->getChildrenIterator(tools).size(), 1);
}

using Issues = std::vector<RepositoryReport::Issue>;

Messages lines(const RepositoryReport& report)
{
    return Messages(report.getLog().begin(), report.getLog().end());
}

// Messages carry indentation and prefixes; a level drops deeper lines but still
// raises the flags; the log keeps the newest thousand lines; taking empties
// the lists and clears the flags but not the log. (The console echo is the
// script binding's, unique warnings the update command's, the host's sink
// every failing host operation's.)
TEST(RepositoryReportTest, LinesLevelsListsAndTheBound)
{
    RepositoryReport report;
    report.indentation = 2;
    report.logWarning("W:id", "careful");
    report.logError("E:id", "broken");
    report.indentation = -3;
    report.log("below zero");
    EXPECT_EQ(lines(report), (Messages{"**Warning**   careful\n", "??? **Error**   broken\n", "Action: below zero\n"}));
    report.logError("E:2", "two");
    EXPECT_EQ(report.takeErrors(), (Issues{{"E:id", "broken"}, {"E:2", "two"}}));
    EXPECT_FALSE(report.hasError());
    EXPECT_EQ(report.getLog().size(), 4u);
    for (int i = 0; i < 1001; ++i)
        report.log(std::to_string(i));
    ASSERT_EQ(report.getLog().size(), 1000u);
    EXPECT_EQ(report.getLog().front(), "Action: 1\n");

    // Level 2 keeps depths 0 and 1 only.
    RepositoryReport shallow(2);
    for (int depth = 0; depth < 4; ++depth) {
        shallow.indentation = depth;
        shallow.log("depth " + std::to_string(depth));
    }
    shallow.logWarning("w", "dropped");
    shallow.logError("e", "dropped");
    EXPECT_EQ(lines(shallow), (Messages{"Action: depth 0\n", "  Action: depth 1\n"}));
    EXPECT_TRUE(shallow.getWarnings().empty() && shallow.getErrors().empty());
    EXPECT_TRUE(shallow.hasWarning() && shallow.hasError());
}

} // namespace
} // namespace LibraryBrowser
