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
    const auto document = m_catalog.load(segments.front(), issue);
    if (!document)
        return none;
    return walk(rootOf(document), segments, 1, issue);
}

BlockTree::NodeId BlockTree::walk(NodeId from, const std::vector<std::string>& segments, std::size_t first,
                                  FileIssue& issue)
{
    NodeId current = from;
    for (std::size_t i = first; i < segments.size(); ++i) {
        NodeId container = current;
        if (node(current).record && node(current).record->type == BlockType::LibraryRef) {
            container = resolveReference(current, issue);
            if (container == none)
                return none;
        }
        const NodeId child = childNamed(container, segments[i]);
        if (child == none) {
            issue = FileIssue();
            issue.file = node(container).document->filePath;
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
    const BlockRecord* record = node(id).record;
    if (record && record->type == BlockType::Block)
        return true;
    if (record && record->type == BlockType::LibraryRef) {
        id = resolveReference(id, issue);
        if (id == none)
            return false;
    }
    buildChildren(id);
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
    const ReferenceTarget& target = node(id).record->target;
    const auto document = m_catalog.load(target.library, issue);
    if (!document) {
        issue = issueAt(id, QStringLiteral("target.library"),
                        QStringLiteral("the reference \"%1\" cannot be resolved: %2")
                            .arg(q(pathOf(id)), issue.file.isEmpty() ? issue.message : q(issue.toString())));
        return none;
    }
    m_resolving.push_back(id);
    NodeId found = none;
    FileIssue inner;
    if (!target.path.empty())
        found = walk(rootOf(document), BlockPath::split(target.path), 0, inner);
    else
        found = rootOf(document);
    if (found != none && node(found).record && node(found).record->type == BlockType::LibraryRef)
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
    if (node(found).record && node(found).record->type == BlockType::Block) {
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
        names.push_back(node(at).record ? node(at).record->name : node(at).document->name);
    std::reverse(names.begin(), names.end());
    return BlockPath::join(names);
}

FileIssue BlockTree::issueAt(NodeId id, const QString& field, const QString& message) const
{
    std::vector<int> indices;
    for (NodeId at = id; node(at).parent != none; at = node(at).parent)
        indices.push_back(node(at).indexInParent);
    FieldPath path;
    for (auto it = indices.rbegin(); it != indices.rend(); ++it)
        path = path.key(QStringLiteral("blocks")).index(*it);
    for (const QString& key : field.split(QLatin1Char('.'), Qt::SkipEmptyParts))
        path = path.key(key);
    const LibraryDocument& document = *node(id).document;
    return JsonFile::issueAt(document.filePath, document.source, path, message);
}

BlockTree::NodeId BlockTree::rootOf(const std::shared_ptr<const LibraryDocument>& document)
{
    const auto it = m_nodeByKey.find(document.get());
    if (it != m_nodeByKey.end())
        return it->second;
    Node root;
    root.document = document;
    return makeNode(document.get(), std::move(root));
}

BlockTree::NodeId BlockTree::makeNode(const void* key, Node made)
{
    m_nodes.push_back(std::move(made));
    const auto id = static_cast<NodeId>(m_nodes.size());
    m_nodeByKey.emplace(key, id);
    return id;
}

void BlockTree::buildChildren(NodeId id)
{
    if (node(id).childrenBuilt)
        return;
    const Node& parent = node(id);
    const std::vector<BlockRecord>& records = parent.record ? parent.record->blocks : parent.document->blocks;
    const auto document = parent.document;
    std::vector<NodeId> made;
    made.reserve(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        const auto it = m_nodeByKey.find(&records[i]);
        if (it != m_nodeByKey.end()) {
            made.push_back(it->second);
            continue;
        }
        Node child;
        child.document = document;
        child.record = &records[i];
        child.parent = id;
        child.indexInParent = static_cast<int>(i);
        made.push_back(makeNode(&records[i], std::move(child)));
    }
    Node& built = m_nodes[id - 1];
    built.children = std::move(made);
    built.childrenBuilt = true;
}

BlockTree::NodeId BlockTree::childNamed(NodeId id, const std::string& name)
{
    buildChildren(id);
    Node& parent = m_nodes[id - 1];
    if (parent.childByKey.empty() && !parent.children.empty())
        for (NodeId child : parent.children)
            parent.childByKey.emplace(BlockPath::matchKey(node(child).record->name), child);
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
