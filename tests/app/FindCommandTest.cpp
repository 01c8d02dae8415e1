// tdlb find on an updated copy of the example root: the ranked answer in
// both forms, the limit, and the exit codes a script tells outcomes by.

#include "TdlbProcess.h"

#include <QJsonArray>

namespace LibraryBrowser::Testing {
namespace {

class TdlbFindTest : public UpdatedTdlbTest {
protected:
    TdlbResult run(const QStringList& arguments) const { return tdlb.run(arguments); }
};

TEST_F(TdlbFindTest, RanksBestFirstWithSpansHonoursTheLimitAndTellsOutcomesByExitCode)
{
    const TdlbResult json = run({"find", "controller pid", "--json"});
    ASSERT_EQ(json.exitCode, 0) << qPrintable(json.err);
    const QJsonObject first = json.json()["blocks"].toArray().first().toObject();
    EXPECT_EQ(first["path"].toString(), "kinetics/Continuous/PID Controller");
    EXPECT_EQ(first["displayPath"].toString(), "Kinetics/Continuous/PID Controller");
    EXPECT_EQ(first["type"].toString(), "Block");
    EXPECT_GT(first["score"].toInt(), 0);
    EXPECT_EQ(first["spans"].toArray(), (QJsonArray{QJsonObject{{"start", 0}, {"length", 3}},
                                                    QJsonObject{{"start", 4}, {"length", 10}}}));

    const TdlbResult text = run({"find", "controller pid"});
    ASSERT_EQ(text.exitCode, 0);
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

} // namespace
} // namespace LibraryBrowser::Testing
