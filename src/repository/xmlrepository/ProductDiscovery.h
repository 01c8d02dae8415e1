#pragma once

#include "model/Model.h"

#include <string>

namespace LibraryBrowser {

class ArchiveUpdater;
struct ProductsData;
class WriterContext;
class XMLRepositoryWriter;

// Reconciles the top-level manifest with the products the host finds on its
// path: adds new ones, refreshes the stored properties of known ones, drops
// those that are gone, and decides which stand at the top of the tree. It
// never looks into a library.
class ProductDiscovery {
public:
    ProductDiscovery(XMLRepositoryWriter& writer, WriterContext& context, ArchiveUpdater& archives)
        : m_writer(writer), m_context(context), m_archives(archives)
    {
    }

    // With a productName, only the entry and stored node of that name (or
    // model file) are touched. Writes the top-level manifest every time.
    void syncTopLevelManifest(int mode, const std::string& productName);

private:
    // False if the store's schema differs and its manifest can't be removed.
    bool discardIncompatibleStore();
    // The product's dependencies and the node itself go, and its data
    // unless `keepArchives`.
    void removeProduct(Model& model, LibraryImpl* node, bool keepArchives = false);
    void setProperties(LibraryImpl& node, const ProductsData& data, std::size_t entry);
    static void mergeFileDependencies(LibraryImpl& node, const FileInfoVector& wanted);

    XMLRepositoryWriter& m_writer;
    WriterContext& m_context;
    ArchiveUpdater& m_archives;
};

} // namespace LibraryBrowser
