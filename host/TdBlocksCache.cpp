#include "TdBlocksCache.h"

#include "ByteReader.h"
#include "ByteWriter.h"
#include "OpenDirectory.h"
#include "PathCacheFile.h"
#include "TdBlocksParser.h"

#include <QFile>

namespace LibraryBrowser::Host {

TdBlocksCache::TdBlocksCache(PathCacheFile& cache) : m_cache(cache) {}

TdBlocksCache::Entries TdBlocksCache::read(const QString& file, const QString& root, const OpenDirectory& from,
                                           bool& parsed, FileIssue& issue, std::vector<FileIssue>& refused)
{
    load();
    const std::int64_t readAt = PathCacheFile::now();
    const QByteArray name = QFile::encodeName(file);
    std::string key = name.toStdString();
    FileStamp stamp;
    if (!from.stamp(name, stamp)) {
        m_files.erase(key);
        return nullptr;
    }
    Parsed& known = m_files[std::move(key)];
    if (!(known.stamp == stamp) || known.root != root) {
        known = Parsed();
        ++m_parsedFiles;
        auto entries = std::make_shared<std::vector<TdBlocksEntry>>();
        known.ok = TdBlocksParser::parse(file, root, *entries, known.issue, known.refused);
        known.entries = std::move(entries);
        // A file changed while it was read is read again next time.
        FileStamp after;
        if (from.stamp(name, after) && after.modified == stamp.modified && after.size == stamp.size
            && after.inode == stamp.inode) {
            known.stamp = stamp;
            // A file that could not be read at all may be readable next time.
            known.trusted = m_cache.trusted(stamp.latest(), readAt) && (known.ok || known.issue.line > 0);
            m_learnt = m_learnt || known.trusted;
        }
        known.root = root;
    }
    known.seen = true;
    parsed = known.ok;
    issue = known.issue;
    refused = known.refused;
    return known.entries;
}

void TdBlocksCache::keep()
{
    if (!m_learnt)
        return;
    m_learnt = false;
    // What this process did not look at is kept while its file is as it was.
    const auto keeps = [this](const std::string& name, const Parsed& known) {
        FileStamp current;
        return known.trusted && known.root == m_cache.root()
            && (known.seen || (current.read(QByteArray::fromStdString(name), true) && current == known.stamp));
    };
    std::vector<const decltype(m_files)::value_type*> kept;
    for (const auto& file : m_files)
        if (keeps(file.first, file.second))
            kept.push_back(&file);
    ByteWriter out;
    out.number(kept.size());
    for (const auto* entry : kept) {
        const std::string& name = entry->first;
        const Parsed& known = entry->second;
        const QString file = QFile::decodeName(QByteArray::fromStdString(name));
        out.text(name);
        known.stamp.write(out);
        out.number(known.ok ? 1 : 0);
        writeIssue(out, known.issue, file);
        out.number(known.refused.size());
        for (const FileIssue& refused : known.refused)
            writeIssue(out, refused, file);
        out.number(known.entries->size());
        for (const TdBlocksEntry& entry : *known.entries) {
            for (const std::string* text : {&entry.productName, &entry.library, &entry.repositoryDirectory,
                                            &entry.treeIcon, &entry.panelIcon})
                out.text(*text);
            out.number((entry.flag ? 1 : 0) | (entry.type == EntryType::Palette ? 2 : 0));
            out.texts(entry.children);
            out.texts(entry.dependencies);
        }
    }
    m_cache.store(PathCacheFile::TdBlocks, out.bytes());
}

void TdBlocksCache::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    ByteReader in(m_cache.section(PathCacheFile::TdBlocks));
    std::size_t count = 0;
    if (!in.count(count))
        return;
    std::unordered_map<std::string, Parsed> files;
    for (std::size_t i = 0; i < count; ++i) {
        std::string name;
        Parsed known;
        known.root = m_cache.root();
        known.trusted = true;
        std::uint64_t ok = 0;
        std::size_t refused = 0;
        std::size_t entries = 0;
        if (!in.text(name))
            return;
        const QString file = QFile::decodeName(QByteArray::fromStdString(name));
        if (!known.stamp.read(in) || !in.number(ok) || ok > 1 || !readIssue(in, known.issue, file)
            || !in.count(refused))
            return;
        known.ok = ok == 1;
        known.refused.resize(refused);
        for (FileIssue& issue : known.refused)
            if (!readIssue(in, issue, file))
                return;
        if (!in.count(entries))
            return;
        auto loaded = std::make_shared<std::vector<TdBlocksEntry>>(entries);
        known.entries = loaded;
        for (TdBlocksEntry& entry : *loaded) {
            std::uint64_t bits = 0;
            for (std::string* text : {&entry.productName, &entry.library, &entry.repositoryDirectory,
                                      &entry.treeIcon, &entry.panelIcon})
                if (!in.text(*text))
                    return;
            if (!in.number(bits) || bits > 3 || !in.texts(entry.children) || !in.texts(entry.dependencies))
                return;
            entry.flag = bits & 1;
            entry.type = bits & 2 ? EntryType::Palette : EntryType::Product;
        }
        files.emplace(std::move(name), std::move(known));
    }
    if (in.atEnd())
        m_files = std::move(files);
}

// An issue names the file it is about, which is nearly always the file read:
// then the name is left out.
void TdBlocksCache::writeIssue(ByteWriter& out, const FileIssue& issue, const QString& file)
{
    out.number(issue.file == file ? 0 : 1);
    if (issue.file != file)
        out.text(issue.file);
    out.signedNumber(issue.line);
    out.signedNumber(issue.column);
    out.text(issue.field);
    out.text(issue.message);
}

bool TdBlocksCache::readIssue(ByteReader& in, FileIssue& issue, const QString& file)
{
    std::uint64_t named = 0;
    if (!in.number(named) || named > 1)
        return false;
    issue.file = file;
    return (named == 0 || in.text(issue.file)) && in.number(issue.line) && in.number(issue.column)
        && in.text(issue.field) && in.text(issue.message);
}

} // namespace LibraryBrowser::Host
