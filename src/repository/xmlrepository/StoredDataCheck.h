#pragma once

#include "model/Model.h"
#include "platform/ErrorHolder.h"

#include <QByteArray>

#include <string>

namespace LibraryBrowser {

class LibraryImpl;

// Whether what a store holds for a product can still be read: both archives
// open as zip archives, and the product's own manifest is in its archive,
// of this schema, and loads without error. Damage found here makes the
// product out of date, so that it is generated again. The check reads the
// archives' directories and one manifest, and writes nothing.
class StoredDataCheck {
public:
    // Why the product's stored data can't be read; the empty string when it
    // can, or when an archive is missing (which counts elsewhere).
    static std::string productProblem(const std::string& storeDirectory, const LibraryImpl& product);
    // Whether the store holds the product's manifests archive and all it
    // holds for the product can be read: what a failed generation keeps.
    static bool holdsReadableArchives(const std::string& storeDirectory, const LibraryImpl& product);
    // Why a manifest file can't be read, or the empty string. With `read`,
    // a readable file's model, the bytes it was read from and the warnings
    // of its load are given there.
    struct ReadManifest {
        ModelPtr model;
        QByteArray bytes;
        ErrorHolder errors;
    };
    static std::string manifestFileProblem(const std::string& path, ReadManifest* read = nullptr);

private:
    // Why manifest bytes can't serve, or the empty string.
    static std::string manifestProblem(const std::string& name, const QByteArray& bytes,
                                       ReadManifest* read = nullptr);
};

} // namespace LibraryBrowser
