// tdlb's commands on a copy of the example root: what the reading commands
// print, their JSON documents parsed back, and their exit codes; find's
// ranked answer; browse run as a user runs it to make a picture of the
// window; help and the build's root without --root. The commands that change
// the store: generation and its modes, its progress on a terminal,
// destruction, and a fault in the store reported with exit code 1.

#include "TdlbProcess.h"

#include <QCryptographicHash>
#include <QDir>
#include <QImage>
#include <QRegularExpression>
#include <QSettings>

#include <tuple>

namespace LibraryBrowser::Testing {
namespace {

using TdlbReadTest = UpdatedTdlbTest;

// A JSON object as one compact line, without the given keys.
QString compact(QJsonObject object, const QStringList& without = {})
{
    for (const QString& key : without)
        object.remove(key);
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

// What tdlb refuses, it refuses with a reason on standard error and nothing
// on standard output: usage errors before any repository work with exit
// code 2, what can't be found with 1 (nothing is written then, so the
// writing commands are asked here too).
TEST_F(TdlbReadTest, EachCommandPrintsItsAnswerOrSaysWhyNotWithItsExitCode)
{
    const QString root = tdlb.root();
    const QString picture = QDir(tdlb.preferences()).filePath("window.png");
    const QString library = root + "/toolbox/arithmetica/arithmetica.tdlib.json";
    QString md5;
    for (const char byte : QCryptographicHash::hash(readFile(library.toStdString()), QCryptographicHash::Md5))
        md5 += QString::number(static_cast<unsigned char>(byte));
    const std::string store = (tdlb.preferences() + "/td_library_browser_repos").toStdString();
    const auto stores = [&] { return std::pair{snapshot(root.toStdString()), snapshot(store)}; };
    const auto before = stores();
    const QString pattern = "needs exactly one pattern", object = "no object", product = "in the repository";
    expectRuns(tdlb.withRoot({}), {
        {{"update"}, 0, {update.out}}, {{"find", "xyzzy"}, 1, {"0 of 0 matching blocks shown"}},
        {{"search", "gain"}, 0,
         {"  arithmetica/Basic Operations/Gain  [Block]", "arithmetica: 1 hit (1 block, 0 subsystems)\n",
          "\n2 hits in 2 products\n"}},
        {{"show", "Kinetics"}, 0, {"path: kinetics\n", "isProduct: yes\n", "children: 5\n"}},
        {{"checksum", library}, 0, {md5 + "  " + library + "\n"}},
        {{}, 2, {}, {"no command given"}}, {{"frobnicate"}, 2, {}, {"unknown command 'frobnicate'"}},
        {{"--bogus", "list"}, 2, {}, {"bogus"}},
        {{"list", "extra"}, 2, {}, {"takes no arguments"}}, {{"search"}, 2, {}, {pattern}},
        {{"show"}, 2, {}, {"needs exactly one object"}},
        {{"tree", "--depth", "deep"}, 2, {}, {"--depth"}},
        {{"generate", "--mode", "Sometimes"}, 2, {}, {"unknown mode 'Sometimes'"}},
        {{"checksum"}, 2, {}, {"needs exactly one file"}}, {{"list", "--root"}, 2, {}, {"root"}},
        {{"show", "arithmetica", "--size", "0"}, 2, {}, {"--size"}},
        {{"search", "(", "--regexp"}, 2, {}, {"invalid regular expression '('"}},
        {{"--root", root + "/no-such-root", "list"}, 2, {}, {"no-such-root' does not exist"}},
        {{"browse", "--screenshot", picture, "--layout", "diagonal"}, 2, {},
         {"--layout is list or grid, not 'diagonal'"}},
        {{"browse", "--screenshot", picture, "--size", "20x20"}, 2, {}, {"--size needs WIDTHxHEIGHT"}},
        {{"browse", "--screenshot", picture, "--select", "Kinetics/Nowhere"}, 1, {},
         {"no library or subsystem 'Kinetics/Nowhere' in the tree"}},
        {{"find"}, 2}, {{"find", "  "}, 2}, {{"find", "pid", "--limit", "-1"}, 2},
        {{"show", "arithmetica/No Such Block"}, 1, {}, {object}}, {{"tree", "nowhere"}, 1, {}, {object}},
        {{"search", "gain", "--under", "nowhere"}, 1, {}, {object}},
        {{"checksum", root + "/missing.json"}, 1, {}, {"cannot read " + root + "/missing.json"}},
        {{"generate", "nonesuch"}, 1, {}, {"no product 'nonesuch' " + product}},
        {{"destroy", "nonesuch"}, 1, {}, {"no product 'nonesuch' " + product}},
        // The object is shown before its missing icon is told.
        {{"show", "kinetics", "--icon", picture}, 1, {"path: kinetics"}, {"'kinetics' has no icon"}},
    });
    EXPECT_TRUE(update.out.contains("Updated: 6 products, 0 warnings")) << qPrintable(update.out);
    // Nothing is generated again when nothing changed, and nothing refused writes to a store.
    EXPECT_TRUE(stores() == before);
    EXPECT_TRUE(ok({"report"}).out.startsWith("Action: Syncing the top level manifest"));

    // The documents of list, search, tree, show and find, and browse's picture.
    const TdlbResult text = ok({"list"});
    EXPECT_EQ(text.out.count('\n'), 7);
    for (const char* row : {"^NAME", "\nSignal Workbench +signal_workbench +palette +yes +yes\n",
                            "\nArithmetica +arithmetica +product +no +yes\n"})
        EXPECT_TRUE(text.out.contains(QRegularExpression(row))) << row << "\n" << qPrintable(text.out);
    const TdlbResult list = ok({"list", "--json"});
    EXPECT_EQ(list.json()["products"].toArray().size(), list.json()["count"].toInt(6)) << qPrintable(list.out);
    EXPECT_EQ(compact(list.jsonEntry("products", "kinetics")),
              R"({"displayName":"Kinetics","kind":"product","name":"kinetics","path":"kinetics","topLevel":true,)"
              R"("type":"Library","upToDate":true})");
    EXPECT_FALSE(list.jsonEntry("products", "wavecraft")["topLevel"].toBool(true));

    EXPECT_EQ(compact(ok({"search", "gain", "--json"}).json()),
              R"({"pattern":"gain","products":[{"blocks":1,"count":1,"hits":[{"displayName":"Gain","name":"Gain",)"
              R"("path":"arithmetica/Basic Operations/Gain","type":"Block"}],"product":"arithmetica","subsystems":0},)"
              R"({"blocks":1,"count":1,"hits":[{"displayName":"Gain","name":"Gain","path":"arithmetica/Basic )"
              R"(Operations/Gain","type":"Block"}],"product":"tandril","subsystems":0}],"total":2})");
    // Each option reaches the pattern; what the pattern makes of it is the search's own to pin.
    const auto totalOf = [this](const QStringList& arguments) {
        return ok(QStringList{"search", "--json"} + arguments).json()["total"].toInt(-1);
    };
    const std::pair<QStringList, int> totals[] = {{{"gain", "--match-case"}, 0}, {{"Gain", "--match-case"}, 2},
                                                  {{"G.in", "--regexp"}, 2}, {{"G.in"}, 0},
                                                  {{"Gai", "--whole-word"}, 0}};
    for (const auto& [arguments, expected] : totals)
        EXPECT_EQ(totalOf(arguments), expected) << qPrintable(arguments.join(' '));
    const TdlbResult under = ok({"search", "s", "--under", "kinetics/Mechanical", "--json"});
    const QString hits = compact(under.json());
    EXPECT_EQ(hits.count("\"path\":\"kinetics/Mechanical/"), hits.count("\"path\":")) << qPrintable(hits);
    EXPECT_TRUE(hits.contains("\"path\":") && under.json()["total"].toInt() < totalOf({"s"})) << qPrintable(hits);

    const TdlbResult tree = ok({"tree", "--json"});
    const QJsonArray objects = tree.json()["objects"].toArray();
    EXPECT_TRUE(objects.size() > 20 && tree.json()["count"].toInt() == objects.size());
    const QJsonObject reference = tree.jsonEntry("objects", "kinetics/Test Signals");
    EXPECT_EQ(reference["type"].toString() + " " + reference["target"].toString(), "LibraryRef wavecraft/Sources");
    EXPECT_FALSE(compact(ok({"tree", "--depth", "1", "--json"}).json()).contains("\"depth\":2"));
    // Nested subsystems are indented further.
    const TdlbResult below = ok({"tree", "kinetics/Mechanical"});
    EXPECT_TRUE(below.out.contains(QRegularExpression("^Mechanical  \\[SubSystem\\]\n  [^ ]")) &&
                below.out.contains("\n    "))
        << qPrintable(below.out);

    const QJsonObject gain = ok({"show", "arithmetica/Basic Operations/Gain", "--json"}).json();
    EXPECT_TRUE(!gain["description"].toString().isEmpty() && gain["iconBytes"].toInt() > 0);
    EXPECT_EQ(compact(gain, {"description", "iconBytes"}),
              R"({"children":0,"displayName":"Gain","isEmpty":true,"isFlat":true,"isProduct":false,"name":"Gain",)"
              R"("path":"arithmetica/Basic Operations/Gain","product":"arithmetica","type":"Block"})");
    const QString svg = QDir(tdlb.preferences()).filePath("gain.svg");
    const QString png = QDir(tdlb.preferences()).filePath("gain.png");
    ok({"show", "arithmetica/Basic Operations/Gain", "--icon", svg});
    ok({"show", "arithmetica/Basic Operations/Gain", "--icon", png, "--size", "48"});
    EXPECT_TRUE(readFile(svg.toStdString()).contains("<svg") && QImage(png).size() == QSize(48, 48));

    const QJsonObject first = ok({"find", "controller pid", "--json"}).json()["blocks"].toArray().first().toObject();
    EXPECT_EQ(compact(first, {"score"}),
              R"({"displayName":"PID Controller","displayPath":"Kinetics/Continuous/PID Controller",)"
              R"("path":"kinetics/Continuous/PID Controller","spans":[{"length":3,"start":0},{"length":10,"start":4}],)"
              R"("type":"Block"})");
    EXPECT_TRUE(ok({"find", "controller pid"}).out.startsWith(
        QString("%1  Kinetics/Continuous/PID Controller  [Block]  [PID] [Controller]\n")
            .arg(first["score"].toInt(), 5)));
    EXPECT_GT(first["score"].toInt(), 0);
    const QJsonObject limited = ok({"find", "wave", "--limit", "2", "--json"}).json();
    EXPECT_TRUE(limited["blocks"].toArray().size() == 2 && limited["total"].toInt() > 2);
    EXPECT_EQ(ok({"find", "wave", "--limit", "0", "--json"}).json()["blocks"].toArray().size(),
              limited["total"].toInt());

    // Browse makes a picture of the asked node, with options for that run only.
    const auto preferences = [this] {
        const QSettings ini(tdlb.preferences() + "/LibraryBrowser.ini", QSettings::IniFormat);
        return ini.value("LibraryBrowser/LBLayout").toString() + "|" + ini.value("LibraryBrowser/LBIconSize").toString();
    };
    ok({"browse", "--screenshot", picture});
    const QString chosen = preferences();
    ASSERT_NE(chosen, "|") << "the window wrote its preferences";
    ok({"browse", "--select", "Kinetics/Continuous", "--layout", "list", "--icon-size", "large", "--size", "700x500",
        "--screenshot", picture});
    EXPECT_EQ(QImage(picture).size(), QSize(700, 500));
    EXPECT_EQ(preferences(), chosen) << "the options were for that run only";
}

// The command line's own contract without a root: help on every command,
// the window commands without a display, and the build's example root by
// default. Usage errors: TdlbReadTest.EachCommandPrintsItsAnswerOrSaysWhyNotWithItsExitCode.

TEST(TdlbUsageTest, EveryCommandHasItsHelpTheWindowCommandsNeedADisplayAndNoRootMeansTheBuilds)
{
    std::vector<ExpectedRun> runs{{{"--help"}, 0, {"--root"}}};
    const std::pair<QString, QString> commands[] = {
        {"update", ""}, {"list", ""},    {"search", "--whole-word"}, {"tree", ""},   {"show", "--icon"},
        {"generate", "IgnoreTimestamp"}, {"destroy", ""},            {"checksum", ""}, {"report", ""}};
    for (const auto& [command, option] : commands) {
        runs[0].out.append("  " + command + " ");
        runs.push_back({{command, "--help"}, 0, {"Usage:", " " + command, option}});
    }
    expectRuns({}, runs);
    QProcessEnvironment bare = TdlbProcess::environment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        bare.remove(name);
    expectRuns({}, {{{"browse"}, 2, {}, {"--screenshot FILE"}}, {{"page"}, 2, {}, {"--screenshot FILE"}},
                    {{"browse", "--help"}, 0, {"--screenshot"}}, {{"page", "--help"}, 0, {"--screenshot"}}}, bare);
    // Without --root, tdlb serves the build's copy of the example root: the
    // sources stay exactly as they were, shipped store or not.
    QTemporaryDir preferences;
    const auto before = snapshot(TDLB_EXAMPLE_ROOT);
    expectRuns({"--prefdir", preferences.path()}, {{{"list"}, 0, {"Arithmetica"}}});
    EXPECT_TRUE(snapshot(TDLB_EXAMPLE_ROOT) == before);
}

using TdlbWriteTest = UpdatedTdlbTest;

// Progress is for people: generate shows it when its output is a terminal,
// here a pseudo terminal, and the same run off a terminal stays quiet.
// Destroy leaves the shipped store to answer. --verbose echoes the report of
// the one product asked for; a product asked for by its display name and a
// mode is generated again too. First a broken file: the exit codes.
TEST_F(TdlbWriteTest, GenerateShowsProgressRedoesAChangedLibraryAndDestroyRemovesTheWritableData)
{
    // A broken file of one product: the commands that change the store fail
    // with its errors; those that only read answer, exit with 0 and show the
    // errors with a line that counts them; a question that can't be answered
    // still fails. Mended, it serves the rest.
    const std::string blocks = (tdlb.root() + "/toolbox/wavecraft/tdblocks.json").toStdString();
    const QByteArray good = readFile(blocks);
    writeFile(blocks, "{ not json");
    const QString note = "the repository's report holds 1 error, shown above\n";
    expectRuns(tdlb.withRoot({}), {{{"update"}, 1, {"Updated: "}, {"??? **Error**", "wavecraft/tdblocks.json"}},
                                   {{"show", "kinetics/NoSuchBlock"}, 1},
                                   {{"generate", "Kinetics"}, 1}});
    for (const QStringList& reading : {QStringList{"list"}, QStringList{"search", "gain"}, QStringList{"tree"}}) {
        const TdlbResult result = ok(reading);
        EXPECT_TRUE(!result.out.isEmpty() && result.err.endsWith("tdlb " + reading.first() + ": " + note) &&
                    result.err.count("??? **Error**") == 1 && result.err.contains("wavecraft/tdblocks.json"))
            << qPrintable(reading.join(' ') + "\n" + result.err);
    }
    writeFile(blocks, good);

    // Python's pty module runs tdlb with all three streams on a pseudo
    // terminal and copies what it shows.
    QProcess terminal;
    terminal.setProcessEnvironment(TdlbProcess::environment());
    const char* script = "import os, pty, sys; sys.exit(os.waitstatus_to_exitcode(pty.spawn(sys.argv[1:])))";
    terminal.start("/usr/bin/python3", QStringList{"-c", script, TDLB_EXECUTABLE} + tdlb.withRoot({"generate"}));
    terminal.closeWriteChannel();
    ASSERT_TRUE(terminal.waitForFinished(TDLB_PROCESS_WAIT_MS));
    const QString text = QString::fromLocal8Bit(terminal.readAllStandardOutput()).remove('\r');
    ASSERT_EQ(terminal.exitCode(), 0) << qPrintable(text) << qPrintable(terminal.readAllStandardError());
    for (const char* line : {R"(\[1/6\] Arithmetica \(\d+\.\d s\))", R"(\[6/6\] Signal Workbench \()",
                             R"(Generated 6 products in \d+\.\d s)"})
        EXPECT_TRUE(text.contains(QRegularExpression(line))) << line << "\n" << qPrintable(text);
    const TdlbResult offTerminal = tdlb.run({"generate"});
    EXPECT_TRUE(offTerminal.exitCode == 0 && offTerminal.out.isEmpty()) << qPrintable(offTerminal.out);
    expectRuns(tdlb.withRoot({}), {{{"generate", "--mode", "Regenerate"}},
                                   {{"destroy", "Kinetics"}, 0, {"Destroyed kinetics\n"}},
                                   {{"destroy"}, 0, {"Destroyed the repository\n"}},
                                   // The shipped store still answers.
                                   {{"show", "kinetics/Continuous"}}});
    for (const auto& [file, bytes] : snapshot(tdlb.preferences().toStdString()))
        EXPECT_FALSE(file.endsWith(".rps")) << qPrintable(file);

    // Renamed, dated a minute ahead: an edit in the second of the last generation would
    // keep its date, and a minimal generation trusts a date that matches.
    for (const auto& [relative, from, to] : {std::tuple{"kinetics/kinetics", "\"Continuous\"", "\"Continuous Time\""},
                                             std::tuple{"switchyard/switchyard", "\"Routing\"", "\"Routes\""}}) {
        const std::string file = (tdlb.root() + "/toolbox/" + relative + ".tdlib.json").toStdString();
        writeFile(file, readFile(file).replace(from, to));
        setModified(file, QDateTime::currentDateTime().addSecs(60));
    }
    const auto upToDate = [this](const QString& path) {
        return tdlb.run({"list", "--json"}).jsonEntry("products", path)["upToDate"].toBool();
    };
    EXPECT_FALSE(upToDate("kinetics"));
    const TdlbResult verbose = ok({"--verbose", "generate", "kinetics"});
    // One product only.
    EXPECT_TRUE(verbose.out.isEmpty() && verbose.err.contains("Action: Processing product Kinetics") &&
                verbose.err.contains("Generating manifest") && !verbose.err.contains("Processing product Switchyard"))
        << qPrintable(verbose.err);
    EXPECT_TRUE(upToDate("kinetics") && !upToDate("switchyard"));
    expectRuns(tdlb.withRoot({}), {{{"show", "kinetics/Continuous Time"}},
                                   {{"generate", "Switchyard", "--mode", "IgnoreTimestamp"}},
                                   {{"show", "switchyard/Routes"}, 0, {"type: SubSystem\n"}},
                                   {{"show", "switchyard/Routing"}, 1}});

}

} // namespace
} // namespace LibraryBrowser::Testing
