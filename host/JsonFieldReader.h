#pragma once

#include "FieldPath.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <string>
#include <vector>

namespace LibraryBrowser::Host {

// Typed reading of JSON objects for the schema checks of the host's files.
// The first mismatch is kept with the field it concerns; every later read
// answers false, so a parser can read on and test once at the end of a part.
class JsonFieldReader {
public:
    bool failed() const { return m_failed; }
    const FieldPath& errorField() const { return m_errorField; }
    const QString& errorMessage() const { return m_errorMessage; }
    void fail(const FieldPath& field, const QString& message);

    // Only these keys may appear in the object.
    bool checkKeys(const QJsonObject& object, const FieldPath& at, std::initializer_list<const char*> allowed);

    bool requiredString(const QJsonObject& object, const FieldPath& at, const char* key, std::string& out);
    // Leaves out as it is when the key is absent; tells whether it was there.
    bool optionalString(const QJsonObject& object, const FieldPath& at, const char* key, std::string& out);
    bool optionalBool(const QJsonObject& object, const FieldPath& at, const char* key, bool& out);
    bool optionalCount(const QJsonObject& object, const FieldPath& at, const char* key, int maximum, int& out);
    bool optionalStringList(const QJsonObject& object, const FieldPath& at, const char* key,
                            std::vector<std::string>& out);
    bool requiredArray(const QJsonObject& object, const FieldPath& at, const char* key, QJsonArray& out);
    bool optionalObject(const QJsonObject& object, const FieldPath& at, const char* key, QJsonObject& out);
    // The format name and a version this host reads.
    bool header(const QJsonObject& object, const char* format, int maximumVersion, int& version);

private:
    static QString typeName(const QJsonValue& value);

    bool m_failed = false;
    FieldPath m_errorField;
    QString m_errorMessage;
};

} // namespace LibraryBrowser::Host
