#pragma once

#include "StoreFixture.h"
#include "repository/xmlrepository/XMLRepositoryReader.h"

#include <map>
#include <string>

namespace LibraryBrowser::Testing {

// A store written by hand, without the writer: a top-level manifest and the
// products' zip archives made with the serializer and libzip.
//
//   Alpha (library, top level)            manifests + icons archive
//     Gain      block, icon "icons/Gain.svg"
//     Scope     block, icon "icons/Scope.svg" (missing from the archive)
//     Sub       subsystem
//       X         block
//       Back      reference to Alpha/Sub, with Sub's path: closes a cycle
//     Ref1      reference to Alpha-Shared
//     Ref2      reference to Alpha-Shared
//   Alpha-Shared (library, no product; Alpha's dependency)
//     S1, S2    blocks
//   Beta (library, top level)             manifests archive only
//     B1        block
//   Tools (palette, not top level): children "Beta", "Tools", "Nope"
class HandMadeStore : public StoreFixture {
protected:
    using Entries = std::map<std::string, QByteArray>;

    void SetUp() override;

    TandrilObject object(const std::string& id) { return reader->getTandrilObject(id); }
    // Writes the store above into the directory.
    void writeStore(const std::string& directory);
    // Replaces one entry of a product's manifests archive.
    void replaceManifest(const std::string& product, const std::string& entry, const QByteArray& bytes);

    static void writeArchive(const std::string& file, const Entries& entries);
    static QByteArray svg(const std::string& label);
    // The names of the objects of a walk, each indented by two blanks per
    // "/" in its unique path unless flat.
    static std::vector<std::string> names(TandrilObjectIterator it, bool flat = false);

    std::shared_ptr<XMLRepositoryReader> reader;
    Entries alphaManifests;
    Entries betaManifests;
};

} // namespace LibraryBrowser::Testing
