#include "TdlbProcess.h"

#include "support/Files.h"

#include <QJsonArray>

namespace LibraryBrowser::Testing {

QJsonObject TdlbResult::jsonEntry(const QString& array, const QString& path) const
{
    for (const QJsonValue& entry : json()[array].toArray())
        if (entry["path"].toString() == path)
            return entry.toObject();
    return QJsonObject();
}

void expectRuns(const QStringList& where, const std::vector<ExpectedRun>& runs, const QProcessEnvironment& environment)
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

TdlbProcess::TdlbProcess()
{
    for (const auto& [file, bytes] : snapshot(TDLB_EXAMPLE_ROOT))
        writeFile((root() + "/" + file).toStdString(), bytes);
}

QStringList TdlbProcess::withRoot(const QStringList& arguments) const
{
    return QStringList{"--root", root(), "--prefdir", preferences()} + arguments;
}

QProcessEnvironment TdlbProcess::environment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"NUMORA_ROOT", "NUMORA_PREFDIR", "NUMORA_PATH"})
        environment.remove(name);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    return environment;
}

std::unique_ptr<QProcess> TdlbProcess::start(const QStringList& arguments, const QProcessEnvironment& variables)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(variables);
    process->start(TDLB_EXECUTABLE, arguments);
    return process;
}

TdlbResult TdlbProcess::finish(QProcess& process)
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

} // namespace LibraryBrowser::Testing
