#include "GenerationFixture.h"

#include "platform/FileFaults.h"
#include "repository/Library.h"
#include "support/Files.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <set>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Testing;

namespace {

class GenerationFaultsTest : public GenerationFixture {
protected:
    void expectWavecraftAsBefore()
    {
        for (const auto& [kind, bytes] : archives)
            EXPECT_EQ(readFile(archiveOf("wavecraft", kind.c_str())), bytes) << "the " << kind << " archive changed";
        const auto reader = makeReader();
        EXPECT_EQ(storedCounts(*reader, "wavecraft"), declared);
        EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("wavecraft")));
    }

    // The warning that says why, on one line.
    std::string keptLine() const
    {
        for (const std::string& line : report->getLog())
            if (line.find("Product Wavecraft Signals was not generated again (") != std::string::npos)
                return line;
        return std::string();
    }

    TreeCounts declared;
    std::map<std::string, QByteArray> archives;
};

// A stored library the host can no longer read: a run, minimal or from
// nothing, keeps the last readable archives and says why; mended, the
// product is generated again. (An archive that cannot be written is
// FileFaultSweepTest's ArchiveClose faults.)
TEST_F(GenerationFaultsTest, AnUnreadableLibraryKeepsItsLastArchivesUntilMended)
{
    generate();
    declared = declaredCounts("wavecraft");
    ASSERT_GT(declared.blocks, 0);
    for (const char* kind : {"icons", "manifests"})
        archives[kind] = readFile(archiveOf("wavecraft", kind));
    const std::string wavecraftFile = libraryFile("wavecraft").substr(root().size() + 1);
    const QByteArray original = readFile(libraryFile("wavecraft"));
    writeRootFile(wavecraftFile, "{ \"format\": \"tandril-library\", broken");

    generate();
    const std::string line = keptLine();
    ASSERT_FALSE(line.empty()) << logText();
    EXPECT_NE(line.find("wavecraft.tdlib.json"), std::string::npos) << "the reason names the file: " << line;
    EXPECT_EQ(line.find('\n'), line.size() - 1) << "the reason on one line: " << line;
    expectWavecraftAsBefore();
    auto reader = makeReader();
    EXPECT_TRUE(reader->getTandrilObject("wavecraft/Sources/Sine Wave").isValid());
    // A product that references Wavecraft can't be described either and
    // keeps its archives too; one that doesn't is done.
    EXPECT_TRUE(logHas("Product Kinetics was not generated again ("));
    EXPECT_TRUE(reader->isProductUpToDate(reader->getTandrilObject("arithmetica")));

    generate(GenerationMode::Regenerate);
    EXPECT_FALSE(keptLine().empty()) << logText();
    expectWavecraftAsBefore();

    writeRootFile(wavecraftFile, QByteArray(original).replace("\"Sine Wave\"", "\"Sine Wave 2\""));
    generate();
    EXPECT_TRUE(keptLine().empty()) << logText();
    EXPECT_NE(readFile(archiveOf("wavecraft", "manifests")), archives.at("manifests"));
    reader = makeReader();
    EXPECT_TRUE(reader->isProductUpToDate(reader->getTandrilObject("wavecraft")));
    EXPECT_TRUE(reader->getTandrilObject("wavecraft/Sources/Sine Wave 2").isValid());
}

// Every file operation of a generation made to fail in turn. After each
// fault the store must still read (each product fresh and whole, or out of
// date with a reason in the report) and the next generation must finish
// the work.

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

    // A generation with a report that counts, with the hook given; how many
    // problems it told.
    int run(FileFaults::Hook hook = {})
    {
        auto counting = std::make_shared<CountingReport>();
        report = counting;
        FileFaults::setHook(std::move(hook));
        makeWriter()->generateRepository(GenerationMode::Minimal);
        FileFaults::setHook({});
        return counting->problems;
    }

    // Every product the store lists is fresh and whole, or out of date; a
    // product out of date needs a reason in the report of the run that
    // failed, and so does a store that lists nothing. With `complete`, all
    // are fresh and the palette is listed too.
    void expectReadable(int problems, bool complete)
    {
        const auto reader = makeReader();
        const std::vector<std::string> products = productPaths(*reader);
        EXPECT_TRUE(complete ? products.size() == sweptProducts.size() + 1 : !products.empty() || problems > 0)
            << products.size() << " products, the palette among them, and " << problems << " problems told";
        for (const std::string& product : products) {
            const TandrilObject handle = reader->getTandrilObject(product);
            const bool fresh = reader->isProductUpToDate(handle);
            EXPECT_TRUE(fresh || (!complete && problems > 0)) << product << " is out of date and no word why";
            if (fresh && !handle.isPalette()) {
                EXPECT_EQ(storedCounts(*reader, product), declaredCounts(product)) << product << " is fresh";
            }
        }
    }

    // Fails each operation of one generation in turn, each time on the store
    // as `prepare` leaves it; each must be survived and mended by the next run.
    void sweep(const char* what, const std::function<void()>& prepare, std::vector<FileFaults::Operation> kinds)
    {
        prepare();
        std::vector<std::pair<FileFaults::Operation, std::string>> operations;
        EXPECT_EQ(run([&](FileFaults::Operation kind, const std::string& path) {
                      operations.emplace_back(kind, path);
                      return false;
                  }), 0) << logText();
        ASSERT_GT(operations.size(), 20u);
        for (FileFaults::Operation kind : kinds)
            EXPECT_TRUE(std::any_of(operations.begin(), operations.end(), [&](const auto& o) { return o.first == kind; }))
                << FileFaults::name(kind);
        std::size_t survived = 0;
        for (std::size_t i = 0; i < operations.size() && !::testing::Test::HasFailure(); ++i) {
            SCOPED_TRACE("fault " + std::to_string(i) + ": " + FileFaults::name(operations[i].first) + " "
                         + operations[i].second);
            prepare();
            std::size_t count = 0;
            expectReadable(run([&](FileFaults::Operation, const std::string&) { return count++ == i; }), false);
            const int problems = run();
            EXPECT_EQ(problems, 0) << logText();
            expectReadable(problems, true);
            survived += count > i;
        }
        std::printf("%s: survived %zu injected faults of %zu operations\n", what, survived, operations.size());
        EXPECT_EQ(survived, operations.size());
    }

    void emptyStore() { ASSERT_TRUE(QDir(QString::fromStdString(store())).removeRecursively()); }
};

TEST_F(FileFaultSweepTest, EveryOperationOfAFirstGeneration)
{
    sweep("first generation", [this] { emptyStore(); },
          {FileFaults::Create, FileFaults::Write, FileFaults::Rename, FileFaults::Copy, FileFaults::ArchiveClose});
}

TEST_F(FileFaultSweepTest, EveryOperationOfAGenerationOverAStore)
{
    // Every library edited: each product is generated again over its
    // archives, which must stay readable whatever fails.
    run();
    const std::map<QString, QByteArray> generated = snapshot(store());
    sweep("generation over a store", [&] {
        emptyStore();
        for (const auto& [file, bytes] : generated)
            writeFile(store() + "/" + file.toStdString(), bytes);
        for (const std::string& product : sweptProducts)
            editRootFile(libraryFile(product).substr(root().size() + 1), "\"description\": \"",
                         "\"description\": \"Edited. ");
    }, {FileFaults::Remove});
}

// Library files that would make a careless walk run away: fan-outs and
// cycles of references, cycles of palettes, and a product whose repository
// directory leads out of the store. Each generates, reads and searches in
// time and memory in proportion to its files, and nothing is written
// outside the store. Each is a directory of its own below the root.

QJsonObject block(const QString& name) { return {{"name", name}, {"type", "Block"}}; }
QJsonObject product(const QString& name, const QString& library)
{
    return {{"name", name}, {"library", library}, {"type", "Product"}};
}

void writeLibrary(const std::string& directory, const QString& name, const QJsonArray& blocks)
{
    writeFile(directory + "/" + name.toStdString() + ".tdlib.json",
              QJsonDocument(QJsonObject{{"format", "tandril-library"}, {"version", 1}, {"name", name}, {"blocks", blocks}})
                  .toJson());
}

void writeTdBlocks(const std::string& directory, const QJsonArray& entries)
{
    writeFile(directory + "/tdblocks.json",
              QJsonDocument(QJsonObject{{"format", "tandril-tdblocks"}, {"version", 1}, {"entries", entries}}).toJson());
}

// Libraries NAME0 .. NAMEK, each with one block "LevelI" and the given
// references to the next.
void writeReferenceLevels(const std::string& root, const QString& name, const QString& productName,
                          const QStringList& references, int levels)
{
    const std::string directory = root + "/toolbox/" + name.toStdString();
    for (int level = 0; level <= levels; ++level) {
        QJsonArray blocks{block(QString("Level%1").arg(level))};
        for (const QString& side : level < levels ? references : QStringList())
            blocks.append(QJsonObject{{"name", side}, {"type", "LibraryRef"},
                                      {"target", QJsonObject{{"library", name + QString::number(level + 1)}}}});
        writeLibrary(directory, name + QString::number(level), blocks);
    }
    writeTdBlocks(directory, QJsonArray{product(productName, name + "0")});
}

// Palettes "Cycle 1" .. "Cycle N", each listing the next and the last the
// first, and a product "Cycle Member" (one block "Orbit") listed by the first.
// Each depends on its tdblocks.json, so that a first generation finds each
// palette out of date and generates the next from inside it.
void writePaletteCycle(const std::string& root, int length)
{
    writeLibrary(root + "/toolbox/cycle", "cyclemember", QJsonArray{block("Orbit")});
    QJsonArray entries{product("Cycle Member", "cyclemember")};
    for (int i = 1; i <= length; ++i)
        entries.append(QJsonObject{{"name", QString("Cycle %1").arg(i)}, {"library", QString("cycle%1").arg(i)},
                                   {"type", "Palette"}, {"dependencies", QJsonArray{"tdblocks.json"}},
                                   {"children", i == 1 ? QJsonArray{"Cycle 2", "Cycle Member"}
                                                       : QJsonArray{QString("Cycle %1").arg(i % length + 1)}}});
    writeTdBlocks(root + "/toolbox/cycle", entries);
}

// A product "Escape" (one block "Breakout") whose repository directory is
// the given text, e.g. "../../outside".
const std::string escapeDirectory = "toolbox/escape";
void writeEscapingProduct(const std::string& root, const std::string& repository)
{
    writeLibrary(root + "/" + escapeDirectory, "escape", QJsonArray{block("Breakout")});
    QJsonObject entry = product("Escape", "escape");
    entry["repository"] = QString::fromStdString(repository);
    writeTdBlocks(root + "/" + escapeDirectory, QJsonArray{entry});
}

constexpr int FanOutLevels = 14;

class HostileLibrariesTest : public GenerationFixture {
protected:
    void addRootFiles() override
    {
        // Libraries fan0 .. fan14, each referencing the next twice: a walk
        // that entered every reference where it meets it would see the last
        // level 2^14 times. And a chain of a hundred single references.
        writeReferenceLevels(root(), "fan", "Fan Out", {"Left", "Right"}, FanOutLevels);
        writeReferenceLevels(root(), "chain", "Chain", {"Next"}, 100);
        writePaletteCycle(root(), 3);
        writeEscapingProduct(root(), "../escaped");
    }
};

TEST_F(HostileLibrariesTest, FanOutsChainsCyclesAndEscapesStayBounded)
{
    generate();
    ASSERT_FALSE(report->hasError()) << logText();
    const auto reader = makeReader();
    const auto walk = [&](TandrilObjectIterator it, std::set<std::string>& names) {
        std::size_t objects = 0, longestPath = 0;
        for (; it.isValidIterator(); it.next(), ++objects) {
            names.insert(it.current().getName());
            longestPath = std::max(longestPath, it.current().id().str().size());
        }
        return std::make_pair(objects, longestPath);
    };

    // Entered at every place it is met, the last level would be walked 2^14
    // times; once per reference it is walked twice.
    std::set<std::string> fan;
    EXPECT_LE(walk(reader->getDepthFirstIterator(reader->getTandrilObject("fan0")), fan).first,
              6u * (FanOutLevels + 1));
    for (int level = 0; level <= FanOutLevels; ++level)
        EXPECT_TRUE(fan.count("Level" + std::to_string(level))) << level;
    const int hits = reader->findBlocks("Level" + std::to_string(FanOutLevels)).size();
    EXPECT_GE(hits, 1);
    EXPECT_LE(hits, 4);

    // No more than sixty-four nested references are entered.
    std::set<std::string> chain;
    EXPECT_LT(walk(reader->getDepthFirstIterator(reader->getTandrilObject("chain0")), chain).second, 64u * 8u);
    EXPECT_TRUE(chain.count("Level64"));
    EXPECT_FALSE(chain.count("Level65"));

    // A palette cycle of any length is judged and generated once, with a warning.
    const auto& warnings = report->getWarnings();
    EXPECT_TRUE(std::any_of(warnings.begin(), warnings.end(), [](const RepositoryReport::Issue& warning) {
        return warning.id == "Tandril:LibraryBrowser:CycleInPalette";
    })) << logText();
    for (const char* palette : {"cycle1", "cycle2", "cycle3"}) {
        const TandrilObject object = reader->getTandrilObject(palette);
        ASSERT_TRUE(object.isValid()) << palette;
        EXPECT_TRUE(reader->isProductUpToDate(object)) << palette;
    }
    std::set<std::string> all;
    walk(reader->getDepthFirstIterator(), all);
    EXPECT_TRUE(all.count("Orbit"));
    generate();
    EXPECT_FALSE(logHas("Entering ")) << logText();

    // A repository directory leading out of the store is refused, by file and entry.
    const QString outside = QDir(QString::fromStdString(store())).absoluteFilePath("../escaped");
    for (const std::string& repository : {std::string("../escaped"), outside.toStdString()}) {
        SCOPED_TRACE(repository);
        writeEscapingProduct(root(), repository);
        generate();
        EXPECT_TRUE(logHas(escapeDirectory + "/tdblocks.json:")) << logText();
        EXPECT_TRUE(logHas("entries[0].repository: the repository directory does not stay inside the store"));
        EXPECT_FALSE(QFileInfo::exists(outside));
        const std::vector<std::string> products = productPaths(*makeReader());
        EXPECT_EQ(std::count(products.begin(), products.end(), "escape"), 0);
        EXPECT_EQ(std::count(products.begin(), products.end(), "kinetics"), 1);
    }
}

} // namespace
