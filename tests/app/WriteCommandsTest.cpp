// The commands that change the store, each on a copy of the example root of
// its own: generation and its modes, destruction, and faults in the store
// reported with exit code 1.

#include "TdlbProcess.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {
namespace {

class TdlbWriteTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(tdlb.isReady());
        const TdlbResult update = tdlb.run({"update"});
        ASSERT_EQ(update.exitCode, 0) << qPrintable(update.err);
    }

    // The archives of every store of the run, below root and preferences.
    QStringList archives(const QString& nameContains) const
    {
        QStringList found;
        for (const QString& directory : {tdlb.root(), tdlb.preferences()}) {
            QDirIterator it(directory, {"*.rps"}, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QString path = it.next();
                if (path.section('/', -1).contains(nameContains))
                    found.append(path);
            }
        }
        return found;
    }

    bool upToDate(const QString& path) const
    {
        for (const QJsonValue& product : tdlb.run({"list", "--json"}).json()["products"].toArray()) {
            if (product["path"].toString() == path)
                return product["upToDate"].toBool();
        }
        ADD_FAILURE() << "no product " << qPrintable(path);
        return false;
    }

    // Every `from` in a library file of the root copy becomes `to`, dated a
    // minute ahead: an edit in the second of the last generation would keep
    // its date, and a minimal generation trusts a date that matches.
    void editLibrary(const QString& relative, const QByteArray& from, const QByteArray& to) const
    {
        QFile library(tdlb.root() + "/toolbox/" + relative);
        ASSERT_TRUE(library.open(QIODevice::ReadOnly));
        QByteArray bytes = library.readAll();
        library.close();
        ASSERT_TRUE(bytes.contains(from));
        bytes.replace(from, to);
        ASSERT_TRUE(library.open(QIODevice::WriteOnly | QIODevice::Truncate));
        library.write(bytes);
        ASSERT_TRUE(library.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime));
    }

    TdlbProcess tdlb;
};

TEST_F(TdlbWriteTest, GenerateIsQuietOffATerminalAndVerboseEchoesTheReport)
{
    const TdlbResult quiet = tdlb.run({"generate", "--mode", "Regenerate"});
    ASSERT_EQ(quiet.exitCode, 0) << qPrintable(quiet.err);
    EXPECT_TRUE(quiet.out.isEmpty()) << qPrintable(quiet.out);

    editLibrary("kinetics/kinetics.tdlib.json", "\"Continuous\"", "\"Continuous Time\"");
    EXPECT_FALSE(upToDate("kinetics"));
    const TdlbResult verbose = tdlb.run({"--verbose", "generate", "kinetics"});
    ASSERT_EQ(verbose.exitCode, 0) << qPrintable(verbose.err);
    EXPECT_TRUE(verbose.out.isEmpty());
    EXPECT_TRUE(verbose.err.contains("Action: Processing product Kinetics")) << qPrintable(verbose.err);
    EXPECT_TRUE(verbose.err.contains("Generating manifest"));
    EXPECT_FALSE(verbose.err.contains("Processing product Switchyard")) << "one product only";
    EXPECT_TRUE(upToDate("kinetics"));
    EXPECT_EQ(tdlb.run({"show", "kinetics/Continuous Time"}).exitCode, 0);
}

TEST_F(TdlbWriteTest, GenerateAfterALibraryChangedRedoesIt)
{
    editLibrary("switchyard/switchyard.tdlib.json", "\"Routing\"", "\"Routes\"");

    const TdlbResult generate = tdlb.run({"generate", "Switchyard", "--mode", "IgnoreTimestamp"});
    ASSERT_EQ(generate.exitCode, 0) << qPrintable(generate.err);
    const TdlbResult show = tdlb.run({"show", "switchyard/Routes", "--json"});
    ASSERT_EQ(show.exitCode, 0) << qPrintable(show.err);
    EXPECT_EQ(show.json()["type"].toString(), "SubSystem");
    EXPECT_EQ(tdlb.run({"show", "switchyard/Routing"}).exitCode, 1);
}

TEST_F(TdlbWriteTest, GenerateAndDestroyRejectAnUnknownProduct)
{
    for (const char* command : {"generate", "destroy"}) {
        const TdlbResult result = tdlb.run({command, "nonesuch"});
        EXPECT_EQ(result.exitCode, 1) << command;
        EXPECT_TRUE(result.err.contains("no product 'nonesuch'")) << qPrintable(result.err);
    }
}

TEST_F(TdlbWriteTest, DestroyRemovesTheWritableData)
{
    ASSERT_EQ(tdlb.run({"generate", "--mode", "Regenerate"}).exitCode, 0);
    const TdlbResult one = tdlb.run({"destroy", "Kinetics"});
    ASSERT_EQ(one.exitCode, 0) << qPrintable(one.err);
    EXPECT_EQ(one.out, "Destroyed kinetics\n");

    const TdlbResult all = tdlb.run({"destroy"});
    ASSERT_EQ(all.exitCode, 0) << qPrintable(all.err);
    EXPECT_EQ(all.out, "Destroyed the repository\n");
    QDirIterator left(tdlb.preferences(), {"*.rps"}, QDir::Files, QDirIterator::Subdirectories);
    EXPECT_FALSE(left.hasNext()) << qPrintable(left.next());
    // The shipped store still answers.
    EXPECT_EQ(tdlb.run({"show", "kinetics/Continuous"}).exitCode, 0);
}

TEST_F(TdlbWriteTest, ACorruptArchiveIsReportedWithExitCodeOne)
{
    const QStringList damaged = archives("wavecraft_manifests");
    ASSERT_FALSE(damaged.isEmpty());
    for (const QString& path : damaged) {
        QFile archive(path);
        ASSERT_TRUE(archive.open(QIODevice::WriteOnly | QIODevice::Truncate));
        archive.write("this is not a zip archive");
    }
    const TdlbResult tree = tdlb.run({"tree", "wavecraft"});
    ASSERT_FALSE(tree.crashed);
    EXPECT_EQ(tree.exitCode, 1) << qPrintable(tree.out) << qPrintable(tree.err);
    EXPECT_TRUE(tree.err.contains("??? **Error**")) << qPrintable(tree.err);
}

} // namespace
} // namespace LibraryBrowser::Testing
