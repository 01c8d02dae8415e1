#pragma once

#include "support/Files.h"

#include <QJsonArray>
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
    QJsonObject jsonEntry(const QString& array, const QString& path) const
    {
        for (const QJsonValue& entry : json()[array].toArray())
            if (entry["path"].toString() == path)
                return entry.toObject();
        return QJsonObject();
    }
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
    TdlbProcess()
    {
        for (const auto& [file, bytes] : snapshot(TDLB_EXAMPLE_ROOT))
            writeFile((root() + "/" + file).toStdString(), bytes);
    }

    QString root() const { return m_root.path(); }
    QString preferences() const { return m_prefs.path(); }

    // --root ROOT --prefdir PREFS arguments...
    QStringList withRoot(const QStringList& arguments) const
    {
        return QStringList{"--root", root(), "--prefdir", preferences()} + arguments;
    }
    TdlbResult run(const QStringList& arguments) const { return runRaw(withRoot(arguments)); }
    // The caller's environment without the host's own variables, so that
    // only the arguments choose root and preferences.
    static QProcessEnvironment environment()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"NUMORA_ROOT", "NUMORA_PREFDIR", "NUMORA_PATH"})
            environment.remove(name);
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        return environment;
    }
    // tdlb with exactly these arguments.
    static TdlbResult runRaw(const QStringList& arguments, const QProcessEnvironment& variables = environment())
    {
        return finish(*start(arguments, variables));
    }
    // tdlb started with these arguments, and its end awaited.
    static std::unique_ptr<QProcess> start(const QStringList& arguments,
                                           const QProcessEnvironment& variables = environment())
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(variables);
        process->start(TDLB_EXECUTABLE, arguments);
        return process;
    }
    static TdlbResult finish(QProcess& process)
    {
        if (!process.waitForFinished(TDLB_PROCESS_WAIT_MS)) {
            process.kill();
            process.waitForFinished();
            return TdlbResult{-1, true, {}, {}};
        }
        return TdlbResult{process.exitCode(), process.exitStatus() != QProcess::NormalExit,
                          QString::fromUtf8(process.readAllStandardOutput()),
                          QString::fromUtf8(process.readAllStandardError())};
    }

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
};

// Runs tdlb with where + each row's arguments and checks each against its row.
inline void expectRuns(const QStringList& where, const std::vector<ExpectedRun>& runs,
                       const QProcessEnvironment& environment = TdlbProcess::environment())
{
    for (const ExpectedRun& run : runs) {
        const TdlbResult result = TdlbProcess::runRaw(where + run.arguments, environment);
        SCOPED_TRACE(qPrintable(run.arguments.join(' ') + "\nout: " + result.out + "\nerr: " + result.err));
        EXPECT_FALSE(result.crashed);
        EXPECT_EQ(result.exitCode, run.exitCode);
        for (const QString& text : run.out)
            EXPECT_TRUE(result.out.contains(text)) << qPrintable(text);
        for (const QString& text : run.err)
            EXPECT_TRUE(result.err.contains(text)) << qPrintable(text);
        EXPECT_TRUE(run.exitCode == 0 || !run.out.isEmpty() || result.out.isEmpty());
    }
}

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
