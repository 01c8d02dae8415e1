#include "repository/xmlrepository/RepositoryFiles.h"

#include "model/Model.h"
#include "model/Serializer.h"
#include "platform/ErrorHolder.h"
#include "platform/FileFaults.h"
#include "platform/HostEnvironment.h"
#include "platform/Platform.h"
#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/RepositoryPaths.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <vector>

namespace LibraryBrowser {

namespace {

const int RetryCount = 50;
const int RetryPause = 30;
const qint64 ChecksumChunkSize = 1 << 20;

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

std::uint64_t fileDate(const std::string& path)
{
    const QFileInfo info(qs(path));
    if (!info.exists())
        return 0;
    return std::uint64_t(info.lastModified().toSecsSinceEpoch());
}

bool isAutomatedBuildUser()
{
    static const bool automated = [] {
        const QString account = QStringLiteral("kilnserve");
        return qEnvironmentVariable("USER") == account || qEnvironmentVariable("USERNAME") == account;
    }();
    return automated;
}

void pause(int count)
{
    QThread::msleep(static_cast<unsigned long>(count));
}

bool fileExists(const std::string& path)
{
    const QString file = qs(path);
    if (!isAutomatedBuildUser())
        return QFile::exists(file);
    for (int attempt = 0; attempt < RetryCount; ++attempt) {
        if (QFile::exists(file))
            return true;
        pause(RetryPause);
    }
    return false;
}

FileInfo fileInfoOf(RepositoryReport& report, const std::string& fileSpec)
{
    const std::string path = absolutePath(Platform::environment().root(), fileSpec);
    FileInfo info;
    info.fileSpec = fileSpec;
    const QFileInfo file(qs(path));
    if (file.exists() && file.isFile()) {
        info.date = std::uint64_t(file.lastModified().toSecsSinceEpoch());
        info.size = std::uint64_t(file.size());
    } else {
        report.logError("Querying the date and size of an invalid file: " + path);
    }
    return info;
}

std::string computeCheckSum(RepositoryReport& report, const std::string& path)
{
    QFile file(qs(path));
    if (!file.exists()) {
        report.logError("Unable to locate model file " + path + ". Skipping checksum");
        return std::string();
    }
    if (!file.open(QIODevice::ReadOnly)) {
        report.logError("Unable to read model file " + path + ". Skipping checksum");
        return std::string();
    }
    QCryptographicHash hash(QCryptographicHash::Md5);
    // No bigger than the file: a zero-filled megabyte for a small library
    // file cost more than hashing it.
    const qint64 chunk = std::clamp<qint64>(file.size(), 1, ChecksumChunkSize);
    std::vector<char> buffer(static_cast<std::size_t>(chunk));
    for (;;) {
        const qint64 count = file.read(buffer.data(), chunk);
        if (count < 0) {
            report.logError("Unable to read model file " + path + ". Skipping checksum");
            return std::string();
        }
        if (count == 0)
            break;
        hash.addData(QByteArrayView(buffer.data(), count));
    }
    std::string text;
    for (const char byte : hash.result())
        text += std::to_string(static_cast<unsigned char>(byte));
    report.log("Computed check sum for library " + path);
    return text;
}

bool copyFile(RepositoryReport& report, const std::string& source, const std::string& destination)
{
    if (!fileExists(source)) {
        report.logError("Unable to copy. Source file " + source + " does not exist");
        return false;
    }
    const QString target = qs(destination);
    const QDir directory = QFileInfo(target).absoluteDir();
    if (!directory.exists()
        && (FileFaults::failNow(FileFaults::Create, directory.absolutePath().toStdString())
            || (!QDir().mkpath(directory.absolutePath()) && !directory.exists()))) {
        report.logError("Unable to create directory " + directory.absolutePath().toStdString());
        return false;
    }
    if (isAutomatedBuildUser()) {
        // Another process may hold the destination for a moment.
        for (int attempt = 0; attempt < RetryCount; ++attempt) {
            if (QFile::exists(target) && !FileFaults::failNow(FileFaults::Remove, destination))
                QFile::remove(target);
            if (!FileFaults::failNow(FileFaults::Copy, destination) && QFile::copy(qs(source), target))
                return true;
            pause(RetryPause);
        }
    } else {
        if (QFile::exists(target)
            && (FileFaults::failNow(FileFaults::Remove, destination) || !QFile::remove(target))) {
            report.logError("Unable to remove " + destination);
            return false;
        }
        if (!FileFaults::failNow(FileFaults::Copy, destination) && QFile::copy(qs(source), target))
            return true;
    }
    report.logError("Unable to copy " + source + " to " + destination);
    return false;
}

bool holdsBytes(const std::string& path, const QByteArray& bytes)
{
    QFile file(qs(path));
    // The size first: a file that differs mostly differs in length too.
    if (file.size() != bytes.size() || !file.open(QIODevice::ReadOnly))
        return false;
    return file.readAll() == bytes;
}

void reportLoadWarnings(RepositoryReport& report, const ErrorHolder& errors)
{
    for (const std::string& warning : errors.warnings())
        report.logWarning(warning);
}

bool loadManifestFromBytes(RepositoryReport& report, Model& model, const QByteArray& bytes)
{
    if (bytes.isEmpty())
        return true;
    ErrorHolder errors;
    model.beginChangeSet();
    const bool loaded = Serializer::loadFromByteArray(model, bytes, errors);
    model.commitChangeSet();
    reportLoadWarnings(report, errors);
    if (!loaded || errors.hasError()) {
        report.logError("Unexpected error occurred while loading the manifest file");
        return false;
    }
    return true;
}

} // namespace LibraryBrowser
