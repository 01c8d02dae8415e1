#include "OpenDirectory.h"
#include "PathCacheFile.h"
#include "RootWalk.h"
#include "SearchPath.h"
#include "TdBlocksCache.h"
#include "TdBlocksParser.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace LibraryBrowser::Host::Testing {

namespace {

// Short enough for a test to wait it out, long past a date's granularity.
constexpr std::int64_t margin = 50'000'000;

void waitOutTheMargin()
{
    std::this_thread::sleep_for(std::chrono::nanoseconds(2 * margin));
}

// What a walk found, in a form that compares whole and prints.
using Found = std::map<std::string, std::set<std::string>>;

Found asMap(const RootWalk::Found& found)
{
    Found out;
    for (const QString& directory : found.below)
        out[directory.toStdString()].insert("tdblocks.json (on the path)");
    for (auto it = found.libraries.cbegin(); it != found.libraries.cend(); ++it)
        for (const QString& name : it.value())
            out[it.key().toStdString()].insert(name.toStdString());
    return out;
}

// The walk as the host made it before it kept anything: the reference.
Found iteratorWalk(const QString& root)
{
    const QString tdblocks = QLatin1String(TdBlocksParser::fileName);
    Found out;
    QDirIterator it(root, {tdblocks, QStringLiteral("*.tdlib.json")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo file(it.next());
        out[file.absolutePath().toStdString()].insert(file.fileName() == tdblocks ? "tdblocks.json (on the path)"
                                                                                   : file.fileName().toStdString());
    }
    return out;
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write(bytes);
}

class Tree {
public:
    explicit Tree(const QString& root) : m_root(root) {}
    QString at(const QString& relative) const { return m_root + QLatin1Char('/') + relative; }
    QByteArray encoded(const QString& relative) const { return QFile::encodeName(at(relative)); }
    void write(const QString& relative, const QByteArray& bytes = "{}") const { writeFile(at(relative), bytes); }
    void mkdir(const QString& relative) const { ASSERT_TRUE(QDir().mkpath(at(relative))); }
    void link(const QString& target, const QString& relative) const
    {
        ASSERT_EQ(::symlink(QFile::encodeName(target).constData(), encoded(relative).constData()), 0);
    }
    void remove(const QString& relative) const
    {
        if (QFileInfo(at(relative)).isDir() && !QFileInfo(at(relative)).isSymLink())
            ASSERT_TRUE(QDir(at(relative)).removeRecursively());
        else
            ASSERT_TRUE(QFile::remove(at(relative))) << relative.toStdString();
    }
    void rename(const QString& from, const QString& to) const
    {
        ASSERT_EQ(::rename(encoded(from).constData(), encoded(to).constData()), 0);
    }

private:
    QString m_root;
};

// Every kind of entry a walk has to tell apart.
void buildTree(const Tree& tree)
{
    tree.write("a/tdblocks.json");
    tree.write("a/one.tdlib.json");
    tree.write("a/UPPER.TDLIB.JSON");
    tree.write("a/.hidden.tdlib.json");
    tree.write("a/notes.txt");
    tree.write("a/b/two.tdlib.json");
    tree.write("a/b/c/tdblocks.json");
    tree.write(".hidden/tdblocks.json");
    tree.write("lib.tdlib.json/tdblocks.json");
    tree.write("unread/tdblocks.json");
    // Enough subdirectories for the walk to look them up from their parent.
    for (int i = 0; i < 9; ++i)
        tree.write(QStringLiteral("many/d%1/tdblocks.json").arg(i));
    tree.write("many/d3/e/three.tdlib.json");
    tree.link("b/two.tdlib.json", "a/link.tdlib.json");
    tree.link("b", "a/dir.tdlib.json");
    tree.link("missing.tdlib.json", "a/broken.tdlib.json");
    tree.link("a", "through");
    ASSERT_EQ(::mkfifo(tree.encoded("a/pipe.tdlib.json").constData(), 0600), 0);
    tree.link("pipe.tdlib.json", "a/pipelink.tdlib.json");
}

std::string readThrough(TdBlocksCache& cache, const QString& file, const QString& root);

struct Change {
    const char* what;
    std::function<void(const Tree&)> make;
};

// A tree made, walked and kept; changed; then walked by a later process that
// reads the kept file, and by the same process again: each finds what the
// iterator finds.
TEST(PathCacheTest, WalkFromTheCacheFindsWhatAFreshWalkFinds)
{
    const std::vector<Change> changes{
        {"nothing", [](const Tree&) {}},
        {"a library file added", [](const Tree& t) { t.write("a/b/new.tdlib.json"); }},
        {"a library file removed", [](const Tree& t) { t.remove("a/one.tdlib.json"); }},
        {"a library file renamed", [](const Tree& t) { t.rename("a/one.tdlib.json", "a/uno.tdlib.json"); }},
        {"a library file hidden", [](const Tree& t) { t.rename("a/one.tdlib.json", "a/.one.tdlib.json"); }},
        {"a tdblocks.json added", [](const Tree& t) { t.write("a/b/tdblocks.json"); }},
        {"a tdblocks.json removed", [](const Tree& t) { t.remove("a/b/c/tdblocks.json"); }},
        {"directories added", [](const Tree& t) { t.write("a/b/n/m/tdblocks.json"); }},
        {"a directory removed", [](const Tree& t) { t.remove("a/b/c"); }},
        {"a hidden directory shown", [](const Tree& t) { t.rename(".hidden", "shown"); }},
        {"a directory hidden", [](const Tree& t) { t.rename("a/b", "a/.b"); }},
        {"a directory replaced", [](const Tree& t) {
             t.rename("a/b", "old");
             t.write("a/b/other.tdlib.json");
         }},
        {"a library file replaced by a directory", [](const Tree& t) {
             t.remove("a/one.tdlib.json");
             t.mkdir("a/one.tdlib.json");
         }},
        {"a linked file removed", [](const Tree& t) { t.remove("a/b/two.tdlib.json"); }},
        {"a linked file replaced by a directory", [](const Tree& t) {
             t.remove("a/b/two.tdlib.json");
             t.mkdir("a/b/two.tdlib.json");
         }},
        {"a broken link mended", [](const Tree& t) { t.write("a/missing.tdlib.json"); }},
        {"a file added and its directory dated back", [](const Tree& t) {
             struct stat before;
             ASSERT_EQ(::stat(t.encoded("a/b").constData(), &before), 0);
             t.write("a/b/late.tdlib.json");
             const struct timespec times[2] = {before.st_atim, before.st_mtim};
             ASSERT_EQ(::utimensat(AT_FDCWD, t.encoded("a/b").constData(), times, 0), 0);
         }},
        {"a directory made unreadable", [](const Tree& t) { ::chmod(t.encoded("unread").constData(), 0); }},
        {"the root made unreadable", [](const Tree& t) { ::chmod(t.encoded("").constData(), 0); }},
    };
    for (const Change& change : changes) {
        SCOPED_TRACE(change.what);
        QTemporaryDir top, preferences;
        const QString root = top.path() + "/root";
        const Tree tree(root);
        buildTree(tree);
        waitOutTheMargin();

        PathCacheFile warmCache(preferences.path(), root);
        warmCache.setTrustMargin(margin);
        SearchPath warm(root, {}, warmCache);
        change.make(tree);

        PathCacheFile laterCache(preferences.path(), root);
        laterCache.setTrustMargin(margin);
        RootWalk later(laterCache);
        later.fromBytes(laterCache.section(PathCacheFile::Walk));
        const Found expected = iteratorWalk(root);
        EXPECT_EQ(asMap(later.walk(root)), expected);
        if (std::string(change.what) == "nothing") {
            EXPECT_EQ(later.listed(), 0);
        }

        warm.refresh();
        QStringList below;
        for (const auto& [directory, names] : expected)
            if (names.count("tdblocks.json (on the path)"))
                below << QString::fromStdString(directory);
        EXPECT_EQ(warm.directories(), below);
        ::chmod(QFile::encodeName(root).constData(), 0700);
        ::chmod(tree.encoded("unread").constData(), 0700);
    }
}

// Right after a change a state can't tell it from the next one in the same
// tick: nothing that young is taken again, in a later process or in a
// refresh of the same one, which still finds directories added since.
TEST(PathCacheTest, WhatChangedJustBeforeItWasListedIsListedAgain)
{
    QTemporaryDir top, preferences;
    const QString root = top.path();
    const Tree tree(root);
    buildTree(tree);
    PathCacheFile cache(preferences.path(), root);
    SearchPath path(root, {}, cache);
    const int directories = path.listedDirectories();
    ASSERT_GT(directories, 0);

    PathCacheFile later(preferences.path(), root);
    EXPECT_EQ(SearchPath(root, {}, later).listedDirectories(), directories);
    tree.write("a/b/c/d/tdblocks.json");
    path.refresh();
    EXPECT_EQ(path.listedDirectories(), directories + 1);
    EXPECT_TRUE(path.directories().contains(root + "/a/b/c/d"));

    const auto parsedByALaterProcess = [&] {
        PathCacheFile file(preferences.path(), root);
        TdBlocksCache tdBlocks(file);
        readThrough(tdBlocks, tree.at("a/tdblocks.json"), root);
        tdBlocks.keep();
        return tdBlocks.parsedFiles();
    };
    EXPECT_EQ(parsedByALaterProcess(), 1);
    EXPECT_EQ(parsedByALaterProcess(), 1);
}

// The file is only a help: whatever is wrong with it costs one full walk,
// which finds the right answer and writes the file anew.
TEST(PathCacheTest, ADamagedForeignOrUnwritableFileCostsOneWalk)
{
    QTemporaryDir top, preferences;
    const QString root = top.path() + "/root";
    const Tree tree(root);
    buildTree(tree);
    waitOutTheMargin();
    const QString file = preferences.path() + "/" + PathCacheFile::fileName;
    const auto walkWith = [&](const QString& directory) {
        PathCacheFile cache(directory, root);
        cache.setTrustMargin(margin);
        SearchPath path(root, {}, cache);
        return path.listedDirectories();
    };
    const int all = walkWith(preferences.path());
    ASSERT_EQ(walkWith(preferences.path()), 0);
    const QByteArray good = [&] {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }();
    ASSERT_TRUE(good.contains("two.tdlib.json"));

    QByteArray renamed = good;
    renamed.replace("two.tdlib.json", "twx.tdlib.json");
    QByteArray foreign = good;
    foreign[4] = char(PathCacheFile::version + 1);
    const std::vector<std::pair<const char*, QByteArray>> damages{
        {"cut short", good.left(good.size() - 3)},
        {"a name changed", renamed},
        {"another version", foreign},
        {"empty", QByteArray()},
        {"another program's", QByteArray("[LibraryBrowser]\nFontSize=10\n")}};
    for (const auto& [what, bytes] : damages) {
        SCOPED_TRACE(what);
        writeFile(file, bytes);
        PathCacheFile cache(preferences.path(), root);
        cache.setTrustMargin(margin);
        RootWalk walk(cache);
        walk.fromBytes(cache.section(PathCacheFile::Walk));
        EXPECT_EQ(asMap(walk.walk(root)), iteratorWalk(root));
        EXPECT_EQ(walk.listed(), all);
        EXPECT_EQ(walkWith(preferences.path()), all);
        EXPECT_EQ(walkWith(preferences.path()), 0);
    }

    // Copies that killed processes left before their rename go once they
    // are old; one just made may be another process's, and stays, as does
    // what only looks like a copy.
    const auto leftOver = [&](const char* suffix, std::int64_t age) {
        const QString copy = file + suffix;
        writeFile(copy, good);
        const struct timespec dates[2] = {{std::time(nullptr) - age, 0}, {std::time(nullptr) - age, 0}};
        ::utimensat(AT_FDCWD, QFile::encodeName(copy).constData(), dates, 0);
        return copy;
    };
    const QString killed = leftOver(".Ab3xYz", 3600);
    const QString writing = leftOver(".Qw9rTu", 5);
    const QString lookalike = leftOver(".kept", 3600);
    writeFile(file, QByteArray());
    walkWith(preferences.path());
    EXPECT_FALSE(QFileInfo::exists(killed));
    EXPECT_TRUE(QFileInfo::exists(writing));
    EXPECT_TRUE(QFileInfo::exists(lookalike));

    PathCacheFile otherRoot(preferences.path(), root + "/a");
    EXPECT_TRUE(otherRoot.section(PathCacheFile::Walk).isEmpty());
    // A preferences directory that is a file, or is not there.
    tree.write("prefs-file");
    EXPECT_EQ(walkWith(tree.at("prefs-file")), all);
    EXPECT_EQ(walkWith(tree.at("prefs-file")), all);
    EXPECT_EQ(walkWith(tree.at("no/such")), all);
    EXPECT_FALSE(QFileInfo::exists(tree.at("no")));
}

std::string described(bool exists, bool ok, const std::vector<TdBlocksEntry>& entries, const FileIssue& issue,
                      const std::vector<FileIssue>& refused)
{
    std::ostringstream out;
    out << (exists ? "exists" : "missing") << (ok ? " ok " : " refused ") << issue.toString() << "\n";
    for (const FileIssue& name : refused)
        out << "  left out: " << name.toString() << "\n";
    for (const TdBlocksEntry& entry : entries) {
        out << "  " << entry.productName << "|" << entry.library << "|" << entry.repositoryDirectory << "|"
            << entry.flag << "|" << entry.treeIcon << "|" << entry.panelIcon << "|" << int(entry.type) << "|";
        for (const auto* names : {&entry.children, &entry.dependencies})
            for (const std::string& name : *names)
                out << name << ",";
        out << "\n";
    }
    return out.str();
}

std::string parsedFresh(const QString& file, const QString& root)
{
    std::vector<TdBlocksEntry> entries;
    FileIssue issue;
    std::vector<FileIssue> refused;
    if (!QFileInfo::exists(file))
        return described(false, false, entries, issue, refused);
    const bool ok = TdBlocksParser::parse(file, root, entries, issue, refused);
    return described(true, ok, entries, issue, refused);
}

std::string readThrough(TdBlocksCache& cache, const QString& file, const QString& root)
{
    FileIssue issue;
    std::vector<FileIssue> refused;
    bool ok = false;
    const OpenDirectory from(RootWalk::absoluteRoot(root));
    const TdBlocksCache::Entries entries = cache.read(file, root, from, ok, issue, refused);
    return described(entries != nullptr, ok, entries ? *entries : std::vector<TdBlocksEntry>(), issue, refused);
}

QByteArray tdblocks(const std::string& entries)
{
    return QByteArray::fromStdString(R"({"format": "tandril-tdblocks", "version": 1, "entries": [)" + entries + "]}");
}

// Files parsed, kept and changed; a later process gives for each what a
// parse of it gives now, and parses only what changed or could not be read.
TEST(PathCacheTest, TdBlocksFromTheCacheGiveWhatAParseGives)
{
    const QByteArray product = tdblocks(
        R"({"name": "P", "library": "p", "type": "Product", "treeIcon": "i.svg", "flag": false,
            "dependencies": ["p.tdlib.json", "../x|y.tdlib.json"]})");
    const QByteArray palette = tdblocks(
        R"({"name": "Q", "library": "q", "type": "Palette", "repository": "r/q", "children": ["P", "a,b"]},
           {"name": "S", "library": "s", "type": "Product", "repository": "../out"})");
    const QByteArray broken = tdblocks(R"({"name": "B", "library": "b", "type": "Toolbox"})");
    const std::vector<std::pair<QString, QByteArray>> files{{"p/tdblocks.json", product},
                                                            {"q/tdblocks.json", palette},
                                                            {"b/tdblocks.json", broken},
                                                            {"j/tdblocks.json", "{not json"},
                                                            {"other/one.json", palette}};
    const std::vector<Change> changes{
        {"nothing", [](const Tree&) {}},
        {"edited in place, same size", [](const Tree& t) {
             QFile file(t.at("p/tdblocks.json"));
             ASSERT_TRUE(file.open(QIODevice::ReadWrite));
             QByteArray bytes = file.readAll();
             bytes.replace("\"P\"", "\"R\"");
             file.seek(0);
             file.write(bytes);
         }},
        {"replaced by rename", [&](const Tree& t) {
             t.write("p/new.json", palette);
             t.rename("p/new.json", "p/tdblocks.json");
         }},
        {"edited and dated back", [&](const Tree& t) {
             struct stat before;
             ASSERT_EQ(::stat(t.encoded("q/tdblocks.json").constData(), &before), 0);
             QByteArray bytes = palette;
             t.write("q/tdblocks.json", bytes.replace("\"Q\"", "\"Z\""));
             const struct timespec times[2] = {before.st_atim, before.st_mtim};
             ASSERT_EQ(::utimensat(AT_FDCWD, t.encoded("q/tdblocks.json").constData(), times, 0), 0);
         }},
        {"mended", [&](const Tree& t) { t.write("j/tdblocks.json", product); }},
        {"removed", [](const Tree& t) { t.remove("b/tdblocks.json"); }},
        {"link led elsewhere", [](const Tree& t) {
             t.remove("l/tdblocks.json");
             t.link("../j/tdblocks.json", "l/tdblocks.json");
         }},
    };
    for (const Change& change : changes) {
        SCOPED_TRACE(change.what);
        QTemporaryDir top, preferences;
        const QString root = top.path();
        const Tree tree(root);
        for (const auto& [name, bytes] : files)
            tree.write(name, bytes);
        tree.mkdir("l");
        tree.link("../other/one.json", "l/tdblocks.json");
        // Not a file that can be read: read again each time.
        tree.mkdir("d/tdblocks.json");
        QStringList paths{tree.at("l/tdblocks.json"), tree.at("d/tdblocks.json")};
        for (const auto& [name, bytes] : files)
            paths << tree.at(name);
        waitOutTheMargin();

        PathCacheFile warmCache(preferences.path(), root);
        warmCache.setTrustMargin(margin);
        TdBlocksCache warm(warmCache);
        for (const QString& path : paths)
            readThrough(warm, path, root);
        warm.keep();
        change.make(tree);

        PathCacheFile laterCache(preferences.path(), root);
        laterCache.setTrustMargin(margin);
        TdBlocksCache later(laterCache);
        for (const QString& path : paths)
            EXPECT_EQ(readThrough(later, path, root), parsedFresh(path, root)) << path.toStdString();
        if (std::string(change.what) == "nothing") {
            EXPECT_EQ(later.parsedFiles(), 1);
        }
    }
}

} // namespace
} // namespace LibraryBrowser::Host::Testing
