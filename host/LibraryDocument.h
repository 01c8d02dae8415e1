#pragma once

#include "BlockRecord.h"

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace LibraryBrowser::Host {

// A parsed library file. The source bytes stay with it so that an error met
// later (a reference that does not resolve) can still name line and column.
struct LibraryDocument {
    static constexpr int currentVersion = 1;

    QString filePath;
    QByteArray source;
    int version = currentVersion;
    std::string name;
    std::string description;
    // Saved from a library rather than a model: a file opened by name comes
    // back as the kind it was saved as (files on the path are libraries anyway).
    bool library = false;
    std::vector<BlockRecord> blocks;
};

} // namespace LibraryBrowser::Host
