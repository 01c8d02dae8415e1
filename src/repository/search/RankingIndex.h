#pragma once

#include "repository/TandrilObject.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace LibraryBrowser {

class RepositoryReader;

// What the ranking engine knows of the repository's blocks, read once
// through a reader so that a keystroke is served from memory: per block its
// handle, its name lower-cased with its word starts, the words of its
// description and of its library path, in the depth-first order of the
// tree. A block met several times (through library references, or stored
// with several products) is kept once, where the walk first met it, as
// blocks are known to the host by their path. Libraries, products, palettes
// and library references are not blocks to insert and are left out; the
// blocks of a referenced library are in the index as themselves.
//
// The index does not follow later changes of the store: whoever regenerates
// products builds a new one. Its handles stay usable, as all handles do.
class RankingIndex {
public:
    // A span of one of the index's pools.
    struct Range {
        std::uint32_t offset = 0;
        std::uint32_t count = 0;
    };

    struct Entry {
        TandrilObject block;
        Range name;          // bytes of the lower-cased name in the text pool
        Range wordStarts;    // byte offsets into the name, in the offset pool
        Range description;   // distinct word ids of the description, in the word pool
        std::uint32_t library = 0;
        std::uint32_t nameCharacters = 0;
        bool subsystem = false;
    };

    static std::shared_ptr<const RankingIndex> build(RepositoryReader& reader);

    std::size_t size() const { return m_entries.size(); }
    const Entry& entry(std::size_t index) const { return m_entries[index]; }
    std::string_view name(std::size_t index) const;
    const std::uint32_t* wordStartsBegin(std::size_t index) const;
    const std::uint32_t* wordStartsEnd(std::size_t index) const;
    const std::uint32_t* descriptionBegin(std::size_t index) const;
    const std::uint32_t* descriptionEnd(std::size_t index) const;
    // The library paths, each as its distinct words; an entry names its own
    // by `Entry::library`.
    const std::vector<std::vector<std::uint32_t>>& libraries() const { return m_libraries; }

    // Every distinct lower-cased word of the descriptions and library paths;
    // the word pools hold positions in it.
    const std::vector<std::string>& vocabulary() const { return m_vocabulary; }

    // The entry of a block path, or size() if no block of the index has it.
    std::size_t findPath(const std::string& path) const;

    // The bytes the index holds, its handles' share of the caches' handle
    // tables left out.
    std::size_t memoryBytes() const;

private:
    class Builder;

    std::vector<Entry> m_entries;
    std::string m_text;
    std::vector<std::uint32_t> m_offsets;
    std::vector<std::uint32_t> m_words;
    std::vector<std::vector<std::uint32_t>> m_libraries;
    std::vector<std::string> m_vocabulary;
    // (hash of the block path, entry), sorted: paths are looked up only for
    // favourites and recents, so their text is read from the handle.
    std::vector<std::pair<std::uint64_t, std::uint32_t>> m_pathHashes;
};

using RankingIndexPtr = std::shared_ptr<const RankingIndex>;

} // namespace LibraryBrowser
