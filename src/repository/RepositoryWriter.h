#pragma once

#include "repository/Library.h"
#include "repository/RepositoryReport.h"

#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

// How much a generation redoes.
enum class GenerationMode {
    Minimal = 0,         // only what changed
    IgnoreTimestamp = 1, // changed by size or checksum; file dates don't count
    Regenerate = 2,      // everything, from nothing
};

// The generating side of a repository: makes, refreshes and removes the
// stored data of products.
class RepositoryWriter {
public:
    virtual ~RepositoryWriter() = default;

    virtual void generateRepository(GenerationMode mode) = 0;
    virtual void generateRepository() { generateRepository(GenerationMode::Minimal); }
    virtual void generateProduct(const Library& product, GenerationMode mode) = 0;
    virtual void generateProduct(const Library& product) { generateProduct(product, GenerationMode::Minimal); }
    // Brings the list of products in the top-level manifest up to date with
    // the products on the host's path.
    virtual void updateProducts() = 0;
    virtual RepositoryReportPtr getRepositoryReport() const = 0;
    virtual void destroyRepository() = 0;
    virtual void destroyProduct(const Library& product) = 0;

    // A writer on a store directory, with its product list brought up to date.
    static std::shared_ptr<RepositoryWriter> open(const std::string& directory);
    static std::shared_ptr<RepositoryWriter> open(const std::string& directory, const std::vector<std::string>& hostPathList);
};

using RepositoryWriterPtr = std::shared_ptr<RepositoryWriter>;

} // namespace LibraryBrowser
