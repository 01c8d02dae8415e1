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
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

namespace {

// By stat: QFileInfo's dates go through the time zone, a read of the zone
// file each time, and a store of a thousand products asks for thousands.
bool statFile(const std::string& path, struct stat& status)
{
    return FileStateScope::stat(path, status);
}

thread_local FileStateScope* activeScope = nullptr;

} // namespace

FileStateScope::FileStateScope()
{
    if (!activeScope) {
        activeScope = this;
        m_active = true;
    }
}

FileStateScope::~FileStateScope()
{
    if (m_active)
        activeScope = nullptr;
}

bool FileStateScope::stat(const std::string& path, struct stat& status)
{
    FileStateScope* scope = activeScope;
    if (scope) {
        for (const auto& [known, state] : scope->m_found)
            if (known == path) {
                status = state;
                return true;
            }
    }
    if (::stat(path.c_str(), &status) != 0)
        return false;
    if (scope)
        scope->m_found.emplace_back(path, status);
    return true;
}

std::uint64_t fileDate(const std::string& path)
{
    struct stat status;
    if (!statFile(path, status))
        return 0;
    return std::uint64_t(std::int64_t(status.st_mtim.tv_sec));
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
    struct stat status;
    if (statFile(path, status))
        return true;
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

bool regularFileInfo(const std::string& fileSpec, FileInfo& info)
{
    const std::string path = absolutePath(Platform::environment().root(), fileSpec);
    info = FileInfo();
    info.fileSpec = fileSpec;
    struct stat status;
    if (!statFile(path, status) || !S_ISREG(status.st_mode))
        return false;
    info.date = std::uint64_t(std::int64_t(status.st_mtim.tv_sec));
    info.size = std::uint64_t(status.st_size);
    return true;
}

FileInfo fileInfoOf(RepositoryReport& report, const std::string& fileSpec)
{
    FileInfo info;
    if (!regularFileInfo(fileSpec, info))
        report.logError("Querying the date and size of an invalid file: "
                        + absolutePath(Platform::environment().root(), fileSpec));
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

namespace {

// Writes the source into a new file beside the destination and renames it
// over the destination: another process sees the old file or the new one,
// never a part, and a process killed midway leaves the old one. Empty on
// success, else the system's reason.
QString replaceByCopy(const std::string& source, const std::string& destination)
{
    QFile in(qs(source));
    if (!in.open(QIODevice::ReadOnly))
        return in.errorString();
    if (FileFaults::failNow(FileFaults::Copy, destination))
        return QString::fromLatin1(FileFaults::message());
    QSaveFile out(qs(destination));
    // Only the directory's permission decides, as for the removal and copy
    // this replaces: a read-only file in a writable directory is replaced.
    out.setDirectWriteFallback(false);
    const QFileInfo existing(qs(destination));
    if (existing.exists() && !existing.isWritable())
        QFile::setPermissions(qs(destination), QFile::permissions(qs(destination)) | QFileDevice::WriteOwner);
    if (!out.open(QIODevice::WriteOnly))
        return out.errorString();
    const qint64 chunk = std::clamp<qint64>(in.size(), 1, ChecksumChunkSize);
    for (;;) {
        const QByteArray bytes = in.read(chunk);
        if (bytes.isEmpty())
            break;
        if (out.write(bytes) != bytes.size()) {
            const QString reason = out.errorString();
            out.cancelWriting();
            return reason;
        }
    }
    if (in.error() != QFileDevice::NoError) {
        out.cancelWriting();
        return in.errorString();
    }
    if (FileFaults::failNow(FileFaults::Rename, destination)) {
        out.cancelWriting();
        return QString::fromLatin1(FileFaults::message());
    }
    if (!out.commit())
        return out.errorString();
    return QString();
}

// Why the destination can't be replaced, or empty if it can (or isn't there).
QString replacementProblem(const std::string& destination)
{
    const QFileInfo target(qs(destination));
    if (!target.exists() && !target.isSymLink())
        return QString();
    if (FileFaults::failNow(FileFaults::Remove, destination))
        return QString::fromLatin1(FileFaults::message());
    if (target.isDir())
        return QStringLiteral("it is a directory");
    if (!QFileInfo(target.absolutePath()).isWritable())
        return QStringLiteral("Permission denied");
    return QString();
}

} // namespace

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
    // On the build account another process may hold the destination for a moment.
    const int attempts = isAutomatedBuildUser() ? RetryCount : 1;
    QString reason;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt > 0)
            pause(RetryPause);
        reason = replacementProblem(destination);
        if (!reason.isEmpty()) {
            if (attempt + 1 < attempts)
                continue;
            report.logError("Unable to remove " + destination + ": " + reason.toStdString());
            return false;
        }
        reason = replaceByCopy(source, destination);
        if (reason.isEmpty())
            return true;
    }
    report.logError("Unable to copy " + source + " to " + destination + ": " + reason.toStdString());
    return false;
}

FileStamp fileStamp(const std::string& path)
{
    struct stat status {};
    if (::stat(QFile::encodeName(qs(path)).constData(), &status) != 0)
        return FileStamp();
    return FileStamp{true, std::uint64_t(status.st_ino), std::uint64_t(status.st_size),
                     std::int64_t(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec};
}

FileStamp fileStamp(const QFile& file)
{
    struct stat status {};
    if (file.handle() < 0 || ::fstat(file.handle(), &status) != 0)
        return FileStamp();
    return FileStamp{true, std::uint64_t(status.st_ino), std::uint64_t(status.st_size),
                     std::int64_t(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec};
}

bool holdsBytes(const std::string& path, const QByteArray& bytes)
{
    QFile file(qs(path));
    // The size first: a file that differs mostly differs in length too.
    if (file.size() != bytes.size() || !file.open(QIODevice::ReadOnly))
        return false;
    return file.readAll() == bytes;
}

bool readFileBytes(const std::string& path, QByteArray& bytes)
{
    return readFileBytes(AT_FDCWD, path, bytes);
}

bool readFileBytes(int directory, const std::string& name, QByteArray& bytes)
{
    bytes.clear();
    const int descriptor = ::openat(directory, name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status;
    bool ok = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    if (ok) {
        // One more byte than the size: a file that grew meanwhile is read to its end.
        bytes.resize(qsizetype(status.st_size) + 1);
        qsizetype filled = 0;
        for (;;) {
            if (filled == bytes.size())
                bytes.resize(bytes.size() * 2);
            const ssize_t count = ::read(descriptor, bytes.data() + filled, std::size_t(bytes.size() - filled));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0) {
                ok = count == 0;
                break;
            }
            filled += count;
        }
        bytes.resize(ok ? filled : 0);
    }
    ::close(descriptor);
    return ok;
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
