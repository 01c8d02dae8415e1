#pragma once

#include "repository/RepositoryReader.h"

#include <QByteArray>

#include <string>

namespace LibraryBrowser {

// The reader of one store directory. Today it knows the store's top-level
// manifest: whether there is one, its schema version and its products. The
// read caches, handles and object lookups below the top level come with
// issue 4, the up-to-date decision with issue 6.
class XMLRepositoryReader : public RepositoryReader {
public:
    XMLRepositoryReader(std::string directory, RepositoryReportPtr report);

    bool exists() override;
    using RepositoryReader::isProductUpToDate;
    bool isProductUpToDate(const LibraryImpl& product, bool ignoreTimestamp) override;
    ProductRecordList getAllProducts() override;
    RepositoryReportPtr getRepositoryReport() const override { return m_report; }

    const std::string& directory() const { return m_directory; }
    // The top-level manifest, read on first use and kept; null while the
    // store has none or it can't be read (the next call tries again).
    ModelPtr topLevelManifest();
    // The schema signature text of the top-level manifest as it is on disk
    // now, or the empty string.
    std::string version();
    // Drops the kept manifest after the store has changed on disk.
    void forgetTopLevelManifest() { m_topLevelManifest.reset(); }

private:
    // The bytes of the top-level manifest, read from a private copy so that
    // the reader never holds the file a writer replaces.
    QByteArray readTopLevelBytes();

    std::string m_directory;
    RepositoryReportPtr m_report;
    ModelPtr m_topLevelManifest;
};

using XMLRepositoryReaderPtr = std::shared_ptr<XMLRepositoryReader>;

} // namespace LibraryBrowser
