#include "repository/xmlrepository/TempDirectories.h"

#include "platform/FileFaults.h"
#include "platform/HostInterpreter.h"
#include "platform/Platform.h"
#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/TempDirectoryOwners.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStorageInfo>
#include <QUuid>

namespace LibraryBrowser {

namespace {

// Sanitised name -> directory name; entries are never removed.
QHash<QString, QString>& tempDirectoryNames()
{
    static QHash<QString, QString> names;
    return names;
}

// Below this much free space a memory file system is passed over: a large
// generation holds a file per block there until it ends.
constexpr qint64 MemoryBaseMinimumFree = qint64(1) << 30;
constexpr qint64 CopyChunkSize = 1 << 20;

// Looked for once per process.
const QString& memoryTempBase()
{
    static const QString base =
        memoryFileSystemBase({qEnvironmentVariable("XDG_RUNTIME_DIR"), QStringLiteral("/dev/shm")});
    return base;
}

} // namespace

QString memoryFileSystemBase(const QStringList& candidates)
{
    for (const QString& candidate : candidates) {
        const QFileInfo info(candidate);
        if (candidate.isEmpty() || !info.isDir() || !info.isWritable())
            continue;
        // A runtime directory is not always in memory: without a session,
        // programs make one below the disk's /tmp.
        const QStorageInfo storage(candidate);
        const QByteArray type = storage.fileSystemType();
        if (storage.isValid() && (type == "tmpfs" || type == "ramfs")
            && storage.bytesAvailable() >= MemoryBaseMinimumFree)
            return info.absoluteFilePath();
    }
    return QString();
}

QString privateTempBase()
{
    if (qEnvironmentVariableIsSet("TMPDIR") || memoryTempBase().isEmpty())
        return QDir::tempPath();
    return memoryTempBase();
}

std::string namedTempDirectory(RepositoryReport& report, const std::string& name, bool create)
{
    const QString base = privateTempBase();
    if (!QFileInfo(base).isDir()) {
        report.logError("Unable to find the operating system temporary directory");
        return std::string();
    }
    const QString key = QString::fromStdString(sanitizeName(name));
    auto entry = tempDirectoryNames().find(key);
    if (entry == tempDirectoryNames().end()) {
        QString unique = QUuid::createUuid().toString();
        unique.remove(QLatin1Char('}')).remove(QLatin1Char('{')).remove(QLatin1Char('-'));
        entry = tempDirectoryNames().insert(key, key + unique);
    }
    const QString path = QDir(base).absolutePath() + QLatin1Char('/') + entry.value();
    if (create && !QFileInfo::exists(path)) {
        if (FileFaults::failNow(FileFaults::Create, path.toStdString()) || !QDir().mkpath(path)) {
            report.logError("Unable to create a temporary directory");
            return std::string();
        }
        TempDirectoryOwners::mark(path);
    }
    return path.toStdString();
}

std::string tempDirectory(RepositoryReport& report, int number)
{
    return namedTempDirectory(report, "LBwriter" + std::to_string(number), true);
}

std::string cacheTempDirectory(RepositoryReport& report, int number)
{
    return namedTempDirectory(report, "LBCache" + std::to_string(number), true);
}

std::string topLevelTempDirectory(RepositoryReport& report, int number)
{
    return namedTempDirectory(report, "LBTop" + std::to_string(number), true);
}

void removeTempDirectory(RepositoryReport& report, int number)
{
    removeNamedTempDirectory(report, "LBwriter" + std::to_string(number));
}

bool copyToPrivateFile(const std::string& source, const std::string& destination)
{
    QFile in(QString::fromStdString(source));
    QFile out(QString::fromStdString(destination));
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        out.remove();
        return false;
    }
    QByteArray chunk;
    bool copied = true;
    while (copied && !(chunk = in.read(CopyChunkSize)).isEmpty())
        copied = out.write(chunk) == chunk.size();
    copied = copied && in.error() == QFileDevice::NoError && out.flush();
    out.close();
    if (!copied)
        out.remove();
    return copied;
}

void removeNamedTempDirectory(RepositoryReport& report, const std::string& name)
{
    removeDirectory(report, namedTempDirectory(report, name, false));
}

void removeDirectory(RepositoryReport& report, const std::string& path)
{
    if (path.empty() || !QFileInfo::exists(QString::fromStdString(path)))
        return;
    report.log("Removing temporary directory " + path);
    const HostInterpreter::CallResult result = Platform::interpreter().callWithTrap(
        "tdprivate", 3, {HostValue::string("rmdir"), HostValue::string(path), HostValue::string("s")});
    if (!result.ok) {
        report.logError("Failed to call 'rmdir' on the temporary directory " + path);
        return;
    }
    const bool removed = !result.outputs.empty() && result.outputs[0].scalar() != 0;
    if (!removed) {
        report.logError("Unable to remove temporary directory. The following error occurred:");
        report.logError(result.outputs.size() > 1 ? result.outputs[1].toString() : std::string());
    }
}

} // namespace LibraryBrowser
