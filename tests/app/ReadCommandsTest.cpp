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
#include <QTemporaryDir>

namespace LibraryBrowser::Testing {
namespace {

class TdlbReadTest : public UpdatedTdlbTest {
protected:
    TdlbResult run(const QStringList& arguments) const { return tdlb.run(arguments); }
    QString root() const { return tdlb.root(); }
};

TEST_F(TdlbReadTest, UpdateCountsTheProductsAndIsQuietOnASecondRun)
{
    EXPECT_TRUE(update.out.contains("Updated: 6 products, 0 warnings")) << qPrintable(update.out);
    const auto stores = [this] {
        return std::pair{snapshot(root().toStdString()), snapshot(tdlb.preferences().toStdString())};
    };
    const auto before = stores();
    const TdlbResult again = ok({"update"});
    EXPECT_EQ(again.out, update.out);
    // Nothing is generated again when nothing changed.
    EXPECT_TRUE(stores() == before);
}

TEST_F(TdlbReadTest, ListShowsEachProductOnceWithItsState)
{
    const TdlbResult text = ok({"list"});
    const QStringList lines = text.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 7) << qPrintable(text.out);
    EXPECT_TRUE(lines[0].startsWith("NAME"));
    EXPECT_TRUE(text.out.contains(QRegularExpression("Signal Workbench +signal_workbench +palette +yes +yes")))
        << qPrintable(text.out);
    EXPECT_TRUE(text.out.contains(QRegularExpression("Arithmetica +arithmetica +product +no +yes")));

    const TdlbResult json = ok({"list", "--json"});
    const QJsonObject document = json.json();
    const QJsonArray products = document["products"].toArray();
    ASSERT_EQ(products.size(), 6) << qPrintable(json.out);
    EXPECT_EQ(document["count"].toInt(), 6);
    const QJsonObject kinetics = json.jsonEntry("products", "kinetics");
    EXPECT_EQ(kinetics["displayName"].toString() + kinetics["type"].toString() + kinetics["kind"].toString(),
              "KineticsLibraryproduct");
    EXPECT_TRUE(kinetics["topLevel"].toBool() && kinetics["upToDate"].toBool());
    EXPECT_EQ(json.jsonEntry("products", "signal_workbench")["kind"].toString(), "palette");
    EXPECT_FALSE(json.jsonEntry("products", "wavecraft")["topLevel"].toBool());
}

TEST_F(TdlbReadTest, SearchGroupsHitsByProductWithCounts)
{
    const TdlbResult json = ok({"search", "gain", "--json"});
    const QJsonObject document = json.json();
    EXPECT_EQ(document["pattern"].toString(), "gain");
    const QJsonArray products = document["products"].toArray();
    ASSERT_FALSE(products.isEmpty()) << qPrintable(json.out);
    int total = 0;
    for (const QJsonValue& group : products) {
        const QJsonArray hits = group["hits"].toArray();
        EXPECT_EQ(group["count"].toInt(), hits.size());
        EXPECT_EQ(group["blocks"].toInt() + group["subsystems"].toInt(), hits.size());
        for (const QJsonValue& hit : hits)
            EXPECT_TRUE(hit["displayName"].toString().contains("gain", Qt::CaseInsensitive)) << qPrintable(json.out);
        total += hits.size();
    }
    EXPECT_EQ(document["total"].toInt(), total);

    const TdlbResult text = ok({"search", "gain"});
    EXPECT_TRUE(text.out.contains(QString("%1 hits in %2 products").arg(total).arg(products.size())))
        << qPrintable(text.out);
    EXPECT_TRUE(text.out.contains("  arithmetica/Basic Operations/Gain  [Block]"));
    EXPECT_TRUE(text.out.contains("arithmetica: 1 hit (1 block, 0 subsystems)\n")) << qPrintable(text.out);
}

TEST_F(TdlbReadTest, SearchOptionsNarrowTheHits)
{
    const auto total = [this](const QStringList& arguments) {
        return ok(QStringList{"search", "--json"} + arguments).json()["total"].toInt(-1);
    };
    const int anyCase = total({"gain"});
    EXPECT_GT(anyCase, 0);
    EXPECT_EQ(total({"gain", "--match-case"}), 0);
    EXPECT_EQ(total({"Gain", "--match-case"}), anyCase);
    // Each option reaches the pattern; what the pattern makes of it is the
    // search's own to pin.
    EXPECT_EQ(total({"G.in", "--regexp"}), anyCase);
    EXPECT_EQ(total({"G.in"}), 0);
    EXPECT_EQ(total({"Gai", "--whole-word"}), 0);

    const TdlbResult under = ok({"search", "s", "--under", "kinetics/Mechanical", "--json"});
    const QJsonArray groups = under.json()["products"].toArray();
    ASSERT_FALSE(groups.isEmpty());
    for (const QJsonValue& group : groups) {
        for (const QJsonValue& hit : group["hits"].toArray())
            EXPECT_TRUE(hit["path"].toString().startsWith("kinetics/Mechanical/")) << qPrintable(under.out);
    }
    EXPECT_LT(under.json()["total"].toInt(), total({"s"}));
}

TEST_F(TdlbReadTest, TreeWalksDepthFirstWithDepthsAndALimit)
{
    const TdlbResult json = ok({"tree", "--json"});
    const QJsonArray objects = json.json()["objects"].toArray();
    ASSERT_GT(objects.size(), 20);
    EXPECT_EQ(json.json()["count"].toInt(), objects.size());
    EXPECT_EQ(objects.first()["depth"].toInt(), 1);
    // Pre-order: each object is one level below an earlier one at most.
    int previous = 0;
    for (const QJsonValue& object : objects) {
        EXPECT_LE(object["depth"].toInt(), previous + 1) << qPrintable(object["path"].toString());
        previous = object["depth"].toInt();
    }
    const QJsonObject reference = json.jsonEntry("objects", "kinetics/Test Signals");
    EXPECT_EQ(reference["type"].toString(), "LibraryRef");
    EXPECT_EQ(reference["target"].toString(), "wavecraft/Sources");

    const TdlbResult top = ok({"tree", "--depth", "1", "--json"});
    for (const QJsonValue& object : top.json()["objects"].toArray())
        EXPECT_EQ(object["depth"].toInt(), 1);

    const TdlbResult below = ok({"tree", "kinetics/Mechanical"});
    const QStringList lines = below.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_GE(lines.size(), 3) << qPrintable(below.out);
    EXPECT_EQ(lines[0], "Mechanical  [SubSystem]");
    EXPECT_TRUE(lines[1].startsWith("  ") && !lines[1].startsWith("   ")) << qPrintable(below.out);
    EXPECT_TRUE(below.out.contains("\n    ")) << "nested subsystems are indented further\n" << qPrintable(below.out);
}

TEST_F(TdlbReadTest, ShowGivesEveryAttributeAndWritesTheIcon)
{
    const TdlbResult json = ok({"show", "arithmetica/Basic Operations/Gain", "--json"});
    const QJsonObject gain = json.json();
    EXPECT_EQ(gain["path"].toString() + "|" + gain["name"].toString() + "|" + gain["type"].toString() + "|" +
                  gain["product"].toString(),
              "arithmetica/Basic Operations/Gain|Gain|Block|arithmetica");
    EXPECT_FALSE(gain["description"].toString().isEmpty());
    EXPECT_TRUE(gain["isEmpty"].toBool());
    EXPECT_GT(gain["iconBytes"].toInt(), 0);

    const TdlbResult text = ok({"show", "Kinetics"});
    EXPECT_TRUE(text.out.contains("path: kinetics\n")) << qPrintable(text.out);
    EXPECT_TRUE(text.out.contains("isProduct: yes\n"));
    EXPECT_TRUE(text.out.contains("children: 5\n")) << qPrintable(text.out);

    QTemporaryDir icons;
    const QString svg = icons.filePath("gain.svg");
    ok({"show", "arithmetica/Basic Operations/Gain", "--icon", svg});
    EXPECT_TRUE(readFile(svg.toStdString()).contains("<svg"));

    const QString png = icons.filePath("gain.png");
    ok({"show", "arithmetica/Basic Operations/Gain", "--icon", png, "--size", "48"});
    const QImage image(png);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), QSize(48, 48));
}

// What tdlb refuses, it refuses with a reason on standard error and nothing
// on standard output: usage errors before any repository work with exit
// code 2, what can't be found with 1 (nothing is written then, so the
// writing commands are asked here too).
TEST_F(TdlbReadTest, RefusalsSayWhyWithTheirExitCode)
{
    const QString picture = QDir(tdlb.preferences()).filePath("window.png");
    const struct {
        QStringList arguments;
        int exitCode;
        QString message;
    } cases[] = {
        {{}, 2, "no command given"},
        {{"frobnicate"}, 2, "unknown command 'frobnicate'"},
        {{"--bogus", "list"}, 2, "bogus"},
        {{"list", "--bogus"}, 2, "bogus"},
        {{"list", "extra"}, 2, "takes no arguments"},
        {{"search"}, 2, "needs exactly one pattern"},
        {{"search", "a", "b"}, 2, "needs exactly one pattern"},
        {{"show"}, 2, "needs exactly one object"},
        {{"tree", "--depth", "deep"}, 2, "--depth"},
        {{"tree", "--depth", "-1"}, 2, "--depth"},
        {{"generate", "--mode", "Sometimes"}, 2, "unknown mode 'Sometimes'"},
        {{"checksum"}, 2, "needs exactly one file"},
        {{"list", "--root"}, 2, "root"},
        {{"show", "arithmetica", "--size", "0"}, 2, "--size"},
        {{"search", "(", "--regexp"}, 2, "invalid regular expression '('"},
        {{"--root", root() + "/no-such-root", "list"}, 2, "no-such-root' does not exist"},
        {{"browse", "--screenshot", picture, "--layout", "diagonal"}, 2, "--layout is list or grid, not 'diagonal'"},
        {{"browse", "--screenshot", picture, "--size", "20x20"}, 2, "--size needs WIDTHxHEIGHT"},
        {{"browse", "--screenshot", picture, "--select", "Kinetics/Nowhere"}, 1,
         "no library or subsystem 'Kinetics/Nowhere' in the tree"},
        {{"show", "arithmetica/No Such Block"}, 1, "no object"},
        {{"tree", "nowhere"}, 1, "no object"},
        {{"search", "gain", "--under", "nowhere"}, 1, "no object"},
        {{"checksum", root() + "/missing.json"}, 1, "cannot read " + root() + "/missing.json"},
        {{"generate", "nonesuch"}, 1, "no product 'nonesuch' in the repository"},
        {{"destroy", "nonesuch"}, 1, "no product 'nonesuch' in the repository"},
    };
    for (const auto& c : cases) {
        const TdlbResult result = run(c.arguments);
        ASSERT_FALSE(result.crashed) << qPrintable(c.arguments.join(' '));
        EXPECT_EQ(result.exitCode, c.exitCode) << qPrintable(c.arguments.join(' ')) << "\n" << qPrintable(result.err);
        EXPECT_TRUE(result.err.contains(c.message)) << qPrintable(result.err);
        EXPECT_TRUE(result.out.isEmpty()) << qPrintable(result.out);
    }
    // The object is shown before its missing icon is told.
    const TdlbResult noIcon = run({"show", "kinetics", "--icon", picture});
    EXPECT_EQ(noIcon.exitCode, 1);
    EXPECT_TRUE(noIcon.err.contains("'kinetics' has no icon")) << qPrintable(noIcon.err);
}

TEST_F(TdlbReadTest, ChecksumIsTheDecimalBytesOfTheMd5)
{
    const QString file = root() + "/toolbox/arithmetica/arithmetica.tdlib.json";
    QString expected;
    for (const char byte : QCryptographicHash::hash(readFile(file.toStdString()), QCryptographicHash::Md5))
        expected += QString::number(static_cast<unsigned char>(byte));
    const TdlbResult result = ok({"checksum", file});
    EXPECT_EQ(result.out, expected + "  " + file + "\n");
}

TEST_F(TdlbReadTest, ReportPrintsTheLogOfTheRun)
{
    const TdlbResult result = ok({"report"});
    EXPECT_TRUE(result.out.startsWith("Action: Syncing the top level manifest")) << qPrintable(result.out);
}

TEST_F(TdlbReadTest, FindRanksBestFirstWithSpansHonoursTheLimitAndTellsOutcomesByExitCode)
{
    const TdlbResult json = ok({"find", "controller pid", "--json"});
    const QJsonObject first = json.json()["blocks"].toArray().first().toObject();
    EXPECT_EQ(first["path"].toString(), "kinetics/Continuous/PID Controller");
    EXPECT_EQ(first["displayPath"].toString(), "Kinetics/Continuous/PID Controller");
    EXPECT_EQ(first["type"].toString(), "Block");
    EXPECT_GT(first["score"].toInt(), 0);
    EXPECT_EQ(first["spans"].toArray(), (QJsonArray{QJsonObject{{"start", 0}, {"length", 3}},
                                                    QJsonObject{{"start", 4}, {"length", 10}}}));
    const TdlbResult text = run({"find", "controller pid"});
    EXPECT_TRUE(text.out.startsWith(QString("%1  Kinetics/Continuous/PID Controller  [Block]  [PID] [Controller]\n")
                                        .arg(first["score"].toInt(), 5)))
        << qPrintable(text.out);

    const QJsonObject limited = run({"find", "wave", "--limit", "2", "--json"}).json();
    EXPECT_EQ(limited["blocks"].toArray().size(), 2);
    EXPECT_GT(limited["total"].toInt(), 2);
    EXPECT_EQ(run({"find", "wave", "--limit", "0", "--json"}).json()["blocks"].toArray().size(),
              limited["total"].toInt());

    const TdlbResult none = run({"find", "xyzzy"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_TRUE(none.out.contains("0 of 0 matching blocks shown")) << qPrintable(none.out);
    for (const QStringList& wrong : {QStringList{"find"}, QStringList{"find", "  "},
                                     QStringList{"find", "pid", "--limit", "-1"},
                                     QStringList{"find", "pid", "--limit", "many"}}) {
        const TdlbResult refused = run(wrong);
        EXPECT_EQ(refused.exitCode, 2) << qPrintable(wrong.join(' '));
        EXPECT_FALSE(refused.err.isEmpty());
    }
}

// A picture of the asked node, with options for that run only.
TEST_F(TdlbReadTest, BrowseScreenshotsTheAskedNodeAndLeavesTheUsersChoicesAlone)
{
    const QString picture = QDir(tdlb.preferences()).filePath("window.png");
    const auto preference = [this](const QString& key) {
        return QSettings(tdlb.preferences() + "/LibraryBrowser.ini", QSettings::IniFormat)
            .value("LibraryBrowser/" + key)
            .toString();
    };
    const TdlbResult first = ok({"browse", "--screenshot", picture});
    const QString layout = preference("LBLayout");
    const QString iconSize = preference("LBIconSize");
    ASSERT_FALSE(layout.isEmpty()) << "the window wrote its preferences";
    const TdlbResult shot = ok({"browse", "--select", "Kinetics/Continuous", "--layout", "list", "--icon-size",
                                 "large", "--size", "700x500", "--screenshot", picture});
    EXPECT_EQ(QImage(picture).size(), QSize(700, 500));
    EXPECT_EQ(preference("LBLayout"), layout) << "the options were for that run only";
    EXPECT_EQ(preference("LBIconSize"), iconSize);
}

} // namespace
} // namespace LibraryBrowser::Testing
