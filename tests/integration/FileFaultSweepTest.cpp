// Every file operation of a generation made to fail in turn. After each
// fault the store must still read (each product fresh and whole, or out of
// date with a reason in the report) and the next generation must finish
// the work.
#include "GenerationFixture.h"

#include "platform/FileFaults.h"
#include "repository/TandrilObjectIterator.h"
#include "support/Files.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

// Keeps count of what the report was told, however long the log grows.
class CountingReport : public RepositoryReport {
public:
    void logError(const std::string& id, const std::string& message) override
    {
        ++problems;
        RepositoryReport::logError(id, message);
    }
    void logWarning(const std::string& id, const std::string& message) override
    {
        ++problems;
        RepositoryReport::logWarning(id, message);
    }
    using RepositoryReport::logError;
    using RepositoryReport::logWarning;

    int problems = 0;
};

QByteArray savedTemp;

struct Operation {
    FileFaults::Operation kind;
    std::string path;
};

// Three products, one with a reference into another, and a palette: every
// kind of file a generation makes, in a run short enough to repeat a few
// hundred times.
const std::vector<std::string> sweptProducts = {"arithmetica", "kinetics", "wavecraft"};

class FileFaultSweepTest : public GenerationFixture {
protected:
    // Stores and temporary directories in memory where there is a memory
    // file system: every manifest written is synced to disk, and a sweep
    // writes some tens of thousands.
    static void SetUpTestSuite()
    {
        savedTemp = qgetenv("TMPDIR");
        if (QFileInfo(QStringLiteral("/dev/shm")).isWritable())
            qputenv("TMPDIR", "/dev/shm");
    }
    static void TearDownTestSuite()
    {
        if (savedTemp.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", savedTemp);
    }

    bool copiesRootFile(const QString& relative) const override
    {
        return !relative.startsWith(QLatin1String("toolbox/switchyard/"))
               && !relative.startsWith(QLatin1String("toolbox/tandril/"));
    }
    void TearDown() override { FileFaults::setHook({}); }

    // A generation with a report that counts; how many problems it told.
    int run(GenerationMode mode = GenerationMode::Minimal)
    {
        auto counting = std::make_shared<CountingReport>();
        report = counting;
        makeWriter()->generateRepository(mode);
        return counting->problems;
    }

    std::vector<Operation> operationsOfOneGeneration()
    {
        std::vector<Operation> seen;
        FileFaults::setHook([&](FileFaults::Operation kind, const std::string& path) {
            seen.push_back({kind, path});
            return false;
        });
        const int problems = run();
        FileFaults::setHook({});
        EXPECT_EQ(problems, 0) << logText();
        return seen;
    }

    // Runs a generation in which the operation at `position` fails; true if
    // that position was reached.
    bool runFailingAt(std::size_t position, int& problems)
    {
        std::size_t count = 0;
        bool hit = false;
        FileFaults::setHook([&](FileFaults::Operation, const std::string&) {
            hit = hit || count == position;
            return count++ == position;
        });
        problems = run();
        FileFaults::setHook({});
        return hit;
    }

    void emptyStore() { ASSERT_TRUE(QDir(QString::fromStdString(store())).removeRecursively()); }

    // Every product the store lists is fresh and whole, or out of date; a
    // product out of date needs a reason in the report of the run that
    // failed. A store that lists nothing is allowed only with a reason too.
    void expectReadable(int problems)
    {
        const auto reader = makeReader();
        const std::vector<std::string> products = productPaths(*reader);
        if (products.empty()) {
            EXPECT_GT(problems, 0) << "a store without products and no word why";
        }
        for (const std::string& product : products) {
            const TandrilObject handle = reader->getTandrilObject(product);
            if (handle.isPalette())
                continue;
            if (reader->isProductUpToDate(handle)) {
                EXPECT_EQ(storedCounts(*reader, product), declaredCounts(product)) << product << " is fresh";
            } else {
                EXPECT_GT(problems, 0) << product << " is out of date and no word why";
            }
        }
    }

    // After a run without faults every product is fresh and whole.
    void expectComplete()
    {
        const int problems = run();
        EXPECT_EQ(problems, 0) << logText();
        const auto reader = makeReader();
        const std::vector<std::string> products = productPaths(*reader);
        EXPECT_EQ(products.size(), sweptProducts.size() + 1) << "the products and the palette";
        for (const std::string& product : products) {
            const TandrilObject handle = reader->getTandrilObject(product);
            EXPECT_TRUE(reader->isProductUpToDate(handle)) << product;
            if (!handle.isPalette()) {
                EXPECT_EQ(storedCounts(*reader, product), declaredCounts(product)) << product;
            }
        }
    }

    // Fails each operation of `operations` in turn, each time on the store
    // as `prepare` leaves it; prints and gives the number of faults survived.
    int sweep(const char* what, const std::vector<Operation>& operations, const std::function<void()>& prepare)
    {
        int survived = 0;
        for (std::size_t i = 0; i < operations.size(); ++i) {
            SCOPED_TRACE("fault " + std::to_string(i) + ": " + FileFaults::name(operations[i].kind) + " "
                         + operations[i].path);
            prepare();
            int problems = 0;
            if (!runFailingAt(i, problems))
                continue;
            expectReadable(problems);
            expectComplete();
            if (::testing::Test::HasFailure())
                return survived;
            ++survived;
        }
        std::printf("%s: survived %d injected faults of %zu operations\n", what, survived, operations.size());
        return survived;
    }
};

} // namespace

TEST_F(FileFaultSweepTest, EveryOperationOfAFirstGeneration)
{
    const std::vector<Operation> operations = operationsOfOneGeneration();
    ASSERT_GT(operations.size(), 20u);
    for (FileFaults::Operation kind : {FileFaults::Create, FileFaults::Write, FileFaults::Rename, FileFaults::Copy,
                                       FileFaults::ArchiveClose})
        EXPECT_TRUE(std::any_of(operations.begin(), operations.end(),
                                [&](const Operation& o) { return o.kind == kind; }))
            << FileFaults::name(kind);
    const int survived = sweep("first generation", operations, [this] { emptyStore(); });
    EXPECT_EQ(survived, int(operations.size()));
}

TEST_F(FileFaultSweepTest, EveryOperationOfAGenerationOverAStore)
{
    // Every library edited: each product is generated again over its
    // archives, which must stay readable whatever fails.
    run();
    const std::map<QString, QByteArray> generated = snapshot(store());
    const auto touchAll = [this] {
        for (const std::string& product : sweptProducts)
            editRootFile(libraryFile(product).substr(root().size() + 1), "\"description\": \"",
                         "\"description\": \"Edited. ");
    };
    const auto prepare = [&] {
        emptyStore();
        for (const auto& [file, bytes] : generated)
            writeFile(store() + "/" + file.toStdString(), bytes);
        touchAll();
    };
    prepare();
    const std::vector<Operation> operations = operationsOfOneGeneration();
    ASSERT_GT(operations.size(), 20u);
    EXPECT_TRUE(std::any_of(operations.begin(), operations.end(),
                            [](const Operation& o) { return o.kind == FileFaults::Remove; }));
    const int survived = sweep("generation over a store", operations, prepare);
    EXPECT_EQ(survived, int(operations.size()));
}

TEST_F(FileFaultSweepTest, AnArchiveThatCannotBeWrittenLeavesTheLastOneInPlace)
{
    run();
    const std::map<std::string, std::string> stamps = archiveStamps();
    editRootFile(libraryFile("wavecraft").substr(root().size() + 1), "\"Chirp\"", "\"Chirp 2\"");

    const std::string manifests = "lb_wavecraft_manifests_repos.rps";
    int refused = 0;
    FileFaults::setHook([&](FileFaults::Operation kind, const std::string& path) {
        const bool refuse = kind == FileFaults::ArchiveClose && path.find(manifests) != std::string::npos;
        refused += refuse;
        return refuse;
    });
    EXPECT_GT(run(), 0);
    FileFaults::setHook({});
    ASSERT_GT(refused, 0);
    EXPECT_TRUE(logHas("The archives of product Wavecraft Signals could not be written.")) << logText();
    for (const char* kind : {"icons", "manifests"})
        EXPECT_EQ(archiveStamps().at(archiveOf("wavecraft", kind)), stamps.at(archiveOf("wavecraft", kind)))
            << "the " << kind << " archive is not replaced";
    auto reader = makeReader();
    EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("wavecraft")));
    EXPECT_TRUE(reader->getTandrilObject("wavecraft/Sources/Chirp").isValid());

    expectComplete();
    EXPECT_TRUE(makeReader()->getTandrilObject("wavecraft/Sources/Chirp 2").isValid());
}
