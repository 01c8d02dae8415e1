#pragma once

#include "repository/RepositoryWriter.h"
#include "repository/xmlrepository/ArchiveUpdater.h"
#include "repository/xmlrepository/LibraryRecords.h"
#include "repository/xmlrepository/ManifestGenerator.h"
#include "repository/xmlrepository/ProductDiscovery.h"
#include "repository/xmlrepository/WriterContext.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"

#include <memory>
#include <string>
#include <vector>

namespace LibraryBrowser {

// The writer of one store directory, and the order of all generation work:
// it reconciles the product list with the host, decides per product and per
// library what is out of date, has the libraries walked and their icons
// rendered, fills the product's archives on private copies and publishes
// them, and keeps the top-level manifest true. Nothing reaches the store but
// finished archives and the top-level manifest, each by a checked copy.
class XMLRepositoryWriter : public RepositoryWriter {
public:
    // The identifier of the warning that tells of a product repaired.
    static constexpr const char* RepairedId = "Tandril:LibraryBrowser:Repaired";

    XMLRepositoryWriter(std::string directory, RepositoryReportPtr report,
                        std::vector<std::string> hostPathList = {});
    // The form a repository uses: `activeReader` (the repository itself)
    // answers for palettes, `shippedDirectory` gives the dates a writable
    // copy shadows.
    XMLRepositoryWriter(std::string directory, RepositoryReportPtr report, std::string shippedDirectory,
                        RepositoryReader* activeReader, std::vector<std::string> hostPathList);
    ~XMLRepositoryWriter() override;

    using RepositoryWriter::generateProduct;
    using RepositoryWriter::generateRepository;
    void generateRepository(GenerationMode mode) override;
    void generateProduct(const Library& product, GenerationMode mode) override;
    void updateProducts() override;
    RepositoryReportPtr getRepositoryReport() const override { return m_report; }
    void destroyRepository() override;
    void destroyProduct(const Library& product) override;
    // By the product's path.
    void destroyProduct(const std::string& name);

    const std::string& directory() const { return m_directory; }
    const std::vector<std::string>& hostPathList() const { return m_hostPathList; }
    XMLRepositoryReader& reader() { return *m_reader; }
    // The repository's reader of the shipped store, which the writer's own
    // reader of it takes the top-level manifest from; it must outlive the
    // writer.
    void readShippedTopLevelFrom(XMLRepositoryReader& shipped);

    // Saves the model as the store's top-level manifest, by way of a private
    // copy, and tells the read caches. `unchanged` promises that the model
    // is the one the store's reader loaded, untouched since: nothing is
    // compared or written then.
    void updateTopLevelManifest(const Model& model, bool unchanged = false);

private:
    void generateProductInternal(const ModelPtr& topLevel, LibraryImpl& product, GenerationMode mode);
    void generateUpToDateProduct(const ModelPtr& topLevel, LibraryImpl& product);
    // The first error of the walk of a library, or the empty string.
    std::string generateLibraries(LibraryImpl& product, const TandrilObject& handle, bool ignoreTimestamp,
                                  LibrarySet& usedLibraries);
    void generatePalette(const ModelPtr& topLevel, PaletteImpl& palette);
    // After a failed run over readable archives: says why, leaves the store's
    // archives and top level as they were, and marks the product out of date.
    void keepLastArchives(const LibraryImpl& product, const std::string& reason);
    // Drops the libraries no longer referenced from the product's tree and
    // their data.
    void updateProductDependencies(LibraryImpl& product, const LibrarySet& usedLibraries);
    void updateLastModified(LibraryImpl& library);
    void clearGenerationState();
    // The stored node of a product by path, with the model that holds it.
    LibraryImpl* storedProduct(const std::string& path, ModelPtr& topLevel);

    std::string m_directory;
    std::string m_shippedDirectory;
    std::vector<std::string> m_hostPathList;
    RepositoryReportPtr m_report;
    std::shared_ptr<XMLRepositoryReader> m_reader;
    std::shared_ptr<XMLRepositoryReader> m_shippedReader;
    RepositoryReader* m_activeReader;
    WriterContext m_context;
    ArchiveUpdater m_archives;
    LibraryRecords m_records;
    ManifestGenerator m_manifests;
    ProductDiscovery m_discovery;
    // The palettes being generated now, by path: a member that is one of
    // them closes a cycle and is not generated again inside itself.
    std::vector<std::string> m_palettesGenerating;
};

using XMLRepositoryWriterPtr = std::shared_ptr<XMLRepositoryWriter>;

} // namespace LibraryBrowser
