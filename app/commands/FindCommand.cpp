#include "Commands.h"

#include "CommandContext.h"

#include "repository/search/BlockRanker.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

namespace LibraryBrowser::Tdlb {

namespace {

constexpr int defaultLimit = 20;

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("query", "Words that must each match a block: its name, its description or its "
                                          "library path, in any order. Quote a query of several words.");
    parser.addOption({"limit", QString("Show at most N blocks, best first (default %1; 0 for all).").arg(defaultLimit),
                      "N", QString::number(defaultLimit)});
    parser.addOption({"json", "Write one JSON document."});
}

// The name with each matched run in brackets: "[PID] [C]ontroller".
QString marked(const QString& name, const std::vector<NameSpan>& spans)
{
    const QList<uint> characters = name.toUcs4();
    QString text;
    int at = 0;
    auto copy = [&](int from, int to) {
        for (int i = from; i < to && i < characters.size(); ++i)
            text += QString::fromUcs4(reinterpret_cast<const char32_t*>(&characters[i]), 1);
    };
    for (const NameSpan& span : spans) {
        copy(at, span.start);
        text += '[';
        copy(span.start, span.start + span.length);
        text += ']';
        at = span.start + span.length;
    }
    copy(at, int(characters.size()));
    return text;
}

QJsonObject describe(const RankedBlock& ranked)
{
    QJsonArray spans;
    for (const NameSpan& span : ranked.spans)
        spans.append(QJsonObject{{"start", span.start}, {"length", span.length}});
    return QJsonObject{{"displayPath", QString::fromStdString(ranked.block.getDisplayPath())},
                       {"path", QString::fromStdString(ranked.block.getPath())},
                       {"displayName", QString::fromStdString(ranked.block.getDisplayName())},
                       {"type", QString::fromStdString(ranked.block.getType())},
                       {"score", ranked.score},
                       {"spans", spans}};
}

int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() != 1)
        return context.usageError("needs exactly one query (quote a query of several words)");
    RankingQuery query;
    query.text = arguments.first().toStdString();
    if (BlockRanker::queryWords(query.text).empty())
        return context.usageError("the query has no words");
    bool number = false;
    const int limit = parser.value("limit").toInt(&number);
    if (!number || limit < 0)
        return context.usageError("--limit takes a whole number of 0 or more, not '" + parser.value("limit") + "'");
    query.limit = std::size_t(limit);

    const BlockRanker ranker(context.repository());
    const RankingResult result = ranker.rank(query);
    if (parser.isSet("json")) {
        QJsonArray blocks;
        for (const RankedBlock& ranked : result.blocks)
            blocks.append(describe(ranked));
        context.printJson(QJsonObject{{"query", arguments.first()},
                                      {"total", qint64(result.total)},
                                      {"blocks", blocks}});
    } else {
        for (const RankedBlock& ranked : result.blocks) {
            context.print(QString("%1  %2  [%3]  %4")
                              .arg(ranked.score, 5)
                              .arg(QString::fromStdString(ranked.block.getDisplayPath()),
                                   QString::fromStdString(ranked.block.getType()),
                                   marked(QString::fromStdString(ranked.block.getDisplayName()), ranked.spans)));
        }
        context.print(QString("%1 of %2 matching blocks shown").arg(result.blocks.size()).arg(result.total));
    }
    // As grep does: a script can tell whether anything matched.
    return result.total > 0 ? Success : Failure;
}

} // namespace

Command findCommand()
{
    return {"find", "Find blocks by words of their names, descriptions and libraries, best match first.",
            configure, run, true, true};
}

} // namespace LibraryBrowser::Tdlb
