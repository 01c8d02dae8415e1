#pragma once

#include "FieldPath.h"
#include "FileIssue.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace LibraryBrowser::Host {

// Reading a JSON file whose top is an object, with errors that say where.
class JsonFile {
public:
    // False, with the issue filled in, when the file cannot be read, is not
    // JSON, or its top is not an object.
    static bool read(const QString& path, QByteArray& bytes, QJsonObject& top, FileIssue& issue);
    // An issue about the value at a field of a file already read.
    static FileIssue issueAt(const QString& path, const QByteArray& bytes, const FieldPath& field,
                             const QString& message);
};

} // namespace LibraryBrowser::Host
