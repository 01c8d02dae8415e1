#include "JsonFile.h"

#include "JsonLocator.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonParseError>

namespace LibraryBrowser::Host {

bool JsonFile::read(const QString& path, QByteArray& bytes, QJsonObject& top, FileIssue& issue)
{
    issue = FileIssue();
    issue.file = path;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        issue.message = QStringLiteral("cannot read the file: %1").arg(file.errorString());
        return false;
    }
    bytes = file.readAll();
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        const JsonLocator::Position at = JsonLocator(bytes).positionOfOffset(error.offset);
        issue.line = at.line;
        issue.column = at.column;
        issue.message = QStringLiteral("not valid JSON: %1").arg(error.errorString());
        return false;
    }
    if (!doc.isObject()) {
        issue = issueAt(path, bytes, FieldPath(), QStringLiteral("the file must hold one JSON object"));
        return false;
    }
    top = doc.object();
    return true;
}

FileIssue JsonFile::issueAt(const QString& path, const QByteArray& bytes, const FieldPath& field,
                            const QString& message)
{
    FileIssue issue;
    issue.file = path;
    const JsonLocator::Position at = JsonLocator(bytes).positionOf(field);
    issue.line = at.line;
    issue.column = at.column;
    issue.field = field.text();
    issue.message = message;
    return issue;
}

} // namespace LibraryBrowser::Host
