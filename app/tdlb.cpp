// tdlb: the library browser's repository on the command line.

#include "commands/CommandLine.h"

#include <QApplication>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Commands that open a window; with --screenshot they render it offscreen,
// and asked for help they only print it.
bool opensWindow(int argc, char* argv[])
{
    bool window = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--screenshot") == 0 || std::strncmp(argv[i], "--screenshot=", 13) == 0
            || std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0)
            return false;
        if (std::strcmp(argv[i], "page") == 0 || std::strcmp(argv[i], "browse") == 0)
            window = true;
    }
    return window;
}

// A desktop session names a private runtime directory; a terminal or a build
// machine often doesn't, and the toolkit would say so on every run.
void ensureRuntimeDirectory()
{
    if (qEnvironmentVariableIsSet("XDG_RUNTIME_DIR"))
        return;
    const QByteArray directory = QByteArray("/tmp/runtime-") + QByteArray::number(getuid());
    if (mkdir(directory.constData(), 0700) == 0 || errno == EEXIST) {
        struct stat status;
        if (stat(directory.constData(), &status) == 0 && status.st_uid == getuid() && (status.st_mode & 077) == 0)
            qputenv("XDG_RUNTIME_DIR", directory);
    }
}

// The offscreen platform that renders screenshots says on every window that
// it can't raise it or pass size hints on: true, and of no interest here.
QtMessageHandler previousHandler = nullptr;

void quietOffscreenNotices(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message.startsWith(QLatin1String("This plugin does not support")))
        return;
    if (previousHandler)
        previousHandler(type, context, message);
    else
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

bool hasDisplay() { return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY"); }

} // namespace

int main(int argc, char* argv[])
{
    const bool window = opensWindow(argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        if (window && !hasDisplay()) {
            std::fputs("tdlb: there is no display to open a window on. Run it in a desktop session or under "
                       "'xvfb-run -a', or give --screenshot FILE to render the window to a PNG.\n",
                       stderr);
            return 2;
        }
        // Icons are rendered without a display: a terminal or a build machine
        // has none.
        if (!window)
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    ensureRuntimeDirectory();
    // Without TZ the C library reads the zone file again at each local time
    // it works out, and the archives' entry dates are worked out one by one:
    // a generation of a thousand products stats it millions of times. The
    // same zone, named once.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
    previousHandler = qInstallMessageHandler(quietOffscreenNotices);
    LibraryBrowser::Tdlb::CommandLine commandLine;
    // As the application would give them.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    // Once the application is made.
    const auto run = [&commandLine] {
        QCoreApplication::setApplicationName("tdlb");
        return commandLine.run(QCoreApplication::arguments());
    };
    if (!commandLine.usesWindowSystem(arguments)) {
        QCoreApplication application(argc, argv);
        return run();
    }
    QApplication application(argc, argv);
    return run();
}
