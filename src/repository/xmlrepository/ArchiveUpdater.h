#pragma once

#include "platform/ZipArchive.h"

#include <QByteArray>
#include <string>
#include <vector>

namespace LibraryBrowser {

class LibraryImpl;
class Model;
class RepositoryReport;
class SubSystemImpl;
class WriterContext;

// The two archives of a product, manifests and icons. They are worked on as
// copies in the writer's temporary directory and replace the store's files
// only when published, so that a reader never holds a half-written archive.
// Every operation is harmless on closed archives: the driver goes on after
// an archive could not be opened.
class ArchiveUpdater {
public:
    explicit ArchiveUpdater(WriterContext& context) : m_context(context) {}

    // Asks the host for one icon file per node of the model.
    void generateIcons(const SubSystemImpl& node, const Model& model);
    // Writes the manifest of each subsystem walked to the temporary directory.
    // False, and an error, if one could not be written.
    bool saveManifests();
    // Copies the store's archives of the product to the temporary directory
    // and opens the copies; both stay closed if a copy fails. `fresh` starts
    // from empty archives instead and leaves the store's as they are until
    // the new ones are published.
    void openArchives(LibraryImpl& product, bool fresh = false);
    // Adds the files made to the open archives. False, and an error, if a
    // file or an archive could not be written.
    bool updateArchives();
    // Closes both archives and puts them in the store. An archive for which
    // no file was made this time is removed from the store. False, and an
    // error, if either could not be closed or put in place.
    bool publishArchives(LibraryImpl& product);
    // Removes the store's archives of the product and clears its file
    // records, so that it counts as out of date. It stays listed.
    void destroyProductData(LibraryImpl& product);
    // Clears the file records of the product and its libraries, so that it
    // counts as out of date; its archives stay as they are.
    static void forgetFileRecords(LibraryImpl& product);
    // Takes a library's manifest and icons, and those of its subsystems, out
    // of the open archives, led by the stored manifests themselves.
    void removeLibraryFromArchive(SubSystemImpl& library);
    // False, and an error, if the file is there and can't be removed.
    bool removeArchive(const std::string& path);

    // Saves a manifest serialized in the compact form, making its directory
    // first. False, and an error, on failure.
    static bool saveManifest(RepositoryReport& report, const QByteArray& bytes, const std::string& path);

private:
    // Whether the product's repository directory stays inside the store;
    // an error in the report if not.
    bool staysInStore(const LibraryImpl& product) const;
    ZipArchive initArchive(LibraryImpl& product, const std::string& path);
    bool updateArchive(ZipArchive& archive, const std::vector<std::string>& files);
    bool closeArchive(ZipArchive& archive);
    std::string storePath(const std::string& spec) const;
    std::string temporaryPath(const std::string& spec) const;

    WriterContext& m_context;
};

} // namespace LibraryBrowser
