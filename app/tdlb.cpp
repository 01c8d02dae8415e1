// tdlb: the library browser's repository on the command line.

#include "commands/CommandLine.h"

#include <QApplication>

#include <cstdio>
#include <cstring>

namespace {

// Commands that open a window; with --screenshot they render it offscreen.
bool opensWindow(int argc, char* argv[])
{
    bool window = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--screenshot") == 0 || std::strncmp(argv[i], "--screenshot=", 13) == 0)
            return false;
        if (std::strcmp(argv[i], "page") == 0)
            window = true;
    }
    return window;
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
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName("tdlb");
    return LibraryBrowser::Tdlb::CommandLine().run(application.arguments());
}
