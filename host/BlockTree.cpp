#include "BlockTree.h"

#include "BlockPath.h"
#include "FieldPath.h"
#include "JsonFile.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace LibraryBrowser::Host {

namespace {
QString q(const std::string& text)
{
    return QString::fromStdString(text);
}
} // namespace

BlockTree::NodeId BlockTree::nodeOfHandle(double handle) const
{
    if (!(handle >= 1) || handle > static_cast<double>(m_nodes.size()) || std::floor(handle) != handle)
        return none;
    return static_cast<NodeId>(handle);
}

BlockTree::NodeId BlockTree::nodeAtPath(const std::string& path, FileIssue& issue)
{
    const std::vector<std::string> segments = BlockPath::split(path);
    if (path.empty() || segments.front().empty()) {
        issue = FileIssue();
        issue.message = QStringLiteral("\"%1\" is not a block path").arg(q(path));
        return none;
    }
    const LibraryCatalog::Loaded loaded = m_catalog.load(segments.front(), issue);
    if (!loaded.document)
        return none;
    return walk(rootOf(segments.front(), loaded), segments, 1, issue);
}

BlockTree::Held BlockTree::hold(NodeId id, FileIssue& issue)
{
    Held held;
    const std::size_t index = node(id).reading;
    held.document = m_readings[index].document.lock();
    if (!held.document) {
        const std::string library = m_readings[index].library;
        const LibraryCatalog::Loaded loaded = m_catalog.load(library, issue);
        if (loaded.document && loaded.reading != m_readings[index].number) {
            issue = FileIssue();
            issue.file = m_readings[index].file;
            issue.message = QStringLiteral("the library file changed after the handle of \"%1\" was given; ask for "
                                           "the block again")
                                .arg(q(pathOf(id)));
        }
        if (!loaded.document || loaded.reading != m_readings[index].number)
            return {};
        m_readings[index].document = loaded.document;
        held.document = loaded.document;
    }
    std::vector<int> place;
    for (NodeId at = id; node(at).parent != none; at = node(at).parent)
        place.push_back(node(at).indexInParent);
    const std::vector<BlockRecord>* records = &held.document->blocks;
    for (auto it = place.rbegin(); it != place.rend(); ++it) {
        held.record = &(*records)[std::size_t(*it)];
        records = &held.record->blocks;
    }
    return held;
}

BlockTree::NodeId BlockTree::walk(NodeId from, const std::vector<std::string>& segments, std::size_t first,
                                  FileIssue& issue)
{
    NodeId current = from;
    for (std::size_t i = first; i < segments.size(); ++i) {
        NodeId container = current;
        if (node(current).type == BlockType::LibraryRef) {
            container = resolveReference(current, issue);
            if (container == none)
                return none;
        }
        if (!buildChildren(container, issue))
            return none;
        const NodeId child = childNamed(container, segments[i]);
        if (child == none) {
            issue = FileIssue();
            issue.file = m_readings[node(container).reading].file;
            issue.message = QStringLiteral("no block \"%1\" in \"%2\"").arg(q(segments[i]), q(pathOf(container)));
            return none;
        }
        current = child;
    }
    return current;
}

bool BlockTree::children(NodeId id, std::vector<NodeId>& out, FileIssue& issue)
{
    out.clear();
    if (node(id).type == BlockType::Block)
        return true;
    if (node(id).type == BlockType::LibraryRef) {
        id = resolveReference(id, issue);
        if (id == none)
            return false;
    }
    if (!buildChildren(id, issue))
        return false;
    out = node(id).children;
    return true;
}

BlockTree::NodeId BlockTree::resolveReference(NodeId id, FileIssue& issue)
{
    if (std::find(m_resolving.begin(), m_resolving.end(), id) != m_resolving.end()) {
        QStringList chain;
        for (auto it = std::find(m_resolving.begin(), m_resolving.end(), id); it != m_resolving.end(); ++it)
            chain << q(pathOf(*it));
        chain << q(pathOf(id));
        issue = issueAt(id, QStringLiteral("target"),
                        QStringLiteral("the references form a cycle: %1").arg(chain.join(QStringLiteral(" -> "))));
        return none;
    }
    const Held held = hold(id, issue);
    if (!held)
        return none;
    const ReferenceTarget& target = held.record->target;
    const LibraryCatalog::Loaded loaded = m_catalog.load(target.library, issue);
    if (!loaded.document) {
        issue = issueAt(id, QStringLiteral("target.library"),
                        QStringLiteral("the reference \"%1\" cannot be resolved: %2")
                            .arg(q(pathOf(id)), issue.file.isEmpty() ? issue.message : q(issue.toString())));
        return none;
    }
    m_resolving.push_back(id);
    NodeId found = none;
    FileIssue inner;
    if (!target.path.empty())
        found = walk(rootOf(target.library, loaded), BlockPath::split(target.path), 0, inner);
    else
        found = rootOf(target.library, loaded);
    if (found != none && node(found).type == BlockType::LibraryRef)
        found = resolveReference(found, inner);
    m_resolving.pop_back();

    if (found == none) {
        // A located issue comes from a reference further on; it names the culprit.
        issue = inner.line > 0 ? inner
                      : issueAt(id, QStringLiteral("target.path"),
                                QStringLiteral("the reference \"%1\" cannot be resolved: %2")
                                    .arg(q(pathOf(id)), inner.message));
        return none;
    }
    if (node(found).type == BlockType::Block) {
        issue = issueAt(id, QStringLiteral("target.path"),
                        QStringLiteral("the reference \"%1\" names the block \"%2\"; a reference names a library or "
                                       "a subsystem")
                            .arg(q(pathOf(id)), q(pathOf(found))));
        return none;
    }
    if (isAncestorOrSelf(found, id)) {
        issue = issueAt(id, QStringLiteral("target"),
                        QStringLiteral("the references form a cycle: \"%1\" lies inside its own target \"%2\"")
                            .arg(q(pathOf(id)), q(pathOf(found))));
        return none;
    }
    return found;
}

std::string BlockTree::pathOf(NodeId id) const
{
    std::vector<std::string> names;
    for (NodeId at = id; at != none; at = node(at).parent)
        names.push_back(node(at).name);
    std::reverse(names.begin(), names.end());
    return BlockPath::join(names);
}

const std::string& BlockTree::libraryOf(NodeId id) const
{
    return node(m_readings[node(id).reading].root).name;
}

FileIssue BlockTree::issueAt(NodeId id, const QString& field, const QString& message)
{
    std::vector<int> indices;
    for (NodeId at = id; node(at).parent != none; at = node(at).parent)
        indices.push_back(node(at).indexInParent);
    FieldPath path;
    for (auto it = indices.rbegin(); it != indices.rend(); ++it)
        path = path.key(QStringLiteral("blocks")).index(*it);
    for (const QString& key : field.split(QLatin1Char('.'), Qt::SkipEmptyParts))
        path = path.key(key);
    FileIssue unused;
    const Held held = hold(id, unused);
    if (!held) {
        FileIssue issue;
        issue.file = m_readings[node(id).reading].file;
        issue.message = message;
        return issue;
    }
    return JsonFile::issueAt(held.document->filePath, held.document->source, path, message);
}

BlockTree::NodeId BlockTree::rootOf(const std::string& library, const LibraryCatalog::Loaded& loaded)
{
    const auto known = m_readingByNumber.find(loaded.reading);
    if (known != m_readingByNumber.end()) {
        Reading& reading = m_readings[known->second];
        if (reading.document.expired())
            reading.document = loaded.document;
        return reading.root;
    }
    m_readingByNumber.emplace(loaded.reading, m_readings.size());
    m_readings.push_back({library, loaded.document->filePath, loaded.reading, none, loaded.document});
    Node root;
    root.reading = m_readings.size() - 1;
    root.name = loaded.document->name;
    const NodeId id = makeNode(std::move(root));
    m_readings.back().root = id;
    return id;
}

BlockTree::NodeId BlockTree::makeNode(Node made)
{
    m_nodes.push_back(std::move(made));
    return static_cast<NodeId>(m_nodes.size());
}

bool BlockTree::buildChildren(NodeId id, FileIssue& issue)
{
    if (node(id).childrenBuilt)
        return true;
    const Held held = hold(id, issue);
    if (!held)
        return false;
    const std::vector<BlockRecord>& records = held.record ? held.record->blocks : held.document->blocks;
    std::vector<NodeId> made;
    made.reserve(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        Node child;
        child.reading = node(id).reading;
        child.parent = id;
        child.indexInParent = static_cast<int>(i);
        child.type = records[i].type;
        child.name = records[i].name;
        made.push_back(makeNode(std::move(child)));
    }
    Node& built = m_nodes[id - 1];
    built.children = std::move(made);
    built.childrenBuilt = true;
    return true;
}

BlockTree::NodeId BlockTree::childNamed(NodeId id, const std::string& name)
{
    FileIssue issue;
    if (!buildChildren(id, issue))
        return none;
    Node& parent = m_nodes[id - 1];
    if (parent.childByKey.empty() && !parent.children.empty())
        for (NodeId child : parent.children)
            parent.childByKey.emplace(BlockPath::matchKey(node(child).name), child);
    const auto it = parent.childByKey.find(BlockPath::matchKey(name));
    return it == parent.childByKey.end() ? none : it->second;
}

bool BlockTree::isAncestorOrSelf(NodeId candidate, NodeId of) const
{
    for (NodeId at = of; at != none; at = node(at).parent)
        if (at == candidate)
            return true;
    return false;
}

} // namespace LibraryBrowser::Host
