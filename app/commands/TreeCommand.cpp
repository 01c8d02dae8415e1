#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

#include <functional>
#include <limits>
#include <set>

namespace LibraryBrowser::Tdlb {

namespace {

// A pre-order walk that hands each object and its depth to a visitor.
// Library references are shown with their target and not entered, so that
// the listing stays finite and shows each library's blocks under the library
// itself.
class TreeWalk {
public:
    using Visitor = std::function<void(const TandrilObject&, int depth)>;

    TreeWalk(Repository& repository, int maximumDepth, Visitor visitor)
        : m_repository(repository), m_maximumDepth(maximumDepth), m_visitor(std::move(visitor))
    {
    }

    void visit(const TandrilObject& object, int depth)
    {
        if (depth > m_maximumDepth)
            return;
        m_visitor(object, depth);
        if (object.isLibraryRef() || object.getIsEmpty() || !m_onPath.insert(object.getPath()).second)
            return;
        for (TandrilObjectIterator it = m_repository.getChildrenIterator(object); it.isValidIterator(); it.next())
            visit(it.current(), depth + 1);
        m_onPath.erase(object.getPath());
    }

private:
    Repository& m_repository;
    int m_maximumDepth;
    Visitor m_visitor;
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
    const bool json = parser.isSet("json");
    const int indentBase = arguments.isEmpty() ? 1 : 0;
    QJsonArray objects;
    // The text listing is written as the walk goes: at 100,000 objects,
    // keeping it first would cost as much memory as the nodes themselves.
    TreeWalk walk(repository, maximumDepth, [&](const TandrilObject& object, int depth) {
        const std::string target = object.isLibraryRef() ? object.getLibraryRefPath() : std::string();
        if (json) {
            QJsonObject entry = ObjectLookup::summary(object);
            entry["depth"] = depth;
            if (object.isLibraryRef())
                entry["target"] = QString::fromStdString(target);
            objects.append(entry);
            return;
        }
        std::string line(std::size_t(2 * (depth - indentBase)), ' ');
        line += object.getDisplayName() + "  [" + object.getType() + "]";
        if (object.isLibraryRef())
            line += " -> " + target;
        context.printUtf8(line);
    });
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
    if (json)
        context.printJson(QJsonObject{{"start", start}, {"count", objects.size()}, {"objects", objects}});
    return Success;
}

} // namespace

Command treeCommand()
{
    return {"tree", "Walk the repository depth first, indented by depth.", configure, run, true, true};
}

} // namespace LibraryBrowser::Tdlb
