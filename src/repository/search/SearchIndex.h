#pragma once

#include "repository/search/SearchOptions.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace LibraryBrowser {

// What a name search meets below one product, in the order of the
// depth-first walk: each object's kind, depth, shown name and description.
// The store's writer keeps one in the product's manifests archive, so that a
// search of a thousand products reads one small entry each instead of every
// manifest. Display paths are rebuilt from the names, as loading does.
class SearchIndex {
public:
    // The entry of the manifests archive that holds it.
    static constexpr const char* EntryName = "lb_search_index.bin";

    enum Kind : std::uint8_t { Block = 1, SubSystem = 2, Library = 4, HasDescription = 8 };

    struct Object {
        std::string name;
        std::string description;
        std::uint16_t depth = 0;
        std::uint8_t kind = 0;
    };

    // What a search found: all objects matched, and of those the libraries
    // (only counted), subsystems and blocks, the longest name among the last
    // two and their display paths in walk order.
    struct Hits {
        int matched = 0;
        int libraries = 0;
        int subsystems = 0;
        int blocks = 0;
        std::string longestName;
        std::vector<std::string> paths;
    };

    // Objects are added in walk order; a depth more than one below the last
    // object's is refused.
    bool add(Object object);
    const std::vector<Object>& objects() const { return m_objects; }

    QByteArray toBytes() const;
    // Nothing, with the reason in `problem`, for bytes that are no index of
    // this version.
    static std::optional<SearchIndex> fromBytes(const QByteArray& bytes, std::string& problem);

    // The objects whose shown name, or description where `descriptions` is
    // set, has a match of the pattern; paths start at `productPath`.
    Hits search(const std::string& pattern, SearchOptions::RegExp regExp, SearchOptions::WholeWord wholeWord,
                SearchOptions::MatchCase matchCase, bool descriptions, const std::string& productPath) const;

private:
    std::vector<Object> m_objects;
};

} // namespace LibraryBrowser
