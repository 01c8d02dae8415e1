#include "LibraryCatalog.h"

#include "LibraryFileParser.h"

#include <QFileInfo>

#include <algorithm>

namespace LibraryBrowser::Host {

LibraryCatalog::Loaded LibraryCatalog::load(const std::string& library, FileIssue& issue)
{
    const QString file = m_path.findLibraryFile(library);
    if (file.isEmpty()) {
        issue = FileIssue();
        issue.message = QStringLiteral("no library \"%1\" on the path (looked for %2 in %3 directories)")
                            .arg(QString::fromStdString(library), SearchPath::libraryFileName(library))
                            .arg(m_path.directories().size());
        return {};
    }
    const QFileInfo info(file);
    Entry& entry = m_entries[library];
    const bool unchanged = entry.reading != 0 && entry.file == file && entry.modified == info.lastModified()
                           && entry.size == info.size();
    if (unchanged) {
        issue = entry.issue;
        if (!entry.readable)
            return {nullptr, entry.reading};
        if (auto document = entry.document.lock()) {
            keep(document);
            return {document, entry.reading};
        }
    } else {
        if (auto previous = entry.document.lock())
            m_superseded.push_back(std::move(previous));
        entry.file = file;
        entry.modified = info.lastModified();
        entry.size = info.size();
        entry.reading = ++m_readings;
    }
    entry.issue = FileIssue();
    const std::shared_ptr<const LibraryDocument> document = LibraryFileParser::parseFile(file, library, entry.issue);
    entry.readable = document != nullptr;
    entry.document = document;
    issue = entry.issue;
    if (document)
        keep(document);
    return {document, entry.reading};
}

void LibraryCatalog::keep(const std::shared_ptr<const LibraryDocument>& document)
{
    const auto found = std::find(m_recent.begin(), m_recent.end(), document);
    if (found != m_recent.end()) {
        m_recent.erase(found);
        m_recentBytes -= document->source.size();
    }
    m_recent.push_back(document);
    m_recentBytes += document->source.size();
    while (m_recentBytes > keptBytes && m_recent.size() > 1) {
        m_recentBytes -= m_recent.front()->source.size();
        m_recent.pop_front();
    }
}

} // namespace LibraryBrowser::Host
