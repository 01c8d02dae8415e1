#include "gui/BrowserToolBarIcons.h"

#include "gui/BrowserUtils.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace LibraryBrowser::BrowserToolBarIcons {

namespace {

// The built-in drawing of an image: its SVG source under the same base name.
QString resourceOf(const std::string& fileName)
{
    return ":/tdlb/icons/" + QFileInfo(QString::fromStdString(fileName)).completeBaseName() + ".svg";
}

QImage render(const QString& svg, int size)
{
    QSvgRenderer renderer(svg);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (renderer.isValid()) {
        QPainter painter(&image);
        renderer.render(&painter);
    }
    return image;
}

} // namespace

QIcon icon(const std::string& fileName)
{
    const QString onDisk = QString::fromStdString(BrowserUtils::getToolBarIconDir(true) + "/" + fileName);
    if (QFileInfo::exists(onDisk))
        return QIcon(onDisk);
    QIcon drawn;
    for (int size : {16, 24, 32, 48})
        drawn.addPixmap(QPixmap::fromImage(render(resourceOf(fileName), size)));
    return drawn;
}

const std::vector<std::string>& fileNames()
{
    static const std::vector<std::string> names{
        "TandrilModelIcon.png", "new.png",          "open.png",          "SearchOptions.png",     "binocularsBlack.png",
        "TDB_expand.png",       "TDB_collapse.png", "ToolboxPinBtnLB.PNG", "ToolboxPinBtnOnLB.PNG",
    };
    return names;
}

bool writeImages(const std::string& directory, int size)
{
    const QString target = QString::fromStdString(directory);
    if (!QDir().mkpath(target))
        return false;
    bool written = true;
    for (const std::string& name : fileNames())
        written = render(resourceOf(name), size).save(target + "/" + QString::fromStdString(name), "PNG") && written;
    return written;
}

} // namespace LibraryBrowser::BrowserToolBarIcons
