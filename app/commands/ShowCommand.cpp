#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>
#include <QFile>
#include <QImage>
#include <QJsonObject>
#include <QPainter>
#include <QSvgRenderer>

namespace LibraryBrowser::Tdlb {

namespace {

// Attributes in the order they are printed; the JSON form uses the names.
QJsonObject attributes(Repository& repository, const TandrilObject& object)
{
    QJsonObject all = ObjectLookup::summary(object);
    all["product"] = QString::fromStdString(object.getProductName());
    all["description"] = QString::fromStdString(object.getDescription());
    all["isEmpty"] = object.getIsEmpty();
    all["isFlat"] = object.getIsFlat();
    all["isProduct"] = object.getIsProduct();
    if (object.isLibraryRef()) {
        all["libraryRefName"] = QString::fromStdString(object.getLibraryRefName());
        all["libraryRefPath"] = QString::fromStdString(object.getLibraryRefPath());
    }
    if (object.getIsProduct())
        all["upToDate"] = repository.isProductUpToDate(object);
    all["children"] = object.getIsEmpty() ? 0 : repository.getChildrenIterator(object).size();
    const BlockIconPtr icon = repository.getIcon(object);
    all["iconBytes"] = icon ? int(icon->svg().size()) : 0;
    return all;
}

const char* const PrintOrder[] = {"path",      "name",           "displayName",    "type",     "product",
                                  "isEmpty",   "isFlat",         "isProduct",      "upToDate", "libraryRefName",
                                  "libraryRefPath", "children", "iconBytes", "description"};

QString textOf(const QJsonValue& value)
{
    if (value.isBool())
        return value.toBool() ? "yes" : "no";
    if (value.isDouble())
        return QString::number(value.toInt());
    return value.toString();
}

int writeIcon(Repository& repository, const TandrilObject& object, const QString& file, int size,
                           CommandContext& context)
{
    const BlockIconPtr icon = repository.getIcon(object);
    if (!icon || icon->isEmpty())
        return context.fail("'" + QString::fromStdString(object.getPath()) + "' has no icon");
    if (file.endsWith(".png", Qt::CaseInsensitive)) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        const bool drawn = icon->render(painter, QRectF(0, 0, size, size));
        painter.end();
        if (!drawn)
            return context.fail("the icon of '" + QString::fromStdString(object.getPath()) + "' can't be drawn");
        if (!image.save(file, "PNG"))
            return context.fail("unable to write " + file);
        return Success;
    }
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(icon->svg()) != icon->svg().size())
        return context.fail("unable to write " + file);
    return Success;
}

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("object", "The object's unique path, or a product's name.");
    parser.addOption({"icon", "Write the icon to the file: SVG, or PNG for a name ending in .png.", "file"});
    parser.addOption({"size", "The width and height of a PNG icon in pixels (default 64).", "pixels", "64"});
    parser.addOption({"json", "Write one JSON document."});
}

int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() != 1)
        return context.usageError("needs exactly one object");
    bool sizeOk = false;
    const int size = parser.value("size").toInt(&sizeOk);
    if (!sizeOk || size < 1 || size > 4096)
        return context.usageError("--size needs a number of pixels from 1 to 4096, not '" + parser.value("size") + "'");

    Repository& repository = context.repository();
    const TandrilObject object = ObjectLookup(repository).object(arguments.first());
    if (!object.isValid())
        return context.fail("no object '" + arguments.first() + "' in the repository");

    const QJsonObject all = attributes(repository, object);
    if (parser.isSet("json")) {
        context.printJson(all);
    } else {
        for (const char* key : PrintOrder) {
            if (!all.contains(key))
                continue;
            // A description runs over several lines; each keeps the indent.
            QString value = textOf(all[key]);
            value.replace('\n', "\n    ");
            context.print(QString::fromLatin1(key) + ": " + value);
        }
    }
    if (parser.isSet("icon"))
        return writeIcon(repository, object, parser.value("icon"), size, context);
    return Success;
}

} // namespace

Command showCommand()
{
    return {"show", "Show every attribute of an object; write its icon.", configure, run, true, true, true};
}

} // namespace LibraryBrowser::Tdlb
