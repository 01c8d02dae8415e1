#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

#include <limits>
#include <set>

namespace LibraryBrowser::Tdlb {

namespace {

// A pre-order walk that knows each object's depth. Library references are
// shown with their target and not entered, so that the listing stays finite
// and shows each library's blocks under the library itself.
class TreeWalk {
public:
    TreeWalk(Repository& repository, int maximumDepth) : m_repository(repository), m_maximumDepth(maximumDepth) {}

    void visit(const TandrilObject& object, int depth)
    {
        if (depth > m_maximumDepth)
            return;
        QJsonObject entry = ObjectLookup::summary(object);
        entry["depth"] = depth;
        if (object.isLibraryRef())
            entry["target"] = QString::fromStdString(object.getLibraryRefPath());
        objects.append(entry);
        if (object.isLibraryRef() || object.getIsEmpty() || !m_onPath.insert(object.getPath()).second)
            return;
        for (TandrilObjectIterator it = m_repository.getChildrenIterator(object); it.isValidIterator(); it.next())
            visit(it.current(), depth + 1);
        m_onPath.erase(object.getPath());
    }

    QJsonArray objects;

private:
    Repository& m_repository;
    int m_maximumDepth;
    std::set<std::string> m_onPath;
};

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("object", "Start at this object instead of the top level.", "[object]");
    parser.addOption({"depth", "Show at most n levels below the start.", "n"});
    parser.addOption({"json", "Write one JSON document."});
}

int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() > 1)
        return context.usageError("takes at most one object");
    int maximumDepth = std::numeric_limits<int>::max();
    if (parser.isSet("depth")) {
        bool ok = false;
        maximumDepth = parser.value("depth").toInt(&ok);
        if (!ok || maximumDepth < 0)
            return context.usageError("--depth needs a whole number of 0 or more, not '" + parser.value("depth") + "'");
    }

    Repository& repository = context.repository();
    TreeWalk walk(repository, maximumDepth);
    QString start;
    if (arguments.isEmpty()) {
        // The products stand one level below the start, the repository.
        for (TandrilObjectIterator it = repository.getTopLevelIterator(); it.isValidIterator(); it.next())
            walk.visit(it.current(), 1);
    } else {
        const TandrilObject object = ObjectLookup(repository).object(arguments.first());
        if (!object.isValid())
            return context.fail("no object '" + arguments.first() + "' in the repository");
        start = QString::fromStdString(object.getPath());
        walk.visit(object, 0);
    }

    if (parser.isSet("json")) {
        context.printJson(QJsonObject{{"start", start}, {"count", walk.objects.size()}, {"objects", walk.objects}});
        return Success;
    }
    const int indentBase = arguments.isEmpty() ? 1 : 0;
    for (const QJsonValue& entry : walk.objects) {
        QString line = QString(2 * (entry["depth"].toInt() - indentBase), ' ') + entry["displayName"].toString() +
                       "  [" + entry["type"].toString() + "]";
        if (entry.toObject().contains("target"))
            line += " -> " + entry["target"].toString();
        context.print(line);
    }
    return Success;
}

} // namespace

Command treeCommand()
{
    return {"tree", "Walk the repository depth first, indented by depth.", configure, run, true, true};
}

} // namespace LibraryBrowser::Tdlb
