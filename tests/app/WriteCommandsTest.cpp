// The commands that change the store, each on a copy of the example root of
// its own: generation and its modes, destruction, and a fault in the store
// reported with exit code 1.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

class TdlbWriteTest : public UpdatedTdlbTest {
protected:
    bool upToDate(const QString& path) const
    {
        return tdlb.run({"list", "--json"}).jsonEntry("products", path)["upToDate"].toBool();
    }

    // Every `from` in a library file of the root copy becomes `to`, dated a
    // minute ahead: an edit in the second of the last generation would keep
    // its date, and a minimal generation trusts a date that matches.
    void editLibrary(const QString& relative, const QByteArray& from, const QByteArray& to) const
    {
        const std::string file = (tdlb.root() + "/toolbox/" + relative).toStdString();
        QByteArray bytes = readFile(file);
        ASSERT_TRUE(bytes.contains(from));
        writeFile(file, bytes.replace(from, to));
        setModified(file, QDateTime::currentDateTime().addSecs(60));
    }
};

// Quiet off a terminal is pinned with progress; --verbose echoes the report
// of the one product asked for; a product asked for by its display name and
// a mode is generated again too.
TEST_F(TdlbWriteTest, GenerateRedoesAChangedLibraryAndVerboseEchoesItsReport)
{
    editLibrary("kinetics/kinetics.tdlib.json", "\"Continuous\"", "\"Continuous Time\"");
    editLibrary("switchyard/switchyard.tdlib.json", "\"Routing\"", "\"Routes\"");
    EXPECT_FALSE(upToDate("kinetics"));
    const TdlbResult verbose = ok({"--verbose", "generate", "kinetics"});
    EXPECT_TRUE(verbose.out.isEmpty());
    EXPECT_TRUE(verbose.err.contains("Action: Processing product Kinetics")) << qPrintable(verbose.err);
    EXPECT_TRUE(verbose.err.contains("Generating manifest"));
    EXPECT_FALSE(verbose.err.contains("Processing product Switchyard")) << "one product only";
    EXPECT_TRUE(upToDate("kinetics"));
    EXPECT_FALSE(upToDate("switchyard"));
    ok({"show", "kinetics/Continuous Time"});

    const TdlbResult generate = ok({"generate", "Switchyard", "--mode", "IgnoreTimestamp"});
    EXPECT_EQ(tdlb.run({"show", "switchyard/Routes", "--json"}).json()["type"].toString(), "SubSystem");
    EXPECT_EQ(tdlb.run({"show", "switchyard/Routing"}).exitCode, 1);
}

TEST_F(TdlbWriteTest, DestroyRemovesTheWritableData)
{
    ok({"generate", "--mode", "Regenerate"});
    const TdlbResult one = ok({"destroy", "Kinetics"});
    EXPECT_EQ(one.out, "Destroyed kinetics\n");

    const TdlbResult all = ok({"destroy"});
    EXPECT_EQ(all.out, "Destroyed the repository\n");
    for (const auto& [file, bytes] : snapshot(tdlb.preferences().toStdString()))
        EXPECT_FALSE(file.endsWith(".rps")) << qPrintable(file);
    // The shipped store still answers.
    ok({"show", "kinetics/Continuous"});
}

// A broken file of one product: the commands that change the store fail
// with its errors; those that only read answer, exit with 0 and show the
// errors with a line that counts them; a question that can't be answered
// still fails.
TEST_F(TdlbWriteTest, ExitCodesTellWhetherTheCommandDidItsWork)
{
    writeFile((tdlb.root() + "/toolbox/wavecraft/tdblocks.json").toStdString(), "{ not json");
    const TdlbResult update = tdlb.run({"update"});
    EXPECT_EQ(update.exitCode, 1);
    EXPECT_TRUE(update.err.contains("??? **Error**")) << qPrintable(update.err);
    EXPECT_TRUE(update.err.contains("wavecraft/tdblocks.json")) << qPrintable(update.err);

    const QString note = "the repository's report holds 1 error, shown above\n";
    for (const QStringList& reading : {QStringList{"list"}, QStringList{"search", "gain"},
                                       QStringList{"tree", "kinetics"}, QStringList{"show", "kinetics/Continuous"}}) {
        SCOPED_TRACE(qPrintable(reading.join(' ')));
        const TdlbResult result = ok(reading);
        EXPECT_FALSE(result.out.isEmpty());
        EXPECT_TRUE(result.err.endsWith("tdlb " + reading.first() + ": " + note)) << qPrintable(result.err);
        EXPECT_EQ(result.err.count("??? **Error**"), 1) << qPrintable(result.err);
        EXPECT_TRUE(result.err.contains("wavecraft/tdblocks.json")) << qPrintable(result.err);
    }
    EXPECT_EQ(tdlb.run({"show", "kinetics/NoSuchBlock"}).exitCode, 1);
    EXPECT_EQ(tdlb.run({"generate", "Kinetics"}).exitCode, 1);
}

} // namespace
} // namespace LibraryBrowser::Testing
