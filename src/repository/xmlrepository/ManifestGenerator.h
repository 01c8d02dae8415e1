#pragma once

#include "model/Model.h"

#include <deque>
#include <string>
#include <unordered_set>

namespace LibraryBrowser {

class ArchiveUpdater;
struct BlockData;
class RepositoryReport;
class WriterContext;

// Libraries of a product still to be walked, first in first out.
using LibraryWorklist = std::deque<LibraryImpl*>;
using LibrarySet = std::unordered_set<LibraryImpl*>;

// Turns what the host says about a library into manifests: one Model per
// subsystem, holding its direct children in the host's order, with icons
// requested alongside. Libraries that a library references join the
// product and its worklist.
class ManifestGenerator {
public:
    ManifestGenerator(WriterContext& context, ArchiveUpdater& archives) : m_context(context), m_archives(archives) {}

    // Walks `node` (the library itself at first) and every subsystem below it,
    // never below a library reference.
    void generateLibrary(LibraryImpl& product, LibraryImpl& library, SubSystemImpl& node, LibraryWorklist& worklist,
                         LibrarySet& usedLibraries);
    // Points each reference met in this product at the manifest of what it
    // references, where that was walked in this product.
    void resolveLibraryReferences();

    // The node for one child; null, with an error, for an unknown type.
    static BlockImpl* createNodeFromBlockData(RepositoryReport& report, const BlockData& data,
                                              const SubSystemImpl& parent, Model& model);

private:
    ModelPtr generateManifest(const SubSystemImpl& node);
    void collectLibraryReferences(LibraryImpl& product, LibraryImpl& library, const Model& model,
                                  LibraryWorklist& worklist, LibrarySet& usedLibraries);
    bool hasNoChildren(const std::string& path) const;
    // One host call per child: the first child with children decides.
    bool childrenHaveNoChildren(const std::string& path) const;

    WriterContext& m_context;
    ArchiveUpdater& m_archives;
};

} // namespace LibraryBrowser
