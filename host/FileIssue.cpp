#include "FileIssue.h"

namespace LibraryBrowser::Host {

std::string FileIssue::toString() const
{
    QString out = file;
    if (line > 0)
        out += QStringLiteral(":%1:%2").arg(line).arg(column);
    if (!out.isEmpty())
        out += QStringLiteral(": ");
    if (!field.isEmpty())
        out += field + QStringLiteral(": ");
    out += message;
    return out.toStdString();
}

} // namespace LibraryBrowser::Host
