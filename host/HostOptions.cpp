#include "HostOptions.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace LibraryBrowser::Host {

namespace {
QStringList splitPath(const QString& text)
{
    QStringList directories;
    for (const QString& part : text.split(QLatin1Char(':'), Qt::SkipEmptyParts))
        directories << QDir::cleanPath(QDir(part).absolutePath());
    return directories;
}
} // namespace

QString HostOptions::bundledRoot()
{
    return QStringLiteral(TD_HOST_BUNDLED_ROOT);
}

QString HostOptions::defaultRoot()
{
    return QDir::cleanPath(QStringLiteral(TD_HOST_DEFAULT_ROOT));
}

HostOptions HostOptions::fromEnvironment(const QProcessEnvironment& environment)
{
    HostOptions options;
    options.root = environment.value(QStringLiteral("NUMORA_ROOT"));
    if (options.root.isEmpty())
        options.root = defaultRoot();
    options.preferencesDirectory = environment.value(QStringLiteral("NUMORA_PREFDIR"));
    if (options.preferencesDirectory.isEmpty())
        options.preferencesDirectory =
            QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/tandril");
    options.path = splitPath(environment.value(QStringLiteral("NUMORA_PATH")));
    options.root = QDir::cleanPath(QDir(options.root).absolutePath());
    options.preferencesDirectory = QDir::cleanPath(QDir(options.preferencesDirectory).absolutePath());
    return options;
}

bool HostOptions::resolve(const QStringList& arguments, const QProcessEnvironment& environment, HostOptions& out,
                          QStringList& remaining, QString& error)
{
    HostOptions options = fromEnvironment(environment);
    remaining.clear();
    for (int i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("--verbose")) {
            options.verbose = true;
            continue;
        }
        QString flag;
        QString value;
        bool isFlag = false;
        for (const char* name : {"--root", "--prefdir", "--path"}) {
            const QString candidate = QLatin1String(name);
            if (argument == candidate) {
                if (i + 1 >= arguments.size()) {
                    error = QStringLiteral("%1 needs a value").arg(candidate);
                    return false;
                }
                flag = candidate;
                value = arguments[++i];
                isFlag = true;
            } else if (argument.startsWith(candidate + QLatin1Char('='))) {
                flag = candidate;
                value = argument.mid(candidate.size() + 1);
                isFlag = true;
            }
        }
        if (!isFlag) {
            remaining << argument;
            continue;
        }
        if (value.isEmpty()) {
            error = QStringLiteral("%1 needs a value").arg(flag);
            return false;
        }
        if (flag == QLatin1String("--root"))
            options.root = QDir::cleanPath(QDir(value).absolutePath());
        else if (flag == QLatin1String("--prefdir"))
            options.preferencesDirectory = QDir::cleanPath(QDir(value).absolutePath());
        else
            options.path = splitPath(value);
    }
    if (options.root == defaultRoot() && !QFileInfo::exists(options.root)) {
        error = QStringLiteral("no root given, and the default root %1 does not exist: build the target "
                               "shipped_store, or name a root with --root DIR")
                    .arg(options.root);
        return false;
    }
    out = options;
    return true;
}

} // namespace LibraryBrowser::Host
