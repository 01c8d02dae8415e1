#pragma once

#include "model/Model.h"
#include "platform/ZipArchive.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser {

class LibraryImpl;
class SubSystemImpl;
class RepositoryReport;
class SearchIndex;

// Puts a product's search index into its manifests archive while the archive
// is still the writer's private copy, so that the index is published with
// the manifests it was made from and is never older than they are. The index
// is made from the manifests as a reader would load them; library references
// are kept with their targets, which a search follows into the target
// product's index. A palette, whose members are computed, gets none, and
// searches read its manifests.
class SearchIndexWriter {
public:
    explicit SearchIndexWriter(RepositoryReport& report) : m_report(report) {}

    using WrittenModels = std::vector<std::pair<SubSystemImpl*, ModelPtr>>;

    // `written` are the models of the manifests made this run, which the
    // open archive holds already; the others are read from it. False, and an
    // error, only if the archive would be left with an index that no longer
    // fits it.
    bool write(const LibraryImpl& product, ZipArchive& manifests, const WrittenModels& written);

    // The index of the product's manifests; nothing where it can have none.
    std::optional<SearchIndex> make(const LibraryImpl& product);

private:
    // The manifest read from the archive; null, with `missing` set if the
    // archive has no such entry.
    ModelPtr readManifest(const std::string& entry, bool& missing);
    // Adds the objects of the manifest and those below them, in walk order.
    bool addChildren(const std::string& entry, bool empty, int depth, std::vector<std::string>& reading,
                     SearchIndex& index);
    bool addManifest(const std::string& entry, bool empty, int depth, std::vector<std::string>& reading,
                     SearchIndex& index);

    RepositoryReport& m_report;
    ZipArchive* m_archive = nullptr;
    std::unordered_map<std::string, const Model*> m_written;
};

} // namespace LibraryBrowser
