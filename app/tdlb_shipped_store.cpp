// tdlb_shipped_store: generates the shipped repository store below a host
// root, as an installation ships it, so that a first run reads a store
// instead of generating every product on demand, and the window's
// tool-bar images where the host keeps them. With --update the store
// is brought up to date instead of made anew: only what changed is redone.

#include "EmbeddedHost.h"
#include "gui/BrowserToolBarIcons.h"
#include "gui/BrowserUtils.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/StoreLock.h"
#include "repository/xmlrepository/XMLRepositoryWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <cstdio>

using namespace LibraryBrowser;

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QStringList arguments = application.arguments();
    const bool update = arguments.removeAll("--update") > 0;
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: tdlb_shipped_store ROOT [--update]\n");
        return 2;
    }
    // The host's preferences stay out of the user's: nothing is read there.
    QTemporaryDir preferences;
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment());
    options.root = QDir::cleanPath(QDir(arguments.at(1)).absolutePath());
    options.preferencesDirectory = preferences.path();
    Host::EmbeddedHost host(options);
    host.install();

    const RepositoryReportPtr report = RepositoryReport::create();
    const std::string store = shippedRepositoryDirectory();
    {
        XMLRepositoryWriter writer(store, report);
        if (!update)
            writer.destroyRepository();
        writer.generateRepository();
    }
    // A shipped store is read only: its lock file, made by the writer, would
    // only be shipped along.
    QFile::remove(QString::fromStdString(store + "/" + StoreLock::FileName));
    // Errors inside a product are cleared when it is done: the log keeps them.
    int errors = 0;
    for (const std::string& line : report->getLog()) {
        if (line.rfind("??? **Error**", 0) == 0 || line.rfind("**Warning**", 0) == 0)
            std::fputs(line.c_str(), stderr);
        if (line.rfind("??? **Error**", 0) == 0)
            ++errors;
    }
    if (errors > 0 || report->hasError()) {
        std::fprintf(stderr, "tdlb_shipped_store: the store in %s is incomplete\n", store.c_str());
        return 1;
    }
    // The window's tool-bar images, where the host keeps them.
    if (!BrowserToolBarIcons::writeImages(BrowserUtils::getToolBarIconDir(true))) {
        std::fprintf(stderr, "tdlb_shipped_store: unable to write the tool-bar images below %s\n",
                     BrowserUtils::getToolBarIconDir(true).c_str());
        return 1;
    }
    std::printf("tdlb_shipped_store: generated %s\n", store.c_str());
    return 0;
}
