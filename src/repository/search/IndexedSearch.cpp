#include "repository/search/IndexedSearch.h"

#include "repository/TandrilObjectDepthFirstIterator.h"

#include <algorithm>

namespace LibraryBrowser {

IndexedSearch::IndexedSearch(const std::string& pattern, SearchOptions::RegExp regExp,
                             SearchOptions::WholeWord wholeWord, SearchOptions::MatchCase matchCase, bool descriptions,
                             IndexOf indexOf)
    : m_pattern(pattern, regExp, wholeWord, matchCase), m_descriptions(descriptions), m_indexOf(std::move(indexOf))
{
}

const SearchIndex* IndexedSearch::indexOf(const std::string& productId)
{
    const auto known = m_indexes.find(productId);
    if (known != m_indexes.end())
        return known->second.get();
    return (m_indexes[productId] = m_indexOf(productId)).get();
}

std::optional<IndexedSearch::Hits> IndexedSearch::search(const std::string& productId,
                                                        const std::string& productPath)
{
    m_hits = Hits();
    m_productId = productId;
    m_productPath = productPath;
    m_names.clear();
    m_keys.clear();
    m_entered.clear();
    m_referencesEntered.clear();
    m_openReferences = 0;
    const SearchIndex* index = indexOf(productId);
    if (!index || !walk(Range{index, 0, index->productEnd(), 0}))
        return std::nullopt;
    return std::move(m_hits);
}

void IndexedSearch::visit(const SearchIndex::Object& object)
{
    const bool matched = ((object.kind & SearchIndex::Block) && m_pattern.matches(object.name))
                         || (m_descriptions && (object.kind & SearchIndex::HasDescription)
                             && m_pattern.matches(object.description));
    if (!matched)
        return;
    ++m_hits.matched;
    if (object.kind & SearchIndex::Library) {
        ++m_hits.libraries;
        return;
    }
    if (object.kind & SearchIndex::SubSystem)
        ++m_hits.subsystems;
    else if (object.kind & SearchIndex::Block)
        ++m_hits.blocks;
    else
        return;
    std::string path = m_productPath;
    for (const std::string* name : m_names)
        path.append(1, '/').append(*name);
    path.append(1, '/').append(object.name);
    m_hits.paths.push_back(std::move(path));
    if (object.name.size() > m_hits.longestName.size())
        m_hits.longestName = object.name;
}

bool IndexedSearch::walk(const Range& children)
{
    const std::vector<SearchIndex::Object>& objects = children.index->objects();
    for (std::size_t i = children.begin; i < children.end; i = children.index->subtreeEnd(i)) {
        const SearchIndex::Object& object = objects[i];
        const bool subsystem = object.kind & SearchIndex::SubSystem;
        const auto isEntered = [&] {
            return std::any_of(m_entered.begin(), m_entered.end(),
                               [&](const std::string* path) { return *path == object.path; });
        };
        if (subsystem && isEntered())
            continue;
        visit(object);
        if (!subsystem)
            continue;
        const bool reference = object.kind & SearchIndex::Reference;
        if (reference
            && (m_openReferences >= TandrilObjectDepthFirstIterator::MaximumReferenceDepth
                || !m_referencesEntered.insert(object.path).second))
            continue;
        std::string unique = m_productId;
        for (const std::string* key : m_keys)
            unique.append(1, '/').append(*key);
        unique.append(1, '/').append(object.key);
        Range below;
        if (!childrenOfObject(children, i, unique, below))
            return false;
        if (below.empty())
            continue;
        m_entered.push_back(&object.path);
        m_names.push_back(&object.name);
        m_keys.push_back(&object.key);
        m_openReferences += reference ? 1 : 0;
        const bool walked = walk(below);
        m_openReferences -= reference ? 1 : 0;
        m_keys.pop_back();
        m_names.pop_back();
        m_entered.pop_back();
        if (!walked)
            return false;
    }
    return true;
}

bool IndexedSearch::childrenOfObject(const Range& level, std::size_t position, const std::string& uniquePath,
                                     Range& children)
{
    const SearchIndex::Object& object = level.index->objects()[position];
    children = Range();
    if (!(object.kind & SearchIndex::SubSystem))
        return true;
    if (!(object.kind & SearchIndex::Reference)) {
        children = Range{level.index, position + 1, level.index->subtreeEnd(position), level.depth + 1};
        return true;
    }
    // A reference met again while its target is being found leads back to
    // itself: it shows nothing. A longer chain than any walk enters is left
    // to the walk.
    if (m_resolving.size() >= std::size_t(TandrilObjectDepthFirstIterator::MaximumReferenceDepth))
        return false;
    if (!m_resolving.insert(uniquePath).second)
        return true;
    const bool found = childrenOf(object.target, children);
    m_resolving.erase(uniquePath);
    return found;
}

bool IndexedSearch::childrenOf(const std::string& uniquePath, Range& children)
{
    children = Range();
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= uniquePath.size();) {
        const std::size_t slash = std::min(uniquePath.find('/', start), uniquePath.size());
        if (slash > start)
            parts.push_back(uniquePath.substr(start, slash - start));
        start = slash + 1;
    }
    if (parts.empty())
        return true;
    // A library a product depends on is read from that product's archive.
    const std::size_t dash = parts.front().find('-');
    const SearchIndex* index = indexOf(parts.front().substr(0, dash));
    if (!index)
        return false;
    Range level{index, 0, index->productEnd(), 0};
    if (dash != std::string::npos) {
        const std::vector<SearchIndex::Object>& objects = index->objects();
        std::size_t root = index->productEnd();
        while (root < objects.size() && objects[root].key != parts.front())
            root = index->subtreeEnd(root);
        if (root == objects.size())
            return false;
        level = Range{index, root + 1, index->subtreeEnd(root), 1};
    }
    std::string unique = parts.front();
    for (std::size_t part = 1; part < parts.size(); ++part) {
        std::size_t position = level.end;
        for (std::size_t i = level.begin; i < level.end; i = level.index->subtreeEnd(i))
            if (level.index->objects()[i].key == parts[part]) {
                position = i;
                break;
            }
        // No such object: the target is invalid and shows nothing.
        if (position == level.end)
            return true;
        unique.append(1, '/').append(parts[part]);
        Range below;
        if (!childrenOfObject(level, position, unique, below))
            return false;
        level = below;
        if (part + 1 < parts.size() && level.empty())
            return true;
    }
    children = level;
    return true;
}

} // namespace LibraryBrowser
