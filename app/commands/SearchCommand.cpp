#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegExp>

#include <map>
#include <set>

namespace LibraryBrowser::Tdlb {

namespace {

// The hits of one product, in the order of the walk.
struct ProductHits {
    QString product;
    int blocks = 0;
    int subsystems = 0;
    QJsonArray hits;
    std::set<QString> paths;
};

QString counted(qsizetype count, const char* singular, const char* plural)
{
    return QString::number(count) + ' ' + QString::fromLatin1(count == 1 ? singular : plural);
}

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("pattern", "The text to look for in shown names.");
    parser.addOption({"regexp", "Take the pattern as a regular expression."});
    parser.addOption({"whole-word", "Match whole words only."});
    parser.addOption({"match-case", "Tell upper from lower case."});
    parser.addOption({"under", "Search below this object only.", "object"});
    parser.addOption({"json", "Write one JSON document."});
}

int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() != 1)
        return context.usageError("needs exactly one pattern");
    const std::string pattern = arguments.first().toStdString();
    if (parser.isSet("regexp")) {
        // The search would take a broken expression as one that matches nothing.
        const QRegExp expression(arguments.first());
        if (!expression.isValid())
            return context.usageError("invalid regular expression '" + arguments.first() + "': " +
                                      expression.errorString());
    }
    const auto regExp = parser.isSet("regexp") ? SearchOptions::RegExpOn : SearchOptions::RegExpOff;
    const auto wholeWord = parser.isSet("whole-word") ? SearchOptions::WholeWordOn : SearchOptions::WholeWordOff;
    const auto matchCase = parser.isSet("match-case") ? SearchOptions::MatchCaseOn : SearchOptions::MatchCaseOff;

    Repository& repository = context.repository();
    TandrilObjectIterator hits;
    if (parser.isSet("under")) {
        const TandrilObject under = ObjectLookup(repository).object(parser.value("under"));
        if (!under.isValid())
            return context.fail("no object '" + parser.value("under") + "' in the repository");
        hits = repository.findBlocks(pattern, under, regExp, wholeWord, matchCase);
    } else {
        hits = repository.findBlocks(pattern, regExp, wholeWord, matchCase);
    }

    std::vector<ProductHits> groups;
    std::map<QString, std::size_t> groupOf;
    int total = 0;
    for (; hits.isValidIterator(); hits.next()) {
        const TandrilObject hit = hits.current();
        const QString product = QString::fromStdString(hit.getProductName());
        const auto [place, added] = groupOf.emplace(product, groups.size());
        if (added) {
            groups.emplace_back();
            groups.back().product = product;
        }
        ProductHits& group = groups[place->second];
        // The walk meets a library once for each reference to it; a
        // product lists each of its hits once.
        if (!group.paths.insert(QString::fromStdString(hit.getPath())).second)
            continue;
        ++(hit.isSubSystem() ? group.subsystems : group.blocks);
        group.hits.append(ObjectLookup::summary(hit));
        ++total;
    }

    if (parser.isSet("json")) {
        QJsonArray products;
        for (const ProductHits& group : groups) {
            products.append(QJsonObject{{"product", group.product},
                                        {"count", group.hits.size()},
                                        {"blocks", group.blocks},
                                        {"subsystems", group.subsystems},
                                        {"hits", group.hits}});
        }
        context.printJson(QJsonObject{{"pattern", QString::fromStdString(pattern)}, {"total", total},
                                      {"products", products}});
        return Success;
    }
    for (const ProductHits& group : groups) {
        context.print(group.product + ": " + counted(group.hits.size(), "hit", "hits") + " (" +
                      counted(group.blocks, "block", "blocks") + ", " +
                      counted(group.subsystems, "subsystem", "subsystems") + ")");
        for (const QJsonValue& hit : group.hits)
            context.print("  " + hit["path"].toString() + "  [" + hit["type"].toString() + "]");
    }
    context.print(counted(total, "hit", "hits") + " in " + counted(qsizetype(groups.size()), "product", "products"));
    return Success;
}

} // namespace

Command searchCommand()
{
    return {"search", "Find the objects whose shown name matches a pattern.", configure, run, true, true};
}

} // namespace LibraryBrowser::Tdlb
