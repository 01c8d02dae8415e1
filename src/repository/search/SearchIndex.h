#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace LibraryBrowser {

// What a name search meets below one product, in the order of the
// depth-first walk through its own manifests: each object's kind, depth,
// shown name and description, and what the walk needs to follow a library
// reference (the subsystems' names and text paths, the references' targets).
// The store's writer keeps one in the product's manifests archive, so that a
// search of a thousand products reads one small entry each instead of every
// manifest. Display paths are rebuilt from the names, as loading does.
class SearchIndex {
public:
    // The entry of the manifests archive that holds it.
    static constexpr const char* EntryName = "lb_search_index.bin";

    enum Kind : std::uint8_t { Block = 1, SubSystem = 2, Library = 4, HasDescription = 8, Reference = 16,
                         // A library the product depends on, after the product's own objects.
                         Dependency = 32 };

    struct Object {
        // The shown name.
        std::string name;
        std::string description;
        // Of subsystems: the name in unique paths, and the text path.
        std::string key;
        std::string path;
        // Of references: the unique path of the target.
        std::string target;
        std::uint16_t depth = 0;
        std::uint8_t kind = 0;
    };

    // How deep objects may lie: far below what library files nest, and a
    // bound on what a search of a hostile index recurses into.
    static constexpr int MaximumDepth = 256;

    // Objects are added in walk order; a depth more than one below the last
    // object's, or past the maximum, is refused.
    bool add(Object object);
    const std::vector<Object>& objects() const { return m_objects; }

    QByteArray toBytes() const;
    // Nothing, with the reason in `problem`, for bytes that are no index of
    // this version.
    static std::optional<SearchIndex> fromBytes(const QByteArray& bytes, std::string& problem);

    // The end of the product's own objects, where its dependencies begin.
    std::size_t productEnd() const { return m_productEnd; }
    // The end of the object's subtree: the position of the next object not
    // below it.
    std::size_t subtreeEnd(std::size_t position) const;

private:
    std::vector<Object> m_objects;
    std::vector<std::uint32_t> m_subtreeEnds;
    std::size_t m_productEnd = 0;
    // The objects whose subtree may still grow, outermost first.
    std::vector<std::uint32_t> m_open;
};

} // namespace LibraryBrowser
