#pragma once

#include "repository/RepositoryReader.h"
#include "repository/xmlrepository/XMLRepositoryReaderCache.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace LibraryBrowser {

// The reader of one store directory. Its reads go to its cache, which loads
// the top-level manifest and the products' archives on demand. New handles
// are bound to the cache of the outer reader: the repository the reader is
// part of, or the reader itself. The reader also decides whether what its
// store holds for a product still agrees with the host's disk.
class XMLRepositoryReader : public RepositoryReader {
public:
    explicit XMLRepositoryReader(std::string directory);
    XMLRepositoryReader(std::string directory, RepositoryReportPtr report);
    XMLRepositoryReader(std::string directory, RepositoryReportPtr report, RepositoryReader* outerReader);

    bool exists() override;
    using RepositoryReader::isProductUpToDate;
    bool isProductUpToDate(const TandrilObject& product, bool ignoreTimestamp) override;
    TandrilObjectIterator getAllProductsIterator() override;
    TandrilObjectIterator getProductsIterator() override;
    using RepositoryReader::getChildrenIterator;
    TandrilObjectIterator getChildrenIterator(const TandrilObject& object) override;
    BlockIconPtr getIcon(const TandrilObject& object) override;
    std::shared_ptr<const SearchIndex> getSearchIndex(const TandrilObject& product) override;
    RepositoryReportPtr getRepositoryReport() const override { return m_report; }
    ReaderCache* getCache() override { return m_cache.get(); }

    const std::string& directory() const { return m_directory; }
    XMLRepositoryReaderCache& readerCache() { return *m_cache; }
    // The top-level manifest, read on first use and kept; null while the
    // store has none or it can't be read.
    ModelPtr topLevelManifest() { return m_cache->getTopLevelModel(); }
    // The schema signature text of the top-level manifest as it is on disk
    // now, or the empty string.
    std::string getVersion() { return m_cache->getVersion(); }

    // For the writer: whether the library of that path among the product's
    // dependencies is up to date; false for an unknown product or library.
    bool isLibraryUpToDate(const TandrilObject& product, const std::string& path, bool ignoreTimestamp);

    // This store's own record of a product: a handle may stand for the
    // other store's node when both hold the product.
    LibraryImpl* storedProduct(const TandrilObject& product);

private:
    bool isLibraryTreeUpToDate(const Library& library, LibraryImpl& node, bool ignoreTimestamp);
    bool compareLibrary(const LibraryImpl& library, bool ignoreTimestamp);

    struct StringIdHash {
        std::size_t operator()(const StringId& id) const { return id.hash(); }
    };

    std::string m_directory;
    RepositoryReportPtr m_report;
    std::unique_ptr<XMLRepositoryReaderCache> m_cache;
    // The top-level manifest's products by unique path, for the model and
    // revision it was made from: a search of every node for each of a
    // thousand products' up-to-date tests grew with the square of the store.
    std::weak_ptr<const Model> m_indexedModel;
    std::uint64_t m_indexedRevision = 0;
    std::unordered_map<StringId, LibraryImpl*, StringIdHash> m_productIndex;
    // The palettes whose members are being judged now, by unique path: a
    // palette met again inside its own judgement closes a cycle.
    std::vector<std::string> m_palettesJudged;
};

using XMLRepositoryReaderPtr = std::shared_ptr<XMLRepositoryReader>;

} // namespace LibraryBrowser
