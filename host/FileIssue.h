#pragma once

#include <QString>

#include <string>

namespace LibraryBrowser::Host {

// What is wrong with a file, and where: line and column count from 1, and
// are 0 when the file could not be read at all.
struct FileIssue {
    QString file;
    int line = 0;
    int column = 0;
    QString field;
    QString message;

    // "file:line:column: field: message", the form of every host error line.
    std::string toString() const;
};

} // namespace LibraryBrowser::Host
