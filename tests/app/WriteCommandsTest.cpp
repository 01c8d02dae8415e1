// The commands that change the store on a copy of the example root:
// generation and its modes, its progress on a terminal, destruction, a fault
// in the store reported with exit code 1, edits within the second of the
// record, and names the manifest's lists can't carry.

#include "TdlbProcess.h"

#include "support/Files.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <tuple>

namespace LibraryBrowser::Testing {
namespace {

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

// A library whose recorded date is not older than the generation that
// recorded it is compared by content as well: an edit within that same
// second keeps the date, and must not leave the product up to date for good.
// A file recorded with an older date keeps the plain date rule.

using TdlbRacyTimestampTest = UpdatedTdlbTest;

TEST_F(TdlbRacyTimestampTest, AnEditInTheSecondOfTheRecordIsSeenAndAnOlderRecordKeepsTheDateRule)
{
    const std::string library = (tdlb.root() + "/toolbox/wavecraft/wavecraft.tdlib.json").toStdString();
    // Gives Sine Wave's description the word, the file the same size and the date;
    // then, after an update if asked, whether wavecraft is up to date and, if so, the description shown.
    const auto edit = [&](const QByteArray& word, const QDateTime& date, bool update) {
        QByteArray bytes = readFile(library);
        const int at = bytes.indexOf("Produces a ");
        writeFile(library, bytes.replace(at + 11, word.size(), word));
        setModified(library, date);
        if (update)
            ok({"update"});
        if (!tdlb.run({"list", "--json"}).jsonEntry("products", "wavecraft")["upToDate"].toBool())
            return QString("out of date");
        return "up to date: " + tdlb.run({"show", "--json", "wavecraft/Sources/Sine Wave"})
                                    .json()["description"].toString().left(19);
    };
    // Not older than the generation's start: from the future, not to race the clock.
    const QDateTime racy = QDateTime::currentDateTime().addSecs(300);
    EXPECT_EQ(edit("Sinusoid", racy, true), "up to date: Produces a Sinusoid");
    // Same size, same date, other content.
    EXPECT_EQ(edit("SINUSOID", racy, false), "out of date");
    EXPECT_EQ(edit("SINUSOID", racy, true), "up to date: Produces a SINUSOID");
    // Recorded older than its generation: the date is trusted, the content not read.
    const QDateTime old = QDateTime::currentDateTime().addSecs(-3600);
    EXPECT_EQ(edit("sinusoiD", old, true), "up to date: Produces a sinusoiD");
    EXPECT_EQ(edit("sinusoID", old, false), "up to date: Produces a sinusoiD");
}

// Names the manifest's list forms can't carry must cost no product: a root in
// which one product depends on "notes, v2.txt" and "a|b" is updated, listed
// and updated again like any other.

TEST(TdlbOddNamesTest, DependenciesWithACommaOrABarLoseNoProduct)
{
    TdlbProcess tdlb;
    const std::string directory = (tdlb.root() + "/toolbox/kinetics/").toStdString();
    writeFile(directory + "notes, v2.txt", "release notes");
    writeFile(directory + "a|b", "odd");
    writeFile(directory + "tdblocks.json", readFile(directory + "tdblocks.json").replace(
        "\"kinetics.tdlib.json\"", "\"kinetics.tdlib.json\", \"notes, v2.txt\", \"a|b\""));
    // The one warning names the refused name's place; the comma is kept.
    const TdlbResult update = tdlb.run({"update"});
    EXPECT_TRUE(update.exitCode == 0 && update.out.contains("Updated: 6 products, 1 warnings") &&
                update.out.contains("tdblocks.json:13:") && update.out.contains("entries[0].dependencies[2]") &&
                !update.out.contains("notes"))
        << qPrintable(update.out + update.err);
    const auto before = snapshot(tdlb.preferences().toStdString());
    expectRuns(tdlb.withRoot({}), {{{"update"}, 0, {update.out}},
                                   {{"search", "Integrator"}, 0, {"kinetics/Continuous/Integrator"}}});
    EXPECT_TRUE(snapshot(tdlb.preferences().toStdString()) == before) << "kinetics was up to date: nothing changes";
}

} // namespace
} // namespace LibraryBrowser::Testing
