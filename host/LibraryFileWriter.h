#pragma once

#include "LibraryDocument.h"

#include <QByteArray>
#include <QString>

namespace LibraryBrowser::Host {

// Writes a library document in the file format that LibraryFileParser reads,
// so that what the host saves it can open again.
class LibraryFileWriter {
public:
    static QByteArray toBytes(const LibraryDocument& document);
    // Writes through a temporary file that replaces the target only when
    // complete, so a failure leaves the old file as it was. False with a
    // reason on failure.
    static bool save(const LibraryDocument& document, const QString& path, QString& error);
};

} // namespace LibraryBrowser::Host
