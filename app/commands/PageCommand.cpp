#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"
#include "viewer/PageViewer.h"

#include "gui/BrowserPreferences.h"
#include "gui/LibraryBlocksPage.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScrollArea>

namespace LibraryBrowser::Tdlb {

namespace {

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("object", "The object's unique path, or a product's name.");
    parser.addOption({"layout", "list or grid (default grid).", "layout", "grid"});
    parser.addOption({"icon-size", "compact, small, medium or large (default compact).", "size", "compact"});
    parser.addOption({"font-size", "The point size of the names, 8 to 24 (default 10).", "points", "10"});
    parser.addOption({"size", "The window's width and height in pixels (default 600x480).", "WxH", "600x480"});
    parser.addOption({"select", "The display path of the block to select.", "path"});
    parser.addOption({"screenshot", "Render the window offscreen to a PNG file and exit.", "file"});
}

bool parseSize(const QString& text, QSize& size)
{
    const QStringList parts = text.split('x');
    bool okW = false;
    bool okH = false;
    if (parts.size() == 2)
        size = QSize(parts[0].toInt(&okW), parts[1].toInt(&okH));
    return okW && okH && size.width() >= 100 && size.height() >= 100 && size.width() <= 8192 &&
           size.height() <= 8192;
}

int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() != 1)
        return context.usageError("needs exactly one object");
    const QString layoutWord = parser.value("layout").toLower();
    if (layoutWord != "list" && layoutWord != "grid")
        return context.usageError("--layout is list or grid, not '" + parser.value("layout") + "'");
    const QString sizeWord = parser.value("icon-size").toLower();
    const QStringList sizes{"compact", "small", "medium", "large"};
    if (!sizes.contains(sizeWord))
        return context.usageError("--icon-size is compact, small, medium or large, not '" +
                                  parser.value("icon-size") + "'");
    bool pointsOk = false;
    const int points = parser.value("font-size").toInt(&pointsOk);
    if (!pointsOk || points < 8 || points > 24)
        return context.usageError("--font-size needs a point size from 8 to 24, not '" + parser.value("font-size") +
                                  "'");
    QSize windowSize;
    if (!parseSize(parser.value("size"), windowSize))
        return context.usageError("--size needs WIDTHxHEIGHT from 100 to 8192 pixels, not '" +
                                  parser.value("size") + "'");

    Repository& repository = context.repository();
    const TandrilObject object = ObjectLookup(repository).object(arguments.first());
    if (!object.isValid())
        return context.fail("no object '" + arguments.first() + "' in the repository");
    if (!object.isSubSystem())
        return context.fail("'" + arguments.first() + "' has no blocks to show: name a library or a subsystem");

    const LayoutType layout = layoutWord == "list" ? LayoutType::List : LayoutType::Grid;
    const IconSize size = IconSize(sizes.indexOf(sizeWord));
    const bool screenshot = parser.isSet("screenshot");
    if (screenshot)
        BrowserUtils::setScreenDPIOverride(96);
    PageViewer viewer(repository, object, layout, size, points);
    viewer.resize(windowSize);
    viewer.show();
    QApplication::processEvents();
    viewer.showObject();
    if (parser.isSet("select")) {
        const std::string path = parser.value("select").toStdString();
        GuiBlock* tile = viewer.page().getBlockByPathName(path);
        if (!tile)
            return context.fail("no block '" + parser.value("select") + "' on the page");
        viewer.page().setSelectedBlock(tile);
    }
    if (!screenshot)
        return QApplication::exec() == 0 ? Success : Failure;
    QApplication::processEvents();
    const QString file = parser.value("screenshot");
    if (!viewer.grab().save(file, "PNG"))
        return context.fail("unable to write " + file);
    return Success;
}

} // namespace

Command pageCommand()
{
    return {"page", "Show the blocks page of a library or subsystem; --screenshot renders it to a PNG.", configure,
            run, true, false, true};
}

} // namespace LibraryBrowser::Tdlb
