#include "LibraryCatalog.h"

#include "LibraryFileParser.h"

#include <QFileInfo>

namespace LibraryBrowser::Host {

std::shared_ptr<const LibraryDocument> LibraryCatalog::load(const std::string& library, FileIssue& issue)
{
    const QString file = m_path.findLibraryFile(library);
    if (file.isEmpty()) {
        issue = FileIssue();
        issue.message = QStringLiteral("no library \"%1\" on the path (looked for %2 in %3 directories)")
                            .arg(QString::fromStdString(library), SearchPath::libraryFileName(library))
                            .arg(m_path.directories().size());
        return nullptr;
    }
    const QFileInfo info(file);
    Entry& entry = m_entries[library];
    if (entry.file == file && entry.modified == info.lastModified() && entry.size == info.size()) {
        issue = entry.issue;
        return entry.document;
    }
    entry.file = file;
    entry.modified = info.lastModified();
    entry.size = info.size();
    entry.issue = FileIssue();
    entry.document = LibraryFileParser::parseFile(file, library, entry.issue);
    issue = entry.issue;
    return entry.document;
}

} // namespace LibraryBrowser::Host
