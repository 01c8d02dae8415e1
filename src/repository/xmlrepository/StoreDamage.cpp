#include "repository/xmlrepository/StoreDamage.h"

#include "platform/ZipEntryIndex.h"
#include "repository/xmlrepository/RepositoryFiles.h"
#include "repository/xmlrepository/RepositoryPaths.h"
#include "repository/xmlrepository/VerifiedRecord.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <unordered_map>

#include <sys/stat.h>

namespace LibraryBrowser {

namespace {

struct NotePlace {
    std::string directory;
    std::string prefix;
    std::string verifiedFile;
};

// The date as QFileInfo gives it, in milliseconds, but from stat itself:
// QFileInfo's date passes through the local time zone, which cost more than
// the rest of an unchanged product's up-to-date test.
VerifiedStamp stampOf(const std::string& path)
{
    struct stat status {};
    if (!FileStateScope::stat(path, status) || !S_ISREG(status.st_mode))
        return VerifiedStamp{};
    return VerifiedStamp{qint64(status.st_size),
                     qint64(status.st_mtim.tv_sec) * 1000 + qint64(status.st_mtim.tv_nsec) / 1000000};
}

// The verified record of each writable store, read once per process.
VerifiedRecord& recordOf(const std::string& file)
{
    static std::unordered_map<std::string, VerifiedRecord> records;
    auto found = records.find(file);
    if (found == records.end())
        found = records.emplace(file, VerifiedRecord(file)).first;
    return found->second;
}

// The record's key for an archive: one spelling of the file, whether the
// store was named relative to the working directory or not, so that every
// process finds the records of the others.
std::string recordKey(const std::string& archivePath)
{
    // An absolute ASCII path without empty, "." or ".." parts is its own
    // key: a check asks for each archive of each product, and cleaning the
    // path cost as much as the stat. Other bytes go through the conversion.
    const auto clean = [&archivePath] {
        if (archivePath.size() < 2 || archivePath.front() != '/' || archivePath.back() == '/')
            return false;
        for (const char c : archivePath)
            if (static_cast<unsigned char>(c) >= 0x80 || c == '\0')
                return false;
        for (std::size_t part = 1; part < archivePath.size();) {
            const std::size_t end = std::min(archivePath.find('/', part), archivePath.size());
            const std::size_t length = end - part;
            if (length == 0 || (length == 1 && archivePath[part] == '.')
                || (length == 2 && archivePath[part] == '.' && archivePath[part + 1] == '.'))
                return false;
            part = end + 1;
        }
        return true;
    };
    if (clean())
        return archivePath;
    return QDir::cleanPath(QFileInfo(QString::fromStdString(archivePath)).absoluteFilePath()).toStdString();
}

// Store directory to where its notes go; main thread only, like all the store.
std::unordered_map<std::string, NotePlace>& places()
{
    static std::unordered_map<std::string, NotePlace> registered;
    return registered;
}

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

// The place registered for a store, or null. Asked for each product's
// archives: a spelling without backslashes is looked up as it is.
const NotePlace* placeOf(const std::string& storeDirectory)
{
    const auto found = storeDirectory.find('\\') == std::string::npos ? places().find(storeDirectory)
                                                                       : places().find(forwardSlashes(storeDirectory));
    return found == places().end() ? nullptr : &found->second;
}

} // namespace

std::string StoreDamage::notesDirectory(const std::string& writableDirectory)
{
    return forwardSlashes(writableDirectory) + "/toolbox/tandril/blocks/damaged";
}

void StoreDamage::registerStores(const std::string& shippedDirectory, const std::string& writableDirectory)
{
    const std::string directory = notesDirectory(writableDirectory);
    const std::string verified = forwardSlashes(writableDirectory) + "/toolbox/tandril/blocks/verified";
    if (!shippedDirectory.empty())
        places()[forwardSlashes(shippedDirectory)] = {directory, "shipped_", verified};
    places()[forwardSlashes(writableDirectory)] = {directory, "writable_", verified};
}

std::string StoreDamage::noteFile(const std::string& storeDirectory, const std::string& productUniquePath)
{
    const NotePlace* place = placeOf(storeDirectory);
    if (!place || productUniquePath.empty())
        return std::string();
    return place->directory + "/" + place->prefix + sanitizeName(productUniquePath);
}

void StoreDamage::note(const std::string& storeDirectory, const std::string& productUniquePath,
                       const std::string& reason)
{
    const std::string file = noteFile(storeDirectory, productUniquePath);
    if (file.empty() || QFile::exists(qs(file)))
        return;
    QDir().mkpath(QFileInfo(qs(file)).absolutePath());
    // A note that can't be written only costs the repair at the next
    // update: the read has reported the damage already.
    QFile out(qs(file));
    if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
        out.write(reason.c_str(), qint64(reason.size()));
}

std::string StoreDamage::noted(const std::string& storeDirectory, const std::string& productUniquePath)
{
    const std::string file = noteFile(storeDirectory, productUniquePath);
    if (file.empty())
        return std::string();
    // Mostly there is none: one stat says so, without a QFile.
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return std::string();
    QFile in(qs(file));
    const QByteArray text = in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    return text.isEmpty() ? std::string("damage was found by an earlier read") : text.toStdString();
}

void StoreDamage::forget(const std::string& storeDirectory, const std::string& productUniquePath)
{
    const std::string file = noteFile(storeDirectory, productUniquePath);
    if (!file.empty())
        QFile::remove(qs(file));
}

void StoreDamage::forgetAll(const std::string& writableDirectory)
{
    QDir(qs(notesDirectory(writableDirectory))).removeRecursively();
}

bool StoreDamage::archiveVerified(const std::string& storeDirectory, const std::string& archivePath)
{
    const NotePlace* place = placeOf(storeDirectory);
    if (!place)
        return false;
    const VerifiedStamp stamp = stampOf(archivePath);
    return stamp.size >= 0 && recordOf(place->verifiedFile).find(recordKey(archivePath)) == stamp;
}

std::string StoreDamage::archiveDamage(const std::string& storeDirectory, const std::string& archivePath)
{
    const NotePlace* place = placeOf(storeDirectory);
    if (!place)
        return std::string();
    const VerifiedStamp stamp = stampOf(archivePath);
    if (stamp.size < 0)
        return std::string();
    VerifiedRecord& record = recordOf(place->verifiedFile);
    const std::string key = recordKey(archivePath);
    if (record.find(key) == stamp)
        return std::string();
    ZipEntryIndex index;
    std::string error;
    if (!index.load(archivePath, error) || !index.readsWhole(archivePath, error))
        return "the archive " + archivePath + " can't be read whole: " + error;
    record.set(key, stamp);
    return std::string();
}

void StoreDamage::archiveWritten(const std::string& storeDirectory, const std::string& archivePath)
{
    const NotePlace* place = placeOf(storeDirectory);
    if (!place)
        return;
    VerifiedRecord& record = recordOf(place->verifiedFile);
    const VerifiedStamp stamp = stampOf(archivePath);
    if (stamp.size < 0)
        record.erase(recordKey(archivePath));
    else
        record.set(recordKey(archivePath), stamp);
}

void StoreDamage::saveRecords()
{
    for (const auto& [file, place] : places())
        recordOf(place.verifiedFile).save();
}

} // namespace LibraryBrowser
