#include "TdlbProcess.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>
#include <QProcessEnvironment>

namespace LibraryBrowser::Testing {

namespace {

bool copyTree(const QString& from, const QString& to)
{
    QDirIterator it(from, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = to + "/" + QDir(from).relativeFilePath(source);
        if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(source, target))
            return false;
    }
    return true;
}

} // namespace

QJsonObject TdlbResult::json() const
{
    return QJsonDocument::fromJson(out.toUtf8()).object();
}

TdlbProcess::TdlbProcess()
{
    m_ready = m_root.isValid() && m_prefs.isValid() && copyTree(TDLB_EXAMPLE_ROOT, m_root.path());
}

TdlbResult TdlbProcess::run(const QStringList& arguments) const
{
    return runRaw(QStringList{"--root", root(), "--prefdir", preferences()} + arguments);
}

TdlbResult TdlbProcess::runRaw(const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"NUMORA_ROOT", "NUMORA_PREFDIR", "NUMORA_PATH"})
        environment.remove(name);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    process.setProcessEnvironment(environment);
    process.start(TDLB_EXECUTABLE, arguments);
    TdlbResult result;
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        result.crashed = true;
        return result;
    }
    result.crashed = process.exitStatus() != QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

} // namespace LibraryBrowser::Testing
