#include "repository/xmlrepository/TempDirectoryOwners.h"

#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/TempDirectories.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace LibraryBrowser {

namespace {

// The start time of a process in clock ticks since boot, or the empty
// string where it can't be read. With the id it names one process, also
// after the id has been given to another.
QString startTimeOf(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return QString();
    const QString text = QString::fromLatin1(stat.readAll());
    // The command name in parentheses may hold blanks; fields count after it.
    const QStringList fields = text.mid(text.lastIndexOf(QLatin1Char(')')) + 2).split(QLatin1Char(' '));
    constexpr int startTimeField = 22 - 3;
    return fields.size() > startTimeField ? fields[startTimeField] : QString();
}

// Seconds after which a directory of our names without an owner file counts
// as left over.
constexpr qint64 UnownedAge = 600;

bool processExists(qint64 pid)
{
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

} // namespace

void TempDirectoryOwners::mark(const QString& directory)
{
    // One line for every directory of the process: an update makes one for
    // each product it reads, and reading the start time again for each was
    // a tenth of its system calls.
    static const QByteArray line = [] {
        const qint64 pid = QCoreApplication::applicationPid();
        return QStringLiteral("%1 %2\n").arg(pid).arg(startTimeOf(pid)).toLatin1();
    }();
    QFile owner(directory + QLatin1Char('/') + QLatin1String(OwnerFileName));
    if (owner.open(QIODevice::WriteOnly))
        owner.write(line);
}

bool TempDirectoryOwners::ownerIsRunning(const QString& ownerText)
{
    const QStringList fields = ownerText.trimmed().split(QLatin1Char(' '));
    bool ok = false;
    const qint64 pid = fields.value(0).toLongLong(&ok);
    if (!ok || pid <= 0)
        return true;
    if (pid == QCoreApplication::applicationPid())
        return true;
    if (!processExists(pid))
        return false;
    const QString recorded = fields.value(1);
    const QString now = startTimeOf(pid);
    return recorded.isEmpty() || now.isEmpty() || recorded == now;
}

void TempDirectoryOwners::removeLeftOversOnce(RepositoryReport& report)
{
    static bool done = false;
    if (done)
        return;
    done = true;
    removeLeftOvers(report);
}

void TempDirectoryOwners::removeLeftOvers(RepositoryReport& report)
{
    static const QRegularExpression ours(QStringLiteral("^LB(writer|Cache|Top)[0-9]+[0-9a-f]{32}$"));
    const QDir base(privateTempBase());
    for (const QString& name : base.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden)) {
        if (!ours.match(name).hasMatch())
            continue;
        const QString path = base.filePath(name);
        const QFileInfo info(path);
        QFile owner(path + QLatin1Char('/') + QLatin1String(OwnerFileName));
        // An owner file that names no process is one whose process ended
        // between making it and writing it: no better than none.
        const QString text = owner.open(QIODevice::ReadOnly) ? QString::fromLatin1(owner.readAll()).trimmed()
                                                            : QString();
        owner.close();
        if (!text.isEmpty()) {
            if (ownerIsRunning(text))
                continue;
        } else if (info.lastModified().secsTo(QDateTime::currentDateTime()) < UnownedAge) {
            // Without an owner the directory may be one another process is
            // making this moment; one that has stayed so for long lost its
            // process between making it and marking it.
            continue;
        }
        // Another user's directory, or one that can't be taken away, is
        // left as it is: it is no fault of this run.
        if (info.ownerId() != uint(::getuid()) || !QFileInfo(base.absolutePath()).isWritable()) {
            report.log("Leaving the temporary directory " + path.toStdString() + " of an ended process to its owner");
            continue;
        }
        if (!QDir(path).removeRecursively())
            report.log("Unable to remove the temporary directory " + path.toStdString()
                       + " of an ended process; leaving it");
    }
}

} // namespace LibraryBrowser
