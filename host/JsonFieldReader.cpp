#include "JsonFieldReader.h"

#include <QStringList>

#include <cmath>

namespace LibraryBrowser::Host {

void JsonFieldReader::fail(const FieldPath& field, const QString& message)
{
    if (m_failed)
        return;
    m_failed = true;
    m_errorField = field;
    m_errorMessage = message;
}

bool JsonFieldReader::checkKeys(const QJsonObject& object, const FieldPath& at,
                                std::initializer_list<const char*> allowed)
{
    for (auto it = object.begin(); it != object.end(); ++it) {
        bool known = false;
        for (const char* name : allowed)
            known = known || it.key() == QLatin1String(name);
        if (!known) {
            QStringList names;
            for (const char* name : allowed)
                names << QString::fromLatin1(name);
            fail(at.key(it.key()), QStringLiteral("unknown field (expected one of: %1)").arg(names.join(", ")));
            return false;
        }
    }
    return !m_failed;
}

bool JsonFieldReader::requiredString(const QJsonObject& object, const FieldPath& at, const char* key,
                                     std::string& out)
{
    if (m_failed)
        return false;
    if (!object.contains(QLatin1String(key))) {
        fail(at.key(QString::fromLatin1(key)), QStringLiteral("required string is missing"));
        return false;
    }
    return optionalString(object, at, key, out);
}

bool JsonFieldReader::optionalString(const QJsonObject& object, const FieldPath& at, const char* key,
                                     std::string& out)
{
    if (m_failed)
        return false;
    const auto it = object.constFind(QLatin1String(key));
    if (it == object.constEnd())
        return false;
    if (!it->isString()) {
        fail(at.key(QString::fromLatin1(key)), QStringLiteral("expected a string, found %1").arg(typeName(*it)));
        return false;
    }
    out = it->toString().toStdString();
    return true;
}

bool JsonFieldReader::optionalBool(const QJsonObject& object, const FieldPath& at, const char* key, bool& out)
{
    if (m_failed)
        return false;
    const auto it = object.constFind(QLatin1String(key));
    if (it == object.constEnd())
        return false;
    if (!it->isBool()) {
        fail(at.key(QString::fromLatin1(key)), QStringLiteral("expected true or false, found %1").arg(typeName(*it)));
        return false;
    }
    out = it->toBool();
    return true;
}

bool JsonFieldReader::optionalCount(const QJsonObject& object, const FieldPath& at, const char* key, int maximum,
                                    int& out)
{
    if (m_failed)
        return false;
    const auto it = object.constFind(QLatin1String(key));
    if (it == object.constEnd())
        return false;
    const double value = it->toDouble(-1);
    if (!it->isDouble() || value < 0 || value > maximum || std::floor(value) != value) {
        fail(at.key(QString::fromLatin1(key)),
             QStringLiteral("expected a whole number from 0 to %1").arg(maximum));
        return false;
    }
    out = static_cast<int>(value);
    return true;
}

bool JsonFieldReader::optionalStringList(const QJsonObject& object, const FieldPath& at, const char* key,
                                         std::vector<std::string>& out)
{
    if (m_failed)
        return false;
    const auto it = object.constFind(QLatin1String(key));
    if (it == object.constEnd())
        return false;
    const FieldPath field = at.key(QString::fromLatin1(key));
    if (!it->isArray()) {
        fail(field, QStringLiteral("expected an array of strings, found %1").arg(typeName(*it)));
        return false;
    }
    const QJsonArray array = it->toArray();
    out.clear();
    for (int i = 0; i < array.size(); ++i) {
        if (!array[i].isString()) {
            fail(field.index(i), QStringLiteral("expected a string, found %1").arg(typeName(array[i])));
            return false;
        }
        out.push_back(array[i].toString().toStdString());
    }
    return true;
}

bool JsonFieldReader::requiredArray(const QJsonObject& object, const FieldPath& at, const char* key,
                                    QJsonArray& out)
{
    if (m_failed)
        return false;
    const auto it = object.constFind(QLatin1String(key));
    const FieldPath field = at.key(QString::fromLatin1(key));
    if (it == object.constEnd()) {
        fail(field, QStringLiteral("required array is missing"));
        return false;
    }
    if (!it->isArray()) {
        fail(field, QStringLiteral("expected an array, found %1").arg(typeName(*it)));
        return false;
    }
    out = it->toArray();
    return true;
}

bool JsonFieldReader::optionalObject(const QJsonObject& object, const FieldPath& at, const char* key,
                                     QJsonObject& out)
{
    if (m_failed)
        return false;
    const auto it = object.constFind(QLatin1String(key));
    if (it == object.constEnd())
        return false;
    if (!it->isObject()) {
        fail(at.key(QString::fromLatin1(key)), QStringLiteral("expected an object, found %1").arg(typeName(*it)));
        return false;
    }
    out = it->toObject();
    return true;
}

bool JsonFieldReader::header(const QJsonObject& object, const char* format, int maximumVersion, int& version)
{
    std::string name;
    if (!requiredString(object, FieldPath(), "format", name))
        return false;
    if (name != format) {
        fail(FieldPath().key("format"), QStringLiteral("expected \"%1\", found \"%2\"")
                                            .arg(QLatin1String(format), QString::fromStdString(name)));
        return false;
    }
    if (!object.contains(QLatin1String("version"))) {
        fail(FieldPath().key("version"), QStringLiteral("required version number is missing"));
        return false;
    }
    version = 0;
    if (!optionalCount(object, FieldPath(), "version", 1000000, version))
        return false;
    if (version < 1 || version > maximumVersion) {
        fail(FieldPath().key("version"),
             QStringLiteral("version %1 is not supported (this host reads 1 to %2)").arg(version).arg(maximumVersion));
        return false;
    }
    return true;
}

QString JsonFieldReader::typeName(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null: return QStringLiteral("null");
    case QJsonValue::Bool: return QStringLiteral("a boolean");
    case QJsonValue::Double: return QStringLiteral("a number");
    case QJsonValue::String: return QStringLiteral("a string");
    case QJsonValue::Array: return QStringLiteral("an array");
    case QJsonValue::Object: return QStringLiteral("an object");
    case QJsonValue::Undefined: break;
    }
    return QStringLiteral("nothing");
}

} // namespace LibraryBrowser::Host
