#pragma once

#include "FileIssue.h"
#include "JsonFieldReader.h"
#include "LibraryDocument.h"

#include <QJsonObject>

#include <memory>

namespace LibraryBrowser::Host {

// Reads a block library file and checks it against the schema of
// docs/host-formats.md. References are checked for form only here; whether
// their targets exist is known only when they are resolved.
class LibraryFileParser {
public:
    static constexpr const char* format = "tandril-library";
    static constexpr int maximumDepth = 64;

    // A document, or null with the issue filled in. With an expected name the
    // library's name must equal it (the file's base name).
    static std::shared_ptr<LibraryDocument> parseFile(const QString& path, const std::string& expectedName,
                                                      FileIssue& issue);
    static std::shared_ptr<LibraryDocument> parseBytes(const QString& path, const QByteArray& bytes,
                                                       const std::string& expectedName, FileIssue& issue);
    // A library name: not empty, and no slash, line feed or backslash.
    static bool isValidLibraryName(const std::string& name);

private:
    LibraryFileParser() = default;

    std::shared_ptr<LibraryDocument> parse(const QString& path, const QByteArray& bytes, const QJsonObject& top,
                                           const std::string& expectedName, FileIssue& issue);
    void readBlocks(const QJsonArray& array, const FieldPath& at, int depth, std::vector<BlockRecord>& out);
    void readBlock(const QJsonObject& object, const FieldPath& at, int depth, int index, BlockRecord& out);
    void readPosition(const QJsonObject& object, const FieldPath& at, int index, BlockPosition& out);
    void readIcon(const QJsonObject& object, const FieldPath& at, IconSpec& out);
    void readTarget(const QJsonObject& object, const FieldPath& at, ReferenceTarget& out);

    JsonFieldReader m_reader;
};

} // namespace LibraryBrowser::Host
