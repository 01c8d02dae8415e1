#include "repository/xmlrepository/StoreDamage.h"

#include "repository/xmlrepository/RepositoryPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unordered_map>

namespace LibraryBrowser {

namespace {

struct NotePlace {
    std::string directory;
    std::string prefix;
};

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

} // namespace

std::string StoreDamage::notesDirectory(const std::string& writableDirectory)
{
    return forwardSlashes(writableDirectory) + "/toolbox/tandril/blocks/damaged";
}

void StoreDamage::registerStores(const std::string& shippedDirectory, const std::string& writableDirectory)
{
    const std::string directory = notesDirectory(writableDirectory);
    if (!shippedDirectory.empty())
        places()[forwardSlashes(shippedDirectory)] = {directory, "shipped_"};
    places()[forwardSlashes(writableDirectory)] = {directory, "writable_"};
}

std::string StoreDamage::noteFile(const std::string& storeDirectory, const std::string& productUniquePath)
{
    const auto found = places().find(forwardSlashes(storeDirectory));
    if (found == places().end() || productUniquePath.empty())
        return std::string();
    return found->second.directory + "/" + found->second.prefix + sanitizeName(productUniquePath);
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
    QFile in(qs(file));
    if (!in.exists())
        return std::string();
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

} // namespace LibraryBrowser
