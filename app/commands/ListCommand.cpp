#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

#include <set>

namespace LibraryBrowser::Tdlb {

namespace {

void configure(QCommandLineParser& parser)
{
    parser.addOption({"json", "Write one JSON document."});
}

int run(const QCommandLineParser& parser, const QStringList&, CommandContext& context)
{
    Repository& repository = context.repository();
    std::set<std::string> topLevel;
    for (TandrilObjectIterator it = repository.getTopLevelIterator(); it.isValidIterator(); it.next())
        topLevel.insert(it.current().getPath());

    QJsonArray products;
    for (const TandrilObject& product : ObjectLookup(repository).products()) {
        QJsonObject entry = ObjectLookup::summary(product);
        entry["kind"] = product.isPalette() ? "palette" : "product";
        entry["topLevel"] = topLevel.count(product.getPath()) > 0;
        entry["upToDate"] = repository.isProductUpToDate(product);
        products.append(entry);
    }

    if (parser.isSet("json")) {
        context.printJson(QJsonObject{{"count", products.size()}, {"products", products}});
        return Success;
    }
    int nameWidth = 4;
    int pathWidth = 4;
    for (const QJsonValue& value : products) {
        nameWidth = std::max(nameWidth, int(value["displayName"].toString().size()));
        pathWidth = std::max(pathWidth, int(value["path"].toString().size()));
    }
    const auto row = [&](const QString& name, const QString& path, const QString& kind, const QString& top,
                         const QString& upToDate) {
        context.print(QString("%1  %2  %3  %4  %5")
                          .arg(name, -nameWidth)
                          .arg(path, -pathWidth)
                          .arg(kind, -7)
                          .arg(top, -9)
                          .arg(upToDate)
                          .trimmed());
    };
    row("NAME", "PATH", "KIND", "TOP LEVEL", "UP TO DATE");
    for (const QJsonValue& value : products) {
        row(value["displayName"].toString(), value["path"].toString(), value["kind"].toString(),
            value["topLevel"].toBool() ? "yes" : "no", value["upToDate"].toBool() ? "yes" : "no");
    }
    return Success;
}

} // namespace

Command listCommand()
{
    return {"list", "List the products: name, path, product or palette, top level, up to date.", configure, run, false, true};
}

} // namespace LibraryBrowser::Tdlb
