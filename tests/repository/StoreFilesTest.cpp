#include "HandMadeStore.h"

#include "ReadOnlyPath.h"
#include "platform/Platform.h"
#include "repository/HandleData.h"
#include "repository/xmlrepository/HostOperations.h"
#include "repository/xmlrepository/LibraryComparison.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/StoreDamage.h"
#include "repository/xmlrepository/TempDirectories.h"
#include "repository/xmlrepository/TempDirectoryOwners.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <unistd.h>
#include <utime.h>

namespace LibraryBrowser {
namespace {

using namespace Testing;

using Messages = std::vector<std::string>;

using TempDirectoriesTest = Testing::StoreFixture;

// Removing what was never made does nothing; numbered directories are named
// by their use; a name keeps its directory across removals; host failures
// and a missing or unwritable system temporary directory are errors, an
// unmakeable writable store a warning.
TEST_F(TempDirectoriesTest, HostFailuresAreErrors)
{
    removeTempDirectory(*report, 9001);
    removeDirectory(*report, path("never made"));
    EXPECT_TRUE(report->getLog().empty());
    EXPECT_TRUE(interpreter.calls().empty());
    EXPECT_TRUE(tempEntries().isEmpty());

    const auto name = [](const std::string& p) { return p.substr(p.rfind('/') + 1); };
    EXPECT_EQ(name(tempDirectory(*report, 41)).substr(0, 10), "LBwriter41");
    EXPECT_EQ(name(cacheTempDirectory(*report, 41)).substr(0, 9), "LBCache41");
    EXPECT_EQ(name(topLevelTempDirectory(*report, 41)).substr(0, 7), "LBTop41");
    EXPECT_EQ(tempEntries().size(), 3);
    removeTempDirectory(*report, 41);
    EXPECT_EQ(tempEntries().size(), 2);
    EXPECT_FALSE(exists(namedTempDirectory(*report, "LBwriter41", false)));

    const std::string first = namedTempDirectory(*report, "LB keep/me", true);
    const QRegularExpression form(QString::fromStdString("^" + tempRoot() + "/LB_20keep_2fme[0-9a-f]{32}$"));
    EXPECT_TRUE(form.match(QString::fromStdString(first)).hasMatch()) << first;
    EXPECT_TRUE(exists(first));
    EXPECT_EQ(namedTempDirectory(*report, "LB keep/me", true), first);
    writeFile(first + "/inner/file.txt", "x");
    const std::size_t calls = interpreter.calls().size();
    removeDirectory(*report, first);
    EXPECT_FALSE(exists(first));
    ASSERT_EQ(interpreter.calls().size(), calls + 1);
    EXPECT_EQ(interpreter.calls().back().inputs,
              (std::vector<HostValue>{HostValue::string("rmdir"), HostValue::string(first), HostValue::string("s")}));
    EXPECT_TRUE(logged(*report, "Action: Removing temporary directory " + first + "\n"));
    EXPECT_EQ(namedTempDirectory(*report, "LB keep/me", false), first);
    EXPECT_FALSE(exists(first)) << "made only when asked";
    EXPECT_EQ(namedTempDirectory(*report, "LB keep/me", true), first);
    EXPECT_TRUE(exists(first));
    EXPECT_FALSE(report->hasError());

    interpreter.fail("tdprivate:rmdir", "Undefined function 'tdprivate'");
    removeDirectory(*report, first);
    interpreter.answer("tdprivate:rmdir", {HostValue::logicalScalar(false), HostValue::string("Permission denied"),
                                           HostValue::string("Host:rmdir:denied")});
    removeDirectory(*report, first);
    EXPECT_TRUE(exists(first));
    qputenv("TMPDIR", QByteArray::fromStdString(path("no such tmp")));
    EXPECT_EQ(namedTempDirectory(*report, "LBgone", true), "");
    EXPECT_FALSE(exists(path("no such tmp")));
    EXPECT_EQ(errorMessages(*report),
              (Messages{"Failed to call 'rmdir' on the temporary directory " + first,
                        "Unable to remove temporary directory. The following error occurred:", "Permission denied",
                        "Unable to find the operating system temporary directory"}));
    // A writable store that can't be made, below a preferences "directory"
    // that is a file, is a warning.
    writeFile(path("prefs-file"), "x");
    Testing::RecordingEnvironment blocked(hostRoot(), path("prefs-file"));
    Platform::setEnvironment(&blocked);
    EXPECT_EQ(writableRepositoryDirectory(*report), path("prefs-file") + "/td_library_browser_repos");
    Platform::setEnvironment(environment);
    EXPECT_EQ(messages(report->getWarnings()), Messages{"Unable to create preference directory"});

    qputenv("TMPDIR", QByteArray::fromStdString(tempRoot()));
    report = RepositoryReport::create();
    Testing::ReadOnlyPath locked(tempRoot());
    if (!locked.active())
        GTEST_SKIP() << "cannot make a path read-only here";
    EXPECT_EQ(namedTempDirectory(*report, "LBlocked", true), "");
    EXPECT_EQ(errorMessages(*report), (Messages{"Unable to create a temporary directory"}));
}

// A TMPDIR given is where the directories go, and left-overs of ended
// processes are cleared from it; a failed copy leaves no file. (Without one,
// the memory file system is where every tdlb run and window test puts them;
// whole copies of large archives are WriterTest's icons of 3 MiB read back.)
TEST_F(TempDirectoriesTest, TheBaseIsTheGivenDirectoryElseAMemoryFileSystemAndLeftOversGo)
{
    EXPECT_EQ(privateTempBase().toStdString(), tempRoot());
    const std::string copy = namedTempDirectory(*report, "LBCopy", true) + "/copy.rps";
    EXPECT_FALSE(copyToPrivateFile(path("missing.rps"), copy));
    EXPECT_FALSE(exists(copy)) << "a failed copy leaves no file";

    // Left-overs of ended processes go, and unmarked ones after a while; those
    // of running ones, our own, other names, new unmarked ones and other
    // users' stay.
    QProcess ended, running;
    ended.start("sleep", {"30"});
    running.start("sleep", {"30"});
    ASSERT_TRUE(ended.waitForStarted() && running.waitForStarted());
    const QString endedPid = QString::number(ended.processId());
    ended.kill();
    ended.waitForFinished();

    const std::string mine = namedTempDirectory(*report, "LBCache7", true);
    const auto makeDirectory = [&](const char* name, const QString& owner) {
        const std::string directory = tempRoot() + "/" + name + std::string(32, 'a');
        writeFile(directory + "/cachedArchive.rps", "bytes");
        if (!owner.isNull())
            writeFile(directory + "/" + TempDirectoryOwners::OwnerFileName, owner.toUtf8());
        return directory;
    };
    const std::string gone = makeDirectory("LBwriter3", endedPid + " 1234\n");
    const std::string reused = makeDirectory("LBTop2", QString::number(getppid()) + " 1\n");
    const std::string alive = makeDirectory("LBCache9", QString::number(running.processId()) + " \n");
    const std::string unowned = makeDirectory("LBCache8", QString());
    // Unmarked for an hour: its process ended between making and marking it.
    const std::string unmarkedLong = makeDirectory("LBCache6", QString());
    // Marked with nothing: its process ended between making the owner file
    // and writing it. Kept while young, as an unmarked one.
    const std::string emptyMarkLong = makeDirectory("LBTop5", QString(""));
    const std::string emptyMarkNew = makeDirectory("LBTop4", QString(""));
    const time_t hourAgo = time(nullptr) - 3600;
    const utimbuf times{hourAgo, hourAgo};
    ASSERT_EQ(::utime(unmarkedLong.c_str(), &times), 0);
    ASSERT_EQ(::utime(emptyMarkLong.c_str(), &times), 0);
    const std::string foreign = makeDirectory("LBother", endedPid);
    // Another user's, of an ended process: left to its owner, and no error.
    const std::string othersGone = makeDirectory("LBwriter4", endedPid + " 1234\n");
    const bool othersMade = ::chown(othersGone.c_str(), 65534, 65534) == 0;

    TempDirectoryOwners::removeLeftOvers(*report);
    // A running process of that id that started at another time is another process.
    for (const std::string& removed : {gone, reused, unmarkedLong, emptyMarkLong})
        EXPECT_FALSE(exists(removed)) << removed;
    for (const std::string& kept : {alive, unowned, emptyMarkNew, foreign, mine})
        EXPECT_TRUE(exists(kept)) << kept;
    EXPECT_TRUE(!othersMade || exists(othersGone));
    EXPECT_FALSE(report->hasError());
    running.kill();
    running.waitForFinished();
}


using RepositoryFilesTest = Testing::StoreFixture;

// The checksum is the decimal MD5 of the whole file; date and size are read
// below the root; a manifest loaded from bytes closes its change set even
// when it fails.
TEST_F(RepositoryFilesTest, CheckSumIsTheDecimalMd5OfTheWholeFile)
{
    const std::string empty = path("empty.json");
    const std::string abc = path("dir with spaces/Bibliothèque Жук.json");
    writeFile(empty, "");
    writeFile(abc, "abc");
    // Known answers, written by hand from the hexadecimal digests.
    EXPECT_EQ(computeCheckSum(*report, empty), "2122914021714301784233128915223624866126");
    EXPECT_EQ(computeCheckSum(*report, abc), "14418015260210791762141506312540225127114");
    EXPECT_TRUE(logged(*report, "Action: Computed check sum for library " + abc + "\n"));
    // Past the chunks it reads in.
    QByteArray bytes;
    for (int i = 0; i < 3 * 1024 * 1024 + 7; ++i)
        bytes.append(char(i * 31 + (i >> 11)));
    writeFile(path("large.bin"), bytes);
    std::string digest;
    for (const char b : QCryptographicHash::hash(bytes, QCryptographicHash::Md5))
        digest += std::to_string(static_cast<unsigned char>(b));
    EXPECT_EQ(computeCheckSum(*report, path("large.bin")), digest);
    EXPECT_FALSE(report->hasError());
    EXPECT_EQ(computeCheckSum(*report, path("missing.json")), "");
    EXPECT_EQ(computeCheckSum(*report, path("tmp")), "");

    const std::string file = hostRoot() + "/toolbox/lib.json";
    writeFile(file, "12345");
    setModified(file, QDateTime::fromSecsSinceEpoch(1600000000));
    EXPECT_EQ(fileInfoOf(*report, "toolbox/lib.json"), (FileInfo{"toolbox/lib.json", "", 1600000000u, 5u}));
    EXPECT_EQ(fileDate(path("missing")), 0u);
    // A directory is no model file.
    EXPECT_EQ(fileInfoOf(*report, "toolbox"), (FileInfo{"toolbox", "", 0, 0}));

    auto source = Model::createModel();
    addProduct(*source, "Alpha");
    auto model = Model::createModel();
    EXPECT_TRUE(loadManifestFromBytes(*report, *model, QByteArray()));
    EXPECT_EQ(model->nodeCount(), 0);
    EXPECT_TRUE(loadManifestFromBytes(*report, *model, source->saveToBytes()));
    EXPECT_EQ(model->nodeCount(), 1);
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_FALSE(loadManifestFromBytes(*report, *model, "<not a manifest"));
    EXPECT_FALSE(model->isChangeSetOpen());
    EXPECT_EQ(errorMessages(*report),
              (Messages{"Unable to locate model file " + path("missing.json") + ". Skipping checksum",
                        "Unable to read model file " + path("tmp") + ". Skipping checksum",
                        "Querying the date and size of an invalid file: " + hostRoot() + "/toolbox",
                        "Unexpected error occurred while loading the manifest file"}));

    // A copy replaces the destination and makes its directory, but a failed
    // one keeps it, read-only or not.
    report = RepositoryReport::create();
    const std::string from = path("Quelle ä/modèle.json");
    const std::string destination = path("out/neu er/Ziel ö.json");
    for (const char* content : {"new", "newer"}) {
        writeFile(from, content);
        EXPECT_TRUE(copyFile(*report, from, destination));
        EXPECT_EQ(readFile(destination), content);
    }
    EXPECT_FALSE(report->hasError());
    const std::string kept = path("kept.json");
    writeFile(kept, "old");
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(path("a directory/inner"))));
    EXPECT_FALSE(copyFile(*report, path("nothing here.json"), kept));
    // A directory can't be replaced by a file, nor copied as one, nor made where a file is.
    EXPECT_FALSE(copyFile(*report, from, path("a directory")));
    EXPECT_FALSE(copyFile(*report, path("a directory"), path("copy.json")));
    EXPECT_FALSE(copyFile(*report, from, from + "/below.json"));
    EXPECT_EQ(readFile(kept), "old");
    EXPECT_EQ(readFile(from), "newer");
    EXPECT_TRUE(exists(path("a directory/inner")));
    EXPECT_FALSE(exists(path("copy.json")));
    EXPECT_EQ(errorMessages(*report),
              (Messages{"Unable to copy. Source file " + path("nothing here.json") + " does not exist",
                        "Unable to remove " + path("a directory") + ": it is a directory",
                        "Unable to copy " + path("a directory") + " to " + path("copy.json")
                            + ": file to open is a directory",
                        "Unable to create directory " + from}));

    report = RepositoryReport::create();
    const std::string locked = path("locked/dest.json");
    writeFile(locked, "old");
    {
        Testing::ReadOnlyPath lockedFile(locked);
        Testing::ReadOnlyPath lockedDirectory(path("locked"));
        if (!lockedFile.active() || !lockedDirectory.active())
            GTEST_SKIP() << "cannot make a path read-only here";
        EXPECT_FALSE(copyFile(*report, from, locked));
    }
    EXPECT_EQ(readFile(locked), "old");
    // The reason is the system's: refused to a user, or to anyone for an immutable file.
    EXPECT_THAT(errorMessages(*report),
                ::testing::ElementsAre(::testing::AnyOf("Unable to remove " + locked + ": Permission denied",
                                                        "Unable to remove " + locked + ": Operation not permitted")));
}


// Inside a scope a file found once keeps the state it was found in; a file
// missing is looked for again, a scope inside it changes nothing, and
// nothing outlives the outer scope.
TEST_F(RepositoryFilesTest, AScopeKeepsTheFilesItFoundAndNothingElse)
{
    const std::string file = path("scoped.json");
    const std::string later = path("later.json");
    writeFile(file, "12345");
    struct stat status;
    {
        const FileStateScope scope;
        ASSERT_TRUE(FileStateScope::stat(file, status));
        writeFile(file, "123456789");
        { const FileStateScope inner; }
        ASSERT_TRUE(FileStateScope::stat(file, status));
        EXPECT_EQ(status.st_size, 5);
        EXPECT_FALSE(FileStateScope::stat(later, status));
        writeFile(later, "x");
        EXPECT_TRUE(FileStateScope::stat(later, status));
    }
    ASSERT_TRUE(FileStateScope::stat(file, status));
    EXPECT_EQ(status.st_size, 9);
}

using Segments = std::vector<std::string>;

TEST(RepositoryPathsTest, SanitizeNameEscapesAllButLettersDigitsAndUnderscore)
{
    // Letters of any script stay; other characters are escaped by their
    // one-byte form, sign-extended, which is 0 outside Latin-1.
    const std::pair<const char*, const char*> cases[] = {
        {"a/b_c d", "a_2fb__c_20d"}, {"a\\b", "a_2fb"},       {"", ""},           {"v1.2", "v1_2e2"},
        {"tab\there", "tab_09here"}, {"Tëst_Жук", "Tëst__Жук"}, {"90°", "90_-50"}, {"1€", "1_00"},
    };
    for (const auto& [name, sanitized] : cases)
        EXPECT_EQ(sanitizeName(name), sanitized) << name;
    // Each character is escaped on its own, so a name of ASCII alone (read
    // byte by byte) gives what it gives within a name that is not.
    const std::string beyond = "\u00e9";
    for (int code = 0; code < 0x80; ++code) {
        const std::string ascii = "a" + std::string(1, char(code)) + "_Z9";
        EXPECT_EQ(sanitizeName(ascii) + sanitizeName(beyond), sanitizeName(ascii + beyond)) << code;
    }
    EXPECT_EQ(sanitizePath("my lib/a//b/c_d"), "my_20lib/a_2f_2fb/c__d");

    // Splitting keeps doubled slashes in names; absolute and relative forms.
    const std::pair<const char*, Segments> splits[] = {
        {"lib/sub/block", {"lib", "sub", "block"}}, {"lib/a//b", {"lib", "a//b"}}, {"a////b/c", {"a////b", "c"}},
        {"a///b", {"a", "b"}}, {"/a", {"", "a"}}, {"a", {"a"}}, {"", {}},
    };
    for (const auto& [path, segments] : splits)
        EXPECT_EQ(splitBlockPath(path), segments) << path;
    EXPECT_EQ(absolutePath("/root", "toolbox/lib.json"), "/root/toolbox/lib.json");
    EXPECT_EQ(absolutePath("/root", "/elsewhere/lib.json"), "/elsewhere/lib.json");
    EXPECT_EQ(relativePath("/root", "/root/toolbox/lib.json"), "toolbox/lib.json");
    EXPECT_EQ(relativePath("/root", "toolbox/lib.json"), "toolbox/lib.json");
    EXPECT_EQ(relativePath("/r", "/x/r/y"), "x/y") << "every occurrence of the root goes, not only a leading one";
}

TEST(RepositoryPathsTest, OnlyRelativePathsWithinTheStoreServeAsRepositoryDirectories)
{
    for (const char* inside : {"wavecraft", "vendor/wave craft", "a\\b", "..x/y..", "Жук"})
        EXPECT_EQ(storePathProblem(inside), "") << inside;
    const struct {
        const char* path;
        const char* problem;
    } refused[] = {
        {"", "it is empty"}, {"/etc", "it is not a relative path"}, {"\\\\server\\share", "it is not a relative path"},
        {"C:/data", "it is not a relative path"}, {"a/../../b", "it holds a \"..\" segment"},
        {"..", "it holds a \"..\" segment"}, {"a\\..", "it holds a \"..\" segment"},
        {"./a", "it holds a \".\" segment"}, {"a//b", "it holds an empty segment"}, {"a/", "it holds an empty segment"},
        {"a\x01b", "it holds a control character"},
    };
    for (const auto& c : refused)
        EXPECT_EQ(storePathProblem(c.path), c.problem) << c.path;

    EXPECT_FALSE(holdsControlCharacter("Two\nLines\tand a tab"));
    EXPECT_TRUE(holdsControlCharacter("Bell\a"));
    EXPECT_TRUE(holdsControlCharacter("Carriage\rReturn"));
    EXPECT_EQ(showControlCharacters("Bell\a\x1f"), "Bell\\x07\\x1f");
}

const QDateTime stamp = QDateTime::fromSecsSinceEpoch(1763800000);

// A product "signals" whose model file and one dependency are on the host's
// disk, whose store holds both archives, and whose manifest records all of it
// as it is now.
class LibraryComparisonTest : public StoreFixture {
protected:
    void SetUp() override
    {
        StoreFixture::SetUp();
        put(tdblocks, "{\"entries\": []}");
        put(model, "{\"blocks\": [1, 2, 3]}");
        product = addRecordedSignals(*nodes, "toolbox/signals/tdblocks.json");
    }

    void put(const std::string& file, const char* content)
    {
        writeFile(file, content);
        setModified(file, stamp);
    }

    bool compare(const LibraryImpl& library, bool ignoreTimestamp = false)
    {
        report = RepositoryReport::create();
        HostOperations host(report);
        return LibraryComparison(*report, store(), host).compareLibrary(library, ignoreTimestamp);
    }

    const std::string tdblocks = hostRoot() + "/toolbox/signals/tdblocks.json";
    const std::string model = hostRoot() + "/toolbox/signals/signals.tdlib.json";
    ModelPtr nodes = Model::createModel();
    LibraryImpl* product = nullptr;
};

// Dates that match are trusted without reading; a touched file with the same
// content stays up to date; changed content is out of date, whether the size
// or only the checksum tells; ignoring timestamps reads every file.
TEST_F(LibraryComparisonTest, ATouchedFileWithTheSameContentStaysUpToDate)
{
    EXPECT_TRUE(compare(*product));
    EXPECT_TRUE(logged(*report, "Action: The timestamps matched! (Signals)"));
    EXPECT_EQ(loggedCount(*report, "Computed check sum"), 0);

    // A host may name its root and stores relative to the working directory:
    // nothing is judged anew for that, not even the archives that another
    // process recorded as checked.
    const std::string icons = store() + "/signals/icons.rps";
    StoreDamage::registerStores(path("shipped"), store());
    StoreDamage::archiveWritten(store(), icons);
    StoreDamage::saveRecords();
    const bool spelledAnew = StoreDamage::archiveVerified(store(), store() + "/./signals/icons.rps")
                             && StoreDamage::archiveVerified(store(), store() + "/signals//icons.rps")
                             && StoreDamage::archiveVerified(store(), store() + "/signals/../signals/icons.rps");
    const QString working = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(scratch.path()));
    RecordingEnvironment relative("root", "prefs");
    Platform::setEnvironment(&relative);
    const bool upToDate = compare(*product);
    StoreDamage::registerStores("shipped", "store");
    const bool archiveKnown = StoreDamage::archiveVerified("store", "store/signals/icons.rps");
    Platform::setEnvironment(environment);
    QDir::setCurrent(working);
    EXPECT_TRUE(upToDate);
    EXPECT_TRUE(logged(*report, "Action: The timestamps matched! (toolbox/signals/tdblocks.json)"));
    EXPECT_TRUE(archiveKnown);
    EXPECT_TRUE(spelledAnew) << "an archive named with redundant parts is the one recorded";

    EXPECT_TRUE(compare(*product, true));
    EXPECT_TRUE(logged(*report, "The timestamp of toolbox/signals/tdblocks.json has been ignored"));
    EXPECT_TRUE(logged(*report, "The timestamp of toolbox/signals/signals.tdlib.json has been ignored"))
        << "the model file's line quotes the host's path, not the library's name";
    EXPECT_EQ(loggedCount(*report, "Computed check sum"), 2);

    setModified(tdblocks, stamp.addSecs(60));
    setModified(model, stamp.addSecs(60));
    EXPECT_TRUE(compare(*product));
    EXPECT_TRUE(logged(*report, "The checksums matched! (toolbox/signals/tdblocks.json)"));
    EXPECT_TRUE(logged(*report, "The checksums matched! (Signals)"));

    const struct {
        const char* tdblocksContent;
        const char* modelContent;
        const char* line;
    } changes[] = {
        {"{\"entries\": [1]}", "{\"blocks\": [1, 2, 3]}", "The files have different sizes (toolbox/signals/tdblocks.json)"},
        {"{\"entries\": {}}", "{\"blocks\": [1, 2, 3]}", "The checksums did not match. (toolbox/signals/tdblocks.json)"},
        {"{\"entries\": []}", "{\"blocks\": [1, 2, 4]}", "The checksums did not match. (Signals)"},
    };
    for (const auto& change : changes) {
        writeFile(tdblocks, change.tdblocksContent);
        writeFile(model, change.modelContent);
        EXPECT_FALSE(compare(*product)) << change.line;
        EXPECT_TRUE(logged(*report, change.line));
    }
    product->setFileDependencies({});
    product->setPath("forgotten"); // the host no longer knows the library
    EXPECT_FALSE(compare(*product));
    EXPECT_TRUE(logged(*report, "The files have different sizes (Signals)"));
}

// The reader's decision over whole products: a product with its
// dependencies, and a palette that is as fresh as its members.
class ProductUpToDateTest : public HandMadeStore {
protected:
    LibraryImpl* stored(const std::string& id)
    {
        for (TandrilObjectImpl* node : reader->topLevelManifest()->getNodes())
            if (node->getUniquePath() == StringId(id))
                return dynamic_cast<LibraryImpl*>(node);
        return nullptr;
    }

    // Puts the library's model file on the host's disk and records it in the
    // store as it is now; an edit comes later and is not recorded.
    void record(const std::string& id, const QByteArray& content, bool edit = false)
    {
        const std::string spec = "toolbox/" + id + ".tdlib.json";
        writeFile(hostRoot() + "/" + spec, content);
        setModified(hostRoot() + "/" + spec, edit ? stamp.addSecs(5) : stamp);
        if (!edit)
            recordModelFile(*stored(id), spec);
    }
};

TEST_F(ProductUpToDateTest, AProductIsAsFreshAsItsDependencies)
{
    // A palette: its member Beta has no icons archive; then it has. The
    // members' dates count even when the palette's are ignored.
    record("Beta", "{\"blocks\": 1}");
    const TandrilObject tools = reader->getTandrilObject("Tools");
    EXPECT_FALSE(reader->isProductUpToDate(tools));
    writeArchive(archive("Beta", "icons"), {{"icons/B1.svg", svg("B1")}});
    EXPECT_TRUE(reader->isProductUpToDate(tools, true));
    EXPECT_TRUE(logged(*report, "The timestamps matched! (Beta)"));

    record("Alpha", "{\"blocks\": 1}");
    record("Alpha-Shared", "{\"blocks\": 2}");
    // As generation leaves it: the dependency's archives are its product's.
    stored("Alpha-Shared")->setProduct(stored("Alpha"));
    const TandrilObject alpha = reader->getTandrilObject("Alpha");
    EXPECT_TRUE(reader->isProductUpToDate(alpha));
    EXPECT_TRUE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "NotADependency", false));
    EXPECT_FALSE(reader->isProductUpToDate(TandrilObject()));
    EXPECT_FALSE(reader->isProductUpToDate(std::string("Nope")));
    EXPECT_FALSE(reader->isProductUpToDate(reader->getTandrilObject("Alpha/Gain"))) << "a block is no product";

    // A handle of the merged list may hold the other store's node of a
    // product (both stores' handles share one entry per id). Each reader
    // judges the product by its own top-level record, whatever node the
    // handle holds.
    ModelPtr otherStore = Model::createModel();
    LibraryImpl* foreign = otherStore->createLibraryImpl();
    foreign->copyNonStructuralPropertiesFromNode(static_cast<const Node*>(stored("Alpha")));
    foreign->setModelFileSpec("toolbox/NotThere.tdlib.json");
    alpha.getData()->setNode(foreign);
    ASSERT_EQ(alpha.getImpl(), foreign);
    EXPECT_TRUE(reader->isProductUpToDate(alpha)) << "the foreign node's missing model file does not count";
    alpha.getData()->setNode(stored("Alpha"));

    record("Alpha-Shared", "{\"blocks\": 3}", true);
    EXPECT_FALSE(reader->isProductUpToDate(alpha)) << "a changed dependency makes the product out of date";
    EXPECT_FALSE(reader->isLibraryUpToDate(alpha, "Shared", false));
    EXPECT_TRUE(logged(*report, "The checksums did not match. (Alpha-Shared)"));
    record("Alpha-Shared", "{\"blocks\": 3}");
    EXPECT_TRUE(reader->isProductUpToDate(alpha));
    stored("Alpha")->setModelFileSpec("");
    EXPECT_FALSE(reader->isProductUpToDate(alpha)) << "a record never generated is not up to date";
}

} // namespace
} // namespace LibraryBrowser
