// The archive reader on arbitrary bytes, in both ways the store opens an
// archive: open, list, read every entry, and the one-entry read of a cache.
#include "FuzzInput.h"

#include "platform/ZipArchive.h"

#include <cstdio>
#include <cstdlib>

using namespace LibraryBrowser;

namespace {
void readEverything(const std::string& path, ZipArchive::OpenMode mode)
{
    ZipArchive archive;
    if (!archive.open(path, mode)) {
        if (archive.errorString().empty()) {
            std::fprintf(stderr, "a failed open gives no reason\n");
            std::abort();
        }
        return;
    }
    for (const std::string& name : archive.entryNames()) {
        const ZipArchive::Entry entry = archive.find(name);
        QByteArray bytes;
        if (!archive.read(entry, bytes) && !bytes.isEmpty()) {
            std::fprintf(stderr, "a failed read of '%s' leaves bytes\n", name.c_str());
            std::abort();
        }
        archive.getName(entry);
    }
    archive.close();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string path = Fuzz::writeScratchFile(QStringLiteral("fuzzed.rps"), data, size).toStdString();
    readEverything(path, ZipArchive::ReadOnly);
    readEverything(path, ZipArchive::OpenExisting);
    QByteArray bytes;
    std::string error;
    ZipArchive::readEntry(path, "lbtoplevelmanifest.xml", bytes, error);
    return 0;
}
