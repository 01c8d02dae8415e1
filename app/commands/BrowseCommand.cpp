#include "Commands.h"

#include "CommandContext.h"
#include "WindowStateLog.h"

#include "EmbeddedHost.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/PreferencesDialog.h"
#include "gui/StandaloneBrowser.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMainWindow>

namespace LibraryBrowser::Tdlb {

namespace {

void configure(QCommandLineParser& parser)
{
    parser.addOption({"select", "Open the tree at a library or subsystem (its display path).", "path"});
    parser.addOption({"search", "Search for a text once the window is up.", "text"});
    parser.addOption({"hide-section", "After --search, hide that library's section of the results.", "library"});
    parser.addOption({"layout", "list or grid: the page's layout for this run.", "layout"});
    parser.addOption({"icon-size", "compact, small, medium or large, for this run.", "size"});
    parser.addOption({"size", "The window's width and height in pixels, for this run.", "WxH"});
    parser.addOption({"screenshot", "Open the window offscreen, write it to a PNG file when the tree and the page "
                                    "are filled, and exit.",
                      "file"});
    parser.addOption({"state-log", "Write what the window shows to a file, one JSON line per change (for tests that "
                                   "drive the program from outside).",
                      "file"});
}

int run(const QCommandLineParser& parser, const QStringList&, CommandContext& context)
{
    const QStringList layouts{"list", "grid"};
    const QStringList sizes{"compact", "small", "medium", "large"};
    const QString layoutWord = parser.value("layout").toLower();
    if (parser.isSet("layout") && !layouts.contains(layoutWord))
        return context.usageError("--layout is list or grid, not '" + parser.value("layout") + "'");
    const QString sizeWord = parser.value("icon-size").toLower();
    if (parser.isSet("icon-size") && !sizes.contains(sizeWord))
        return context.usageError("--icon-size is compact, small, medium or large, not '" +
                                  parser.value("icon-size") + "'");
    QSize windowSize;
    if (parser.isSet("size")) {
        const QStringList parts = parser.value("size").split('x');
        windowSize = parts.size() == 2 ? QSize(parts[0].toInt(), parts[1].toInt()) : QSize();
        if (windowSize.width() < 200 || windowSize.height() < 200 || windowSize.width() > 8192 ||
            windowSize.height() > 8192)
            return context.usageError("--size needs WIDTHxHEIGHT from 200 to 8192 pixels, not '" +
                                      parser.value("size") + "'");
    }
    const bool screenshot = parser.isSet("screenshot");
    if (screenshot)
        BrowserUtils::setScreenDPIOverride(96);

    StandaloneBrowser* browser = StandaloneBrowser::getInstance();
    const LayoutType savedLayout = browser->getLayoutType();
    const IconSize savedIconSize = browser->getIconSize();
    const QSize savedSize = browser->window()->size();
    const LayoutType layout = layoutWord == "list" ? LayoutType::List : LayoutType::Grid;
    const IconSize iconSize = parser.isSet("icon-size") ? IconSize(sizes.indexOf(sizeWord)) : savedIconSize;
    if (parser.isSet("layout"))
        browser->setLayout(layout);
    if (parser.isSet("icon-size"))
        browser->setIconSize(iconSize);
    if (windowSize.isValid())
        browser->window()->resize(windowSize);
    // At a screen the host shows its model windows and dialogs, and its
    // preferences are the browser's.
    if (!screenshot) {
        context.host().showWindows();
        context.host().windowCommands().setPreferencesPage([browser] { PreferencesDialog::open(*browser); });
        // Typing on a model's drawing opens the quick insert there.
        context.host().modelWindows()->setTypingHandler(
            [browser](const std::string& system, const QPoint& global, const QString& text) {
                browser->openQuickInsert(system, global, text);
            });
    }
    browser->showBrowser();
    QApplication::processEvents();
    int status = Success;
    if (parser.isSet("select")) {
        const std::string path = parser.value("select").toStdString();
        browser->internalOpenSubsystemInTree(path);
        if (browser->getCurrentTreeNode() != path)
            status = context.fail("no library or subsystem '" + parser.value("select") + "' in the tree");
    }
    if (status == Success && parser.isSet("search")) {
        browser->searchForBlock(parser.value("search").toStdString());
        for (const QString& section : parser.values("hide-section"))
            if (!browser->hideResultsSectionByName(section.toStdString()))
                status = context.fail("no section '" + section + "' in the results");
    }
    WindowStateLog stateLog;
    if (status == Success && parser.isSet("state-log") && !stateLog.open(parser.value("state-log"), *browser))
        status = context.fail("unable to write " + parser.value("state-log"));
    if (status == Success && !screenshot) {
        // The program ends when the user has closed the browser and no other
        // window of it is open; the last of those closed ends it too.
        QApplication::setQuitOnLastWindowClosed(true);
        QObject::connect(browser, &StandaloneBrowser::browserClosed, qApp, [browser] {
            if (otherOpenWindows(browser->window()->windowHandle()).isEmpty())
                QCoreApplication::quit();
        });
        status = QApplication::exec() == 0 ? Success : Failure;
    }
    if (status == Success && screenshot) {
        QApplication::processEvents();
        const QString file = parser.value("screenshot");
        if (!browser->window()->grab().save(file, "PNG"))
            status = context.fail("unable to write " + file);
    }
    // What the options set was for this run only: the user's own choice
    // comes back before the window writes its preferences, unless the user
    // changed it in the window meanwhile.
    if (parser.isSet("layout") && browser->getLayoutType() == layout)
        browser->setLayout(savedLayout);
    if (parser.isSet("icon-size") && browser->getIconSize() == iconSize)
        browser->setIconSize(savedIconSize);
    if (windowSize.isValid() && browser->window()->size() == windowSize)
        browser->window()->resize(savedSize);
    // The window goes before the module that its pages read from.
    context.host().windowCommands().setPreferencesPage(nullptr);
    if (Host::ModelWindows* windows = context.host().modelWindows())
        windows->setTypingHandler(nullptr);
    StandaloneBrowser::destroyInstance();
    return status;
}

} // namespace

Command browseCommand()
{
    return {"browse",
            "Open the library browser on the root's libraries; --screenshot renders it to a PNG without a display.",
            configure, run, false, false, true};
}

} // namespace LibraryBrowser::Tdlb
