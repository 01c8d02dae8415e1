// The commands that change the store on a copy of the example root:
// generation and its modes, destruction, and a fault in the store reported
// with exit code 1.

#include "TdlbProcess.h"

#include "support/Files.h"

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

// Destroy leaves the shipped store to answer. Quiet off a terminal is pinned
// with progress; --verbose echoes the report of the one product asked for; a
// product asked for by its display name and a mode is generated again too.
TEST_F(TdlbWriteTest, GenerateRedoesAChangedLibraryAndDestroyRemovesTheWritableData)
{
    expectRuns(tdlb.withRoot({}), {{{"generate", "--mode", "Regenerate"}},
                                   {{"destroy", "Kinetics"}, 0, {"Destroyed kinetics\n"}},
                                   {{"destroy"}, 0, {"Destroyed the repository\n"}},
                                   // The shipped store still answers.
                                   {{"show", "kinetics/Continuous"}}});
    for (const auto& [file, bytes] : snapshot(tdlb.preferences().toStdString()))
        EXPECT_FALSE(file.endsWith(".rps")) << qPrintable(file);

    editLibrary("kinetics/kinetics.tdlib.json", "\"Continuous\"", "\"Continuous Time\"");
    editLibrary("switchyard/switchyard.tdlib.json", "\"Routing\"", "\"Routes\"");
    EXPECT_FALSE(upToDate("kinetics"));
    const TdlbResult verbose = ok({"--verbose", "generate", "kinetics"});
    EXPECT_TRUE(verbose.out.isEmpty());
    EXPECT_TRUE(verbose.err.contains("Action: Processing product Kinetics") &&
                verbose.err.contains("Generating manifest"))
        << qPrintable(verbose.err);
    EXPECT_FALSE(verbose.err.contains("Processing product Switchyard")) << "one product only";
    EXPECT_TRUE(upToDate("kinetics") && !upToDate("switchyard"));
    expectRuns(tdlb.withRoot({}), {{{"show", "kinetics/Continuous Time"}},
                                   {{"generate", "Switchyard", "--mode", "IgnoreTimestamp"}},
                                   {{"show", "switchyard/Routes"}, 0, {"type: SubSystem\n"}},
                                   {{"show", "switchyard/Routing"}, 1}});
}
// A broken file of one product: the commands that change the store fail
// with its errors; those that only read answer, exit with 0 and show the
// errors with a line that counts them; a question that can't be answered
// still fails.
TEST_F(TdlbWriteTest, ExitCodesTellWhetherTheCommandDidItsWork)
{
    writeFile((tdlb.root() + "/toolbox/wavecraft/tdblocks.json").toStdString(), "{ not json");
    const QString note = "the repository's report holds 1 error, shown above\n";
    expectRuns(tdlb.withRoot({}), {{{"update"}, 1, {"Updated: "}, {"??? **Error**", "wavecraft/tdblocks.json"}},
                                   {{"show", "kinetics/NoSuchBlock"}, 1},
                                   {{"generate", "Kinetics"}, 1}});
    for (const QStringList& reading : {QStringList{"list"}, QStringList{"search", "gain"},
                                       QStringList{"tree", "kinetics"}, QStringList{"show", "kinetics/Continuous"}}) {
        SCOPED_TRACE(qPrintable(reading.join(' ')));
        const TdlbResult result = ok(reading);
        EXPECT_FALSE(result.out.isEmpty());
        EXPECT_TRUE(result.err.endsWith("tdlb " + reading.first() + ": " + note)) << qPrintable(result.err);
        EXPECT_EQ(result.err.count("??? **Error**"), 1) << qPrintable(result.err);
        EXPECT_TRUE(result.err.contains("wavecraft/tdblocks.json")) << qPrintable(result.err);
    }
}

} // namespace
} // namespace LibraryBrowser::Testing
