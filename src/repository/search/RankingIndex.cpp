#include "repository/search/RankingIndex.h"

#include "repository/RepositoryReader.h"
#include "repository/search/RankingText.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <unordered_set>

namespace LibraryBrowser {

namespace {

std::uint64_t pathHash(std::string_view path) { return std::hash<std::string_view>()(path); }

// Where a block lives, as the tree shows it: its display path without the
// block's own name.
std::string libraryPathOf(const std::string& displayPath, const std::string& displayName)
{
    if (displayPath.size() > displayName.size() &&
        displayPath.compare(displayPath.size() - displayName.size(), displayName.size(), displayName) == 0)
        return displayPath.substr(0, displayPath.size() - displayName.size());
    const std::size_t slash = displayPath.rfind('/');
    return slash == std::string::npos ? std::string() : displayPath.substr(0, slash);
}

} // namespace

class RankingIndex::Builder {
public:
    explicit Builder(RankingIndex& index) : m_index(index) {}

    void add(const TandrilObject& block)
    {
        // One block, several places: a library that products reference is
        // stored with each of them, and the walk goes through references.
        std::string path = block.getPath();
        const std::uint64_t hash = pathHash(path);
        if (!m_seen.insert(std::move(path)).second)
            return;
        Entry entry;
        entry.block = block;
        entry.subsystem = block.isSubSystem();
        const std::string displayName = block.getDisplayName();
        const RankingText::FoldedName folded = RankingText::foldName(displayName);
        entry.name = {std::uint32_t(m_index.m_text.size()), std::uint32_t(folded.lowered.size())};
        m_index.m_text += folded.lowered;
        entry.wordStarts = {std::uint32_t(m_index.m_offsets.size()), std::uint32_t(folded.wordStarts.size())};
        m_index.m_offsets.insert(m_index.m_offsets.end(), folded.wordStarts.begin(), folded.wordStarts.end());
        entry.nameCharacters = std::uint32_t(folded.characters);
        const std::vector<std::uint32_t> description = wordIds(block.getDescription());
        entry.description = {std::uint32_t(m_index.m_words.size()), std::uint32_t(description.size())};
        m_index.m_words.insert(m_index.m_words.end(), description.begin(), description.end());
        entry.library = library(libraryPathOf(block.getDisplayPath(), displayName));
        m_index.m_pathHashes.emplace_back(hash, std::uint32_t(m_index.m_entries.size()));
        m_index.m_entries.push_back(std::move(entry));
    }

    void finish()
    {
        std::sort(m_index.m_pathHashes.begin(), m_index.m_pathHashes.end());
        m_index.m_entries.shrink_to_fit();
        m_index.m_text.shrink_to_fit();
        m_index.m_offsets.shrink_to_fit();
        m_index.m_words.shrink_to_fit();
        m_index.m_libraries.shrink_to_fit();
        m_index.m_vocabulary.shrink_to_fit();
    }

private:
    std::vector<std::uint32_t> wordIds(std::string_view text)
    {
        std::vector<std::uint32_t> ids;
        for (std::string& word : RankingText::words(text)) {
            const auto [place, added] = m_vocabulary.emplace(word, std::uint32_t(m_index.m_vocabulary.size()));
            if (added)
                m_index.m_vocabulary.push_back(std::move(word));
            if (std::find(ids.begin(), ids.end(), place->second) == ids.end())
                ids.push_back(place->second);
        }
        return ids;
    }

    std::uint32_t library(const std::string& path)
    {
        const auto [place, added] = m_libraryIds.emplace(path, std::uint32_t(m_index.m_libraries.size()));
        if (added)
            m_index.m_libraries.push_back(wordIds(path));
        return place->second;
    }

    RankingIndex& m_index;
    std::unordered_set<std::string> m_seen;
    std::unordered_map<std::string, std::uint32_t> m_vocabulary;
    std::unordered_map<std::string, std::uint32_t> m_libraryIds;
};

std::shared_ptr<const RankingIndex> RankingIndex::build(RepositoryReader& reader)
{
    auto index = std::make_shared<RankingIndex>();
    Builder builder(*index);
    for (TandrilObjectIterator it = reader.getDepthFirstIterator(); it.isValidIterator(); it.next()) {
        const TandrilObject object = it.current();
        if (object.isBlock() && !object.isLibrary() && !object.isLibraryRef() && object.isValid())
            builder.add(object);
    }
    builder.finish();
    return index;
}

std::string_view RankingIndex::name(std::size_t index) const
{
    const Range& range = m_entries[index].name;
    return std::string_view(m_text).substr(range.offset, range.count);
}

const std::uint32_t* RankingIndex::wordStartsBegin(std::size_t index) const
{
    return m_offsets.data() + m_entries[index].wordStarts.offset;
}

const std::uint32_t* RankingIndex::wordStartsEnd(std::size_t index) const
{
    return wordStartsBegin(index) + m_entries[index].wordStarts.count;
}

const std::uint32_t* RankingIndex::descriptionBegin(std::size_t index) const
{
    return m_words.data() + m_entries[index].description.offset;
}

const std::uint32_t* RankingIndex::descriptionEnd(std::size_t index) const
{
    return descriptionBegin(index) + m_entries[index].description.count;
}

std::size_t RankingIndex::findPath(const std::string& path) const
{
    const std::uint64_t hash = pathHash(path);
    auto it = std::lower_bound(m_pathHashes.begin(), m_pathHashes.end(), std::make_pair(hash, std::uint32_t(0)));
    for (; it != m_pathHashes.end() && it->first == hash; ++it) {
        if (m_entries[it->second].block.getPath() == path)
            return it->second;
    }
    return size();
}

std::size_t RankingIndex::memoryBytes() const
{
    std::size_t bytes = sizeof(*this) + m_entries.capacity() * sizeof(Entry) + m_text.capacity() +
                        (m_offsets.capacity() + m_words.capacity()) * sizeof(std::uint32_t) +
                        m_pathHashes.capacity() * sizeof(m_pathHashes.front()) +
                        m_libraries.capacity() * sizeof(m_libraries.front()) +
                        m_vocabulary.capacity() * sizeof(std::string);
    for (const std::vector<std::uint32_t>& words : m_libraries)
        bytes += words.capacity() * sizeof(std::uint32_t);
    for (const std::string& word : m_vocabulary)
        bytes += word.capacity() > 15 ? word.capacity() + 1 : 0;
    return bytes;
}

} // namespace LibraryBrowser
