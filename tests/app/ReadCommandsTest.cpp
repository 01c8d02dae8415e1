// The reading commands on an updated copy of the example root: what they
// print, their JSON documents parsed back, and their exit codes; find's
// ranked answer; browse run as a user runs it to make a picture of the
// window.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QRegularExpression>
#include <QSettings>

namespace LibraryBrowser::Testing {
namespace {

using TdlbReadTest = UpdatedTdlbTest;

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
         {"  arithmetica/Basic Operations/Gain  [Block]", "arithmetica: 1 hit (1 block, 0 subsystems)\n"}},
        {{"show", "Kinetics"}, 0, {"path: kinetics\n", "isProduct: yes\n", "children: 5\n"}},
        {{"checksum", library}, 0, {md5 + "  " + library + "\n"}},
        {{}, 2, {}, {"no command given"}}, {{"frobnicate"}, 2, {}, {"unknown command 'frobnicate'"}},
        {{"--bogus", "list"}, 2, {}, {"bogus"}}, {{"list", "--bogus"}, 2, {}, {"bogus"}},
        {{"list", "extra"}, 2, {}, {"takes no arguments"}}, {{"search"}, 2, {}, {pattern}},
        {{"search", "a", "b"}, 2, {}, {pattern}}, {{"show"}, 2, {}, {"needs exactly one object"}},
        {{"tree", "--depth", "deep"}, 2, {}, {"--depth"}}, {{"tree", "--depth", "-1"}, 2, {}, {"--depth"}},
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
        {{"find"}, 2}, {{"find", "  "}, 2}, {{"find", "pid", "--limit", "-1"}, 2}, {{"find", "pid", "--limit", "x"}, 2},
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
}

TEST_F(TdlbReadTest, ListSearchTreeShowAndFindGiveTheirDocuments)
{
    const TdlbResult text = ok({"list"});
    const QStringList lines = text.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 7) << qPrintable(text.out);
    EXPECT_TRUE(lines[0].startsWith("NAME"));
    for (const char* row :
         {"Signal Workbench +signal_workbench +palette +yes +yes", "Arithmetica +arithmetica +product +no +yes"})
        EXPECT_TRUE(text.out.contains(QRegularExpression(row))) << row << "\n" << qPrintable(text.out);
    const TdlbResult list = ok({"list", "--json"});
    ASSERT_EQ(list.json()["products"].toArray().size(), 6) << qPrintable(list.out);
    EXPECT_EQ(list.json()["count"].toInt(), 6);
    const QJsonObject kinetics = list.jsonEntry("products", "kinetics");
    EXPECT_EQ(kinetics["displayName"].toString() + kinetics["type"].toString() + kinetics["kind"].toString(),
              "KineticsLibraryproduct");
    EXPECT_TRUE(kinetics["topLevel"].toBool() && kinetics["upToDate"].toBool());
    EXPECT_EQ(list.jsonEntry("products", "signal_workbench")["kind"].toString(), "palette");
    EXPECT_FALSE(list.jsonEntry("products", "wavecraft")["topLevel"].toBool());

    const TdlbResult search = ok({"search", "gain", "--json"});
    const QJsonArray products = search.json()["products"].toArray();
    ASSERT_FALSE(products.isEmpty()) << qPrintable(search.out);
    EXPECT_EQ(search.json()["pattern"].toString(), "gain");
    int total = 0;
    for (const QJsonValue& group : products) {
        const QJsonArray hits = group["hits"].toArray();
        EXPECT_EQ(group["count"].toInt(), hits.size());
        EXPECT_EQ(group["blocks"].toInt() + group["subsystems"].toInt(), hits.size());
        for (const QJsonValue& hit : hits)
            EXPECT_TRUE(hit["displayName"].toString().contains("gain", Qt::CaseInsensitive)) << qPrintable(search.out);
        total += hits.size();
    }
    EXPECT_EQ(search.json()["total"].toInt(), total);
    EXPECT_TRUE(ok({"search", "gain"}).out.contains(QString("%1 hits in %2 products").arg(total).arg(products.size())));
    // Each option reaches the pattern; what the pattern makes of it is the search's own to pin.
    const auto totalOf = [this](const QStringList& arguments) {
        return ok(QStringList{"search", "--json"} + arguments).json()["total"].toInt(-1);
    };
    const std::pair<QStringList, int> totals[] = {{{"gain", "--match-case"}, 0}, {{"Gain", "--match-case"}, total},
                                                  {{"G.in", "--regexp"}, total}, {{"G.in"}, 0},
                                                  {{"Gai", "--whole-word"}, 0}};
    for (const auto& [arguments, expected] : totals)
        EXPECT_EQ(totalOf(arguments), expected) << qPrintable(arguments.join(' '));
    const TdlbResult under = ok({"search", "s", "--under", "kinetics/Mechanical", "--json"});
    int underTotal = 0;
    for (const QJsonValue& group : under.json()["products"].toArray()) {
        for (const QJsonValue& hit : group["hits"].toArray()) {
            EXPECT_TRUE(hit["path"].toString().startsWith("kinetics/Mechanical/")) << qPrintable(under.out);
            ++underTotal;
        }
    }
    EXPECT_GT(underTotal, 0);
    EXPECT_LT(under.json()["total"].toInt(), totalOf({"s"}));

    const TdlbResult tree = ok({"tree", "--json"});
    const QJsonArray objects = tree.json()["objects"].toArray();
    ASSERT_GT(objects.size(), 20);
    EXPECT_EQ(tree.json()["count"].toInt(), objects.size());
    // Pre-order: each object is one level below an earlier one at most, the first at depth 1.
    int previous = 0;
    for (const QJsonValue& object : objects) {
        EXPECT_LE(object["depth"].toInt(), previous + 1) << qPrintable(object["path"].toString());
        previous = object["depth"].toInt();
    }
    const QJsonObject reference = tree.jsonEntry("objects", "kinetics/Test Signals");
    EXPECT_EQ(reference["type"].toString() + " " + reference["target"].toString(), "LibraryRef wavecraft/Sources");
    for (const QJsonValue& object : ok({"tree", "--depth", "1", "--json"}).json()["objects"].toArray())
        EXPECT_EQ(object["depth"].toInt(), 1);
    const TdlbResult below = ok({"tree", "kinetics/Mechanical"});
    const QStringList rows = below.out.split('\n');
    // Nested subsystems are indented further.
    EXPECT_TRUE(rows[0] == "Mechanical  [SubSystem]" && rows.value(1).startsWith("  ") &&
                !rows.value(1).startsWith("   ") && below.out.contains("\n    "))
        << qPrintable(below.out);

    const QJsonObject gain = ok({"show", "arithmetica/Basic Operations/Gain", "--json"}).json();
    EXPECT_EQ(gain["path"].toString() + "|" + gain["name"].toString() + "|" + gain["type"].toString() + "|" +
                  gain["product"].toString(),
              "arithmetica/Basic Operations/Gain|Gain|Block|arithmetica");
    EXPECT_TRUE(!gain["description"].toString().isEmpty() && gain["isEmpty"].toBool() && gain["iconBytes"].toInt() > 0);
    const QString svg = QDir(tdlb.preferences()).filePath("gain.svg");
    const QString png = QDir(tdlb.preferences()).filePath("gain.png");
    ok({"show", "arithmetica/Basic Operations/Gain", "--icon", svg});
    ok({"show", "arithmetica/Basic Operations/Gain", "--icon", png, "--size", "48"});
    EXPECT_TRUE(readFile(svg.toStdString()).contains("<svg"));
    EXPECT_EQ(QImage(png).size(), QSize(48, 48));

    const QJsonObject first = ok({"find", "controller pid", "--json"}).json()["blocks"].toArray().first().toObject();
    EXPECT_EQ(first["path"].toString() + "|" + first["displayPath"].toString() + "|" + first["type"].toString(),
              "kinetics/Continuous/PID Controller|Kinetics/Continuous/PID Controller|Block");
    EXPECT_GT(first["score"].toInt(), 0);
    EXPECT_EQ(first["spans"].toArray(), (QJsonArray{QJsonObject{{"start", 0}, {"length", 3}},
                                                    QJsonObject{{"start", 4}, {"length", 10}}}));
    EXPECT_TRUE(ok({"find", "controller pid"}).out.startsWith(
        QString("%1  Kinetics/Continuous/PID Controller  [Block]  [PID] [Controller]\n")
            .arg(first["score"].toInt(), 5)));
    const QJsonObject limited = ok({"find", "wave", "--limit", "2", "--json"}).json();
    EXPECT_EQ(limited["blocks"].toArray().size(), 2);
    EXPECT_GT(limited["total"].toInt(), 2);
    EXPECT_EQ(ok({"find", "wave", "--limit", "0", "--json"}).json()["blocks"].toArray().size(),
              limited["total"].toInt());
}

// A picture of the asked node, with options for that run only.
TEST_F(TdlbReadTest, BrowseScreenshotsTheAskedNodeAndLeavesTheUsersChoicesAlone)
{
    const QString picture = QDir(tdlb.preferences()).filePath("window.png");
    const auto preferences = [this] {
        const QSettings settings(tdlb.preferences() + "/LibraryBrowser.ini", QSettings::IniFormat);
        return settings.value("LibraryBrowser/LBLayout").toString() + "|" +
               settings.value("LibraryBrowser/LBIconSize").toString();
    };
    ok({"browse", "--screenshot", picture});
    const QString chosen = preferences();
    ASSERT_NE(chosen, "|") << "the window wrote its preferences";
    ok({"browse", "--select", "Kinetics/Continuous", "--layout", "list", "--icon-size", "large", "--size", "700x500",
        "--screenshot", picture});
    EXPECT_EQ(QImage(picture).size(), QSize(700, 500));
    EXPECT_EQ(preferences(), chosen) << "the options were for that run only";
}

} // namespace
} // namespace LibraryBrowser::Testing
