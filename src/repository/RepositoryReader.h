#pragma once

#include "repository/ProductRecord.h"
#include "repository/RepositoryReport.h"

#include <memory>
#include <string>

namespace LibraryBrowser {

// The asking side of a repository. The object-level operations (children,
// icons, objects by path, depth-first walks and search) arrive with the
// handles and iterators of issue 4; until then products are answered as
// records of the top-level manifest.
class RepositoryReader {
public:
    virtual ~RepositoryReader() = default;

    // There is a readable top-level manifest.
    virtual bool exists() = 0;

    virtual bool isProductUpToDate(const LibraryImpl& product, bool ignoreTimestamp) = 0;
    virtual bool isProductUpToDate(const LibraryImpl& product) { return isProductUpToDate(product, false); }
    // False for a name that names no product.
    virtual bool isProductUpToDate(const std::string& name);

    // Every entry of the top level, unfiltered, in order.
    virtual ProductRecordList getAllProducts() = 0;
    // The entries that are not marked invalid.
    virtual ProductRecordList getProducts();
    // The product that an object id starts with: the id is cut at the first
    // "/" and then at the first "-", and matched against the products'
    // unique paths and display paths. A null record if none fits.
    virtual ProductRecord getProduct(const std::string& id);

    virtual RepositoryReportPtr getRepositoryReport() const = 0;

    // A reader on a store directory with a report of its own. Nothing on
    // disk is touched; a missing store gives a reader that doesn't exist.
    static std::shared_ptr<RepositoryReader> open(const std::string& directory);
};

using RepositoryReaderPtr = std::shared_ptr<RepositoryReader>;

} // namespace LibraryBrowser
