#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace LibraryBrowser::Testing {

// What one run of the built tdlb left behind.
struct TdlbResult {
    int exitCode = -1;
    bool crashed = false;
    QString out;
    QString err;
    // Standard output as one JSON object; empty if it is none.
    QJsonObject json() const { return QJsonDocument::fromJson(out.toUtf8()).object(); }
    // The object of that array of json() whose "path" is given; empty if none.
    QJsonObject jsonEntry(const QString& array, const QString& path) const;
};

// One run of a table: its exit code, and texts its standard output and
// standard error must contain. A run that fails prints nothing on standard
// output unless out names what.
struct ExpectedRun {
    QStringList arguments;
    int exitCode = 0;
    QStringList out = {};
    QStringList err = {};
};

// The built tdlb on a private copy of the example root, with a preferences
// directory of its own, run as a separate process.
class TdlbProcess {
public:
    TdlbProcess();

    QString root() const { return m_root.path(); }
    QString preferences() const { return m_prefs.path(); }

    // --root ROOT --prefdir PREFS arguments...
    QStringList withRoot(const QStringList& arguments) const;
    TdlbResult run(const QStringList& arguments) const { return runRaw(withRoot(arguments)); }
    // The caller's environment without the host's own variables, so that
    // only the arguments choose root and preferences.
    static QProcessEnvironment environment();
    // tdlb with exactly these arguments.
    static TdlbResult runRaw(const QStringList& arguments, const QProcessEnvironment& variables = environment())
    {
        return finish(*start(arguments, variables));
    }
    // tdlb started with these arguments, and its end awaited.
    static std::unique_ptr<QProcess> start(const QStringList& arguments,
                                           const QProcessEnvironment& variables = environment());
    static TdlbResult finish(QProcess& process);

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
};

// Runs tdlb with where + each row's arguments and checks each against its row.
void expectRuns(const QStringList& where, const std::vector<ExpectedRun>& runs,
                const QProcessEnvironment& environment = TdlbProcess::environment());

// A test on a root copy of its own, updated first, as a user starts.
class UpdatedTdlbTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        update = tdlb.run({"update"});
        ASSERT_EQ(update.exitCode, 0) << qPrintable(update.err);
    }

    // A run that must succeed.
    TdlbResult ok(const QStringList& arguments) const
    {
        const TdlbResult result = tdlb.run(arguments);
        EXPECT_EQ(result.exitCode, 0) << qPrintable(arguments.join(' ')) << "\n" << qPrintable(result.err);
        return result;
    }

    TdlbProcess tdlb;
    TdlbResult update;
};

} // namespace LibraryBrowser::Testing
