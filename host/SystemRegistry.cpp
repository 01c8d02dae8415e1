#include "SystemRegistry.h"

#include "BlockPath.h"
#include "LibraryFileParser.h"
#include "LibraryFileWriter.h"

#include <algorithm>
#include <cctype>

namespace LibraryBrowser::Host {

namespace {
// Gap between a block added without a point and its left neighbour.
constexpr double spacing = 40;

BlockRecord* childIn(std::vector<BlockRecord>& blocks, const std::string& name)
{
    const std::string key = BlockPath::matchKey(name);
    for (BlockRecord& block : blocks)
        if (BlockPath::matchKey(block.name) == key)
            return &block;
    return nullptr;
}

// The blocks of the system or subsystem at the segments after the first.
std::vector<BlockRecord>* containerIn(LibraryDocument& document, const std::vector<std::string>& segments)
{
    std::vector<BlockRecord>* blocks = &document.blocks;
    for (std::size_t i = 1; i < segments.size(); ++i) {
        BlockRecord* child = childIn(*blocks, segments[i]);
        if (!child || child->type != BlockType::SubSystem)
            return nullptr;
        blocks = &child->blocks;
    }
    return blocks;
}
} // namespace

bool SystemRegistry::open(const std::string& path, bool loadOnly, std::string& error)
{
    const std::string name = BlockPath::split(path).front();
    if (!isLoaded(name)) {
        FileIssue issue;
        const BlockTree::NodeId root = m_tree.nodeAtPath(name, issue);
        if (root == BlockTree::none) {
            error = "open_system: " + issue.toString();
            return false;
        }
        OpenSystem system;
        system.name = name;
        system.type = SystemType::Library;
        system.locked = true;
        const BlockTree::Held held = m_tree.hold(root, issue);
        if (!held) {
            error = "open_system: " + issue.toString();
            return false;
        }
        system.document = *held.document;
        system.file = system.document.filePath;
        m_systems.push_back(std::move(system));
    }
    if (!loadOnly) {
        if (path != name && !blockExists(path)) {
            error = "open_system: no block \"" + path + "\"";
            return false;
        }
        findMutable(name)->shown = true;
        m_current = name;
    }
    return true;
}

std::string SystemRegistry::newSystem(SystemType type)
{
    std::string name = "untitled";
    for (int n = 1; isLoaded(name); ++n)
        name = "untitled" + std::to_string(n);
    OpenSystem system;
    system.name = name;
    system.type = type;
    system.shown = true;
    system.document.name = name;
    m_systems.push_back(std::move(system));
    m_current = name;
    return name;
}

const OpenSystem* SystemRegistry::find(const std::string& name) const
{
    const auto it = std::find_if(m_systems.begin(), m_systems.end(),
                                 [&](const OpenSystem& system) { return system.name == name; });
    return it == m_systems.end() ? nullptr : &*it;
}

OpenSystem* SystemRegistry::findMutable(const std::string& name)
{
    return const_cast<OpenSystem*>(find(name));
}

void SystemRegistry::setCurrent(const std::string& name)
{
    if (const OpenSystem* system = find(name); system && system->shown)
        m_current = name;
}

bool SystemRegistry::close(const std::string& name)
{
    const auto it = std::find_if(m_systems.begin(), m_systems.end(),
                                 [&](const OpenSystem& system) { return system.name == name; });
    if (it == m_systems.end())
        return false;
    m_systems.erase(it);
    if (m_current == name) {
        const auto shown = std::find_if(m_systems.rbegin(), m_systems.rend(),
                                        [](const OpenSystem& system) { return system.shown; });
        m_current = shown == m_systems.rend() ? std::string() : shown->name;
    }
    return true;
}

bool SystemRegistry::openFile(const QString& file, std::string& error)
{
    FileIssue issue;
    const std::shared_ptr<LibraryDocument> document = LibraryFileParser::parseFile(file, std::string(), issue);
    if (!document) {
        error = "open_system: " + issue.toString();
        return false;
    }
    if (const OpenSystem* open = find(document->name)) {
        if (open->file != file) {
            error = "open_system: a system named \"" + document->name + "\" is open already";
            return false;
        }
    } else {
        OpenSystem system;
        system.name = document->name;
        system.type = document->library ? SystemType::Library : SystemType::Model;
        system.file = file;
        system.document = *document;
        m_systems.push_back(std::move(system));
    }
    findMutable(document->name)->shown = true;
    m_current = document->name;
    return true;
}

void SystemRegistry::setLocked(const std::string& name, bool locked)
{
    if (OpenSystem* system = findMutable(name))
        system->locked = locked;
}

bool SystemRegistry::blockExists(const std::string& path)
{
    BlockRecord block;
    std::string error;
    return sourceBlock(path, block, error);
}

bool SystemRegistry::sourceBlock(const std::string& path, BlockRecord& out, std::string& error)
{
    const std::vector<std::string> segments = BlockPath::split(path);
    if (OpenSystem* system = findMutable(segments.front()); system && segments.size() > 1) {
        std::vector<std::string> parent(segments.begin(), segments.end() - 1);
        std::vector<BlockRecord>* blocks = containerIn(system->document, parent);
        BlockRecord* block = blocks ? childIn(*blocks, segments.back()) : nullptr;
        if (!block) {
            error = "no block \"" + path + "\"";
            return false;
        }
        out = *block;
        return true;
    }
    FileIssue issue;
    const BlockTree::NodeId id = m_tree.nodeAtPath(path, issue);
    if (id == BlockTree::none) {
        error = issue.toString();
        return false;
    }
    const BlockTree::Held held = m_tree.hold(id, issue);
    if (!held) {
        error = issue.toString();
        return false;
    }
    if (held.record) {
        out = *held.record;
    } else {
        out = BlockRecord();
        out.name = held.document->name;
        out.type = BlockType::SubSystem;
        out.description = held.document->description;
        out.hasDescription = !out.description.empty();
        out.position = {0, 0, 60, 50};
        out.blocks = held.document->blocks;
    }
    return true;
}

std::string SystemRegistry::uniqueName(const std::vector<BlockRecord>& siblings, const std::string& wanted)
{
    const auto taken = [&](const std::string& name) {
        const std::string key = BlockPath::matchKey(name);
        return std::any_of(siblings.begin(), siblings.end(),
                           [&](const BlockRecord& block) { return BlockPath::matchKey(block.name) == key; });
    };
    if (!taken(wanted))
        return wanted;
    std::string stem = wanted;
    while (!stem.empty() && std::isdigit(static_cast<unsigned char>(stem.back())))
        stem.pop_back();
    if (stem.empty())
        stem = wanted;
    std::string name;
    for (int n = 1;; ++n) {
        name = stem + std::to_string(n);
        if (!taken(name))
            return name;
    }
}

bool SystemRegistry::addBlock(const std::string& source, const std::string& destination, std::optional<Point> at,
                              std::string& addedPath, std::string& error)
{
    const std::vector<std::string> segments = BlockPath::split(destination);
    OpenSystem* system = findMutable(segments.front());
    if (!system) {
        error = "no open system \"" + segments.front() + "\"";
        return false;
    }
    if (system->locked) {
        error = "the system \"" + system->name + "\" is locked";
        return false;
    }
    std::vector<BlockRecord>* blocks = containerIn(system->document, segments);
    if (!blocks) {
        error = "no subsystem \"" + destination + "\"";
        return false;
    }
    BlockRecord block;
    if (!sourceBlock(source, block, error))
        return false;
    block.name = uniqueName(*blocks, block.name);
    const double width = block.position.right - block.position.left;
    const double height = block.position.bottom - block.position.top;
    double left = spacing;
    double top = spacing;
    if (at) {
        left = at->x;
        top = at->y;
    } else {
        for (const BlockRecord& sibling : *blocks)
            left = std::max(left, sibling.position.right + spacing);
    }
    block.position = {left, top, left + width, top + height};
    addedPath = destination + "/" + BlockPath::escape(block.name);
    blocks->push_back(std::move(block));
    system->dirty = true;
    return true;
}

bool SystemRegistry::rename(const std::string& from, const std::string& to, std::string& error)
{
    OpenSystem* system = findMutable(from);
    if (!system) {
        error = "no open system \"" + from + "\"";
        return false;
    }
    if (!LibraryFileParser::isValidLibraryName(to)) {
        error = "\"" + to + "\" is not a name for a model: it is empty or holds a slash or a backslash";
        return false;
    }
    if (isLoaded(to)) {
        error = "a system named \"" + to + "\" is open already";
        return false;
    }
    FileIssue issue;
    if (m_tree.nodeAtPath(to, issue) != BlockTree::none) {
        error = "a library named \"" + to + "\" is on the path; choose another file name";
        return false;
    }
    system->name = to;
    system->document.name = to;
    if (m_current == from)
        m_current = to;
    return true;
}

bool SystemRegistry::save(const std::string& name, const QString& file, std::string& error)
{
    OpenSystem* system = findMutable(name);
    if (!system) {
        error = "no open system \"" + name + "\"";
        return false;
    }
    const QString target = file.isEmpty() ? system->file : file;
    if (target.isEmpty()) {
        error = "the system \"" + name + "\" has no file yet; name one";
        return false;
    }
    system->document.library = system->type == SystemType::Library;
    QString reason;
    if (!LibraryFileWriter::save(system->document, target, reason)) {
        error = reason.toStdString();
        return false;
    }
    system->file = target;
    system->dirty = false;
    return true;
}

} // namespace LibraryBrowser::Host
