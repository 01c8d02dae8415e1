#pragma once

#include "repository/RepositoryWriter.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"

#include <string>
#include <vector>

namespace LibraryBrowser {

// The writer of one store directory. It can remove what the store holds, a
// product's data or all of it. Generation from the host and the comparison
// of the products on the host's path with the top-level manifest are
// issue 7: those verbs say in the report that they did nothing.
class XMLRepositoryWriter : public RepositoryWriter {
public:
    XMLRepositoryWriter(std::string directory, RepositoryReportPtr report,
                        std::vector<std::string> hostPathList = {});

    using RepositoryWriter::generateProduct;
    using RepositoryWriter::generateRepository;
    void generateRepository(GenerationMode mode) override;
    void generateProduct(const Library& product, GenerationMode mode) override;
    void updateProducts() override;
    RepositoryReportPtr getRepositoryReport() const override { return m_report; }
    void destroyRepository() override;
    void destroyProduct(const Library& product) override;

    const std::string& directory() const { return m_directory; }
    const std::vector<std::string>& hostPathList() const { return m_hostPathList; }

private:
    // Every cache of the store reads the top level again.
    void forgetTopLevelManifest();
    // Removes the product's archives from the store and clears the file
    // records by which its data would count as up to date. The product
    // stays in the top-level manifest.
    void destroyProductData(LibraryImpl& product);
    void removeArchive(const std::string& path);
    // Writes the manifest to a private copy first and publishes it by the
    // checked copy, so that no reader meets a half-written file.
    void saveTopLevelManifest(const Model& manifest);

    std::string m_directory;
    RepositoryReportPtr m_report;
    std::vector<std::string> m_hostPathList;
    XMLRepositoryReader m_reader;
};

using XMLRepositoryWriterPtr = std::shared_ptr<XMLRepositoryWriter>;

} // namespace LibraryBrowser
