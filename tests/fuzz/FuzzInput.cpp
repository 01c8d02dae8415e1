#include "FuzzInput.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace LibraryBrowser::Fuzz {

namespace {
// Qt's warnings about odd file names and the like are expected on hostile
// input; printed once per run they would cost more than the run itself.
void quiet(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
        std::abort();
    }
}
const bool installed = (qInstallMessageHandler(quiet), true);
} // namespace

QString scratchDirectory()
{
    // QTemporaryDir appends its own unique part to the name.
    static QTemporaryDir directory(QDir::tempPath() + QStringLiteral("/tdlb-fuzz-"));
    if (!directory.isValid()) {
        std::fprintf(stderr, "cannot make a scratch directory: %s\n", qPrintable(directory.errorString()));
        std::abort();
    }
    return directory.path();
}

QString writeScratchFile(const QString& name, const uint8_t* data, std::size_t size)
{
    const QString path = scratchDirectory() + QLatin1Char('/') + name;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || file.write(reinterpret_cast<const char*>(data), qint64(size)) != qint64(size)) {
        std::fprintf(stderr, "cannot write %s: %s\n", qPrintable(path), qPrintable(file.errorString()));
        std::abort();
    }
    return path;
}

} // namespace LibraryBrowser::Fuzz
