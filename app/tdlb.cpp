// tdlb: the library browser's repository on the command line.

#include "commands/CommandLine.h"

#include <QGuiApplication>

int main(int argc, char* argv[])
{
    // Icons are rendered without a display: a terminal or a build machine
    // has none.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QCoreApplication::setApplicationName("tdlb");
    return LibraryBrowser::Tdlb::CommandLine().run(application.arguments());
}
